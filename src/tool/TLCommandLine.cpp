#include "tool/TLCommandLine.h"

#include <fmt/format.h>

#include <cstdio>
#include <regex>
#include <sstream>

#include "messaging/TLVirtualMachine.h"
#include "platform/TLHostForm.h"
#include "tool/TLBalanceCommand.h"
#include "tool/TLCommands.h"
#include "tool/TLCompletion.h"
#include "tool/TLExitCode.h"
#include "tool/TLFileReport.h"

namespace {

constexpr const char* kExamples =
    "Examples:\n"
    "  tlctl run heat.task\n"
    "  tlctl status\n";
constexpr const char* kExitCodes =
    "Exit codes:\n"
    "  0  done; every step finished ok\n"
    "  1  some step did not finish ok, or a file is not as it should be\n"
    "  2  the command line is wrong\n"
    "  3  no virtual machine, no daemon, no such task or run\n"
    "\n\"tlctl COMMAND --help\" shows the options of a command. docs/tlctl.md tells all of it.\n";

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
    const bool top = app->get_parent() == nullptr;
    return examples + "\n" + text + (top ? kExitCodes : "");
  }
};

std::string exampleText(const TLCommand& command) {
  std::string text = "Examples:\n";
  for (const auto example : command.examples) text += fmt::format("  {}\n", example);
  return text;
}

std::vector<TLCommand> allCommands() {
  std::vector<TLCommand> commands;
  for (const auto group : {runCommands, controlCommands, fileCommands, planCommands,
                           balanceCommands, unitsCommands, steerCommands, reportCommands}) {
    for (auto& command : group()) commands.push_back(std::move(command));
  }
  return commands;
}

// The options that unknown ones were probably meant to be.
std::string optionHint(const CLI::App& app, const std::vector<std::string>& rest) {
  std::vector<std::string> known;
  for (const auto* option : app.get_options()) {
    for (const auto& name : option->get_lnames()) known.push_back("--" + name);
  }
  const std::vector<std::string_view> views(known.begin(), known.end());
  std::string text;
  for (const auto& word : rest) {
    const std::string name = word.substr(0, word.find('='));
    const auto meant = word.starts_with("--") ? nearestWord(name, views) : std::string_view();
    if (!meant.empty()) text += fmt::format("tlctl: was \"{}\" meant by \"{}\"?\n", meant, name);
  }
  return text;
}

// The value that was probably meant, of those that the parser's complaint lists.
std::string valueHint(const std::string& complaint) {
  static const std::regex kNotIn(": (.*) not in \\{(.*)\\}");
  std::smatch parts;
  if (!std::regex_search(complaint, parts, kNotIn)) return {};
  std::vector<std::string> known;
  std::istringstream list(parts[2]);
  for (std::string word; std::getline(list, word, ',');) known.push_back(word);
  const std::vector<std::string_view> views(known.begin(), known.end());
  const std::string word = parts[1];
  const auto meant = nearestWord(word, views);
  return meant.empty() ? "" : fmt::format("tlctl: was \"{}\" meant by \"{}\"?\n", meant, word);
}

const CLI::App& chosenApp(const CLI::App& app) {
  const auto chosen = app.get_subcommands();
  return chosen.empty() ? app : *chosen.front();
}

}  // namespace

TLCommandLine::TLCommandLine()
    : commands_(allCommands()),
      app_(std::make_unique<CLI::App>(
          "Command line of the task manager: runs tasks, talks to their daemons, checks files.",
          "tlctl")) {
  app_->formatter(std::make_shared<TLHelp>());
  app_->footer(kExamples);
  app_->set_help_flag("-h,--help", "show this help");
  app_->set_version_flag("--version", "tlctl 7.1", "show the version");
  app_->require_subcommand(1);
  for (const auto& command : commands_) {
    CLI::App* sub = app_->add_subcommand(std::string(command.name), std::string(command.summary));
    sub->footer(exampleText(command));
    sub->callback([this, run = command.define(*sub)] { chosen_ = run; });
  }
}

// What a word that isn't a command was probably meant to be; empty for a command.
std::string TLCommandLine::commandHint(const std::string& word) const {
  std::vector<std::string_view> names;
  for (const auto& command : commands_) {
    if (command.name == word) return {};
    names.push_back(command.name);
  }
  const std::string what = fmt::format("tlctl: there is no command \"{}\"", word);
  const auto meant = nearestWord(word, names);
  if (!meant.empty()) return fmt::format("{}; was \"{}\" meant?\n", what, meant);
  if (!hostForm().canRead(word)) return what + "\n";
  return fmt::format("{}; to run that file: tlctl run {}\n", what, word);
}

int TLCommandLine::refuse(const CLI::ParseError& error, int argc, const char* const* argv) const {
  if (error.get_exit_code() == static_cast<int>(CLI::ExitCodes::Success)) {
    app_->exit(error);  // --help and --version
    return TLExitCode::kOk;
  }
  const std::string hint = argc > 1 && argv[1][0] != '-' ? commandHint(argv[1]) : std::string();
  const CLI::App& chosen = chosenApp(*app_);
  const std::string name = &chosen == app_.get() ? "" : " " + chosen.get_name();
  if (hint.empty()) {
    fmt::print(stderr, "tlctl{}: {}\n{}{}", name, error.what(),
               optionHint(chosen, chosen.remaining()), valueHint(error.what()));
  }
  fmt::print(stderr, "{}See \"tlctl{} --help\".\n", hint, name);
  return TLExitCode::kWrongUse;
}

std::optional<int> TLCommandLine::parse(int argc, const char* const* argv) {
  chosen_ = nullptr;
  try {
    app_->parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return refuse(error, argc, argv);
  }
  return std::nullopt;
}

int TLCommandLine::run(int argc, const char* const* argv) {
  const auto refused = parse(argc, argv);
  return refused ? *refused : chosen_();
}

int runTool(int argc, char** argv) {
  if (hostForm().canRead(companionProgram())) TL_virtual_machine_use_companions(companionProgram());
  TL_virtual_machine_allow(false);  // until a command has found a machine to join
  TLCommandLine line;
  if (argc > 1 && std::string_view(argv[1]) == "complete") {  // for shells alone: no help tells it
    return printCompletions(line.app(), std::vector<std::string>(argv + 2, argv + argc));
  }
  return line.run(argc, argv);
}
