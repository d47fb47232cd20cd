#include <fmt/format.h>
#include <CLI/CLI.hpp>

#include <cstdio>
#include <vector>

#include "messaging/TLVirtualMachine.h"
#include "tool/TLBalanceCommand.h"
#include "tool/TLCommands.h"
#include "tool/TLExitCode.h"
#include "tool/TLFileReport.h"

namespace {

// Examples first: they are what most people look for.
class TLHelp : public CLI::Formatter {
 public:
  std::string make_help(const CLI::App* app, std::string name,
                        CLI::AppFormatMode mode) const override {
    std::string text = CLI::Formatter::make_help(app, std::move(name), mode);
    const std::string& examples = app->get_footer();
    if (mode != CLI::AppFormatMode::Normal || examples.empty()) return text;
    const auto footer = text.rfind(examples);
    if (footer != std::string::npos) text.erase(footer);
    return examples + "\n" + text;
  }
};

std::string exampleText(const TLCommand& command) {
  if (command.examples.empty()) return {};
  std::string text = "Examples:\n";
  for (const auto example : command.examples) text += fmt::format("  {}\n", example);
  return text;
}

std::vector<TLCommand> allCommands() {
  std::vector<TLCommand> commands;
  for (const auto group :
       {runCommands, controlCommands, fileCommands, planCommands, balanceCommands, unitsCommands,
        steerCommands}) {
    for (auto& command : group()) commands.push_back(std::move(command));
  }
  return commands;
}

// What a word that isn't a command was probably meant to be.
std::string commandHint(int argc, char** argv, const std::vector<TLCommand>& commands) {
  if (argc < 2 || argv[1][0] == '-') return {};
  std::vector<std::string_view> names;
  for (const auto& command : commands) {
    if (command.name == argv[1]) return {};
    names.push_back(command.name);
  }
  const auto meant = nearestWord(argv[1], names);
  return meant.empty() ? fmt::format("tlctl: there is no command \"{}\"\n", argv[1])
                       : fmt::format("tlctl: there is no command \"{}\"; was \"{}\" meant?\n",
                                     argv[1], meant);
}

// The option that an unknown one was probably meant to be.
std::string optionHint(const CLI::App& app, const std::vector<std::string>& rest) {
  std::vector<std::string> known;
  for (const auto* option : app.get_options()) {
    for (const auto& name : option->get_lnames()) known.push_back("--" + name);
  }
  const std::vector<std::string_view> views(known.begin(), known.end());
  std::string text;
  for (const auto& word : rest) {
    const auto meant = word.starts_with("--") ? nearestWord(word, views) : std::string_view();
    if (!meant.empty()) text += fmt::format("tlctl: was \"{}\" meant by \"{}\"?\n", meant, word);
  }
  return text;
}

const CLI::App& chosenApp(const CLI::App& app) {
  const auto chosen = app.get_subcommands();
  return chosen.empty() ? app : *chosen.front();
}

int report(const CLI::App& app, const CLI::ParseError& error, const std::string& hint) {
  if (error.get_exit_code() == static_cast<int>(CLI::ExitCodes::Success)) {
    app.exit(error);  // --help and --version
    return TLExitCode::kOk;
  }
  if (!hint.empty()) {
    fmt::print(stderr, "{}", hint);
  } else {
    const CLI::App& chosen = chosenApp(app);
    const bool inCommand = &chosen != &app;
    fmt::print(stderr, "tlctl{}{}: {}\n", inCommand ? " " : "", inCommand ? chosen.get_name() : "",
               error.what());
    fmt::print(stderr, "{}", optionHint(chosen, chosen.remaining()));
  }
  fmt::print(stderr, "See \"tlctl --help\".\n");
  return TLExitCode::kWrongUse;
}

}  // namespace

int runTool(int argc, char** argv) {
  TL_virtual_machine_allow(false);  // until a command has found a machine to join
  const std::vector<TLCommand> commands = allCommands();
  CLI::App app(
      "Command line of the task manager: runs tasks, talks to their daemons, checks files.",
      "tlctl");
  app.formatter(std::make_shared<TLHelp>());
  app.set_version_flag("--version", "tlctl 7.1");
  app.require_subcommand(1);
  std::function<int()> chosen;
  for (const auto& command : commands) {
    CLI::App* sub = app.add_subcommand(std::string(command.name), std::string(command.summary));
    sub->footer(exampleText(command));
    sub->callback([&chosen, run = command.define(*sub)] { chosen = run; });
  }
  const std::string hint = commandHint(argc, argv, commands);
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return report(app, error, hint);
  }
  return chosen();
}
