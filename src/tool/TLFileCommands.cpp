#include <fmt/format.h>
#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include <cstdio>
#include <cstring>
#include <memory>
#include <utility>

#include "platform/TLHostForm.h"
#include "textio/TLTextSink.h"
#include "tool/TLCommands.h"
#include "tool/TLDefinitionSummary.h"
#include "tool/TLExitCode.h"
#include "tool/TLFileKind.h"
#include "tool/TLProjectFile.h"
#include "tool/TLProjectSummary.h"
#include "tool/TLSteeringSettings.h"
#include "tool/TLTaskFile.h"

namespace {

struct FileOptions {
  std::string kind;
  std::string input;
  std::string output;
  bool json = false;
};

constexpr int kJsonVersion = 1;

// The whole file: what there is to say about it, and all its blocks.
void printJson(const std::string& path, TLFileKind kind, nlohmann::json summary,
               std::string_view text) {
  const nlohmann::json document{{"version", kJsonVersion},
                                {"kind", nameOfKind(kind)},
                                {"file", path},
                                {"summary", std::move(summary)},
                                {"content", blocksAsJson(text)}};
  fmt::print("{}\n", document.dump(2, ' ', false, nlohmann::json::error_handler_t::replace));
}

void printArguments(const TLSubTask& step) {
  for (const auto& argument : step.arguments.entries()) {
    fmt::print(
        "    argument  {} {}{}\n", argument->type(), argument->value(),
        argument->hasLocalFile() != 0 && argument->localFile() != 0 ? "  (carried along)" : "");
  }
}

void printStep(const TLSubTask& step, std::size_t position) {
  const auto& balance = step.loadBalancing;
  fmt::print("  step {}  {}\n    runs      {} on {}{}\n", position, step.name, step.executable,
             step.hostName, step.enabled != 0 ? "" : "  (disabled)");
  fmt::print("    starts    {}\n", step.waitingTask == 1   ? "after all steps before it"
                                   : step.waitingTask == 0 ? "beside the others"
                                                           : "never");
  if (balance.parallel != 0)
    fmt::print("    parallel  {} processes\n", balance.processNames.size());
  if (balance.queuingSystemActivated != 0) {
    fmt::print("    queue     {} of system {}\n", balance.queuingSystemQueue,
               balance.queuingSystemActivated);
  }
  printArguments(step);
}

int showTask(const FileOptions& options) {
  TLTaskFile file(options.input);
  const bool good = file.read() && file.checkJobScripts(true);
  fmt::print(stderr, "{}", file.report().text());
  if (!good) return TLExitCode::kStepFailed;
  const TLTask& task = file.task();
  if (options.json) {
    TLTextSink sink;
    task.write(sink);
    printJson(options.input, TLFileKind::task, nlohmann::json::object(), sink.text());
    return TLExitCode::kOk;
  }
  fmt::print("task {}\n  file         {}\n  computation  {}\n  steps        {}\n", task.name,
             options.input, task.computationPath(), task.subTaskCount());
  for (std::size_t i = 0; i < task.subTasks.size(); ++i) printStep(*task.subTasks[i], i);
  return TLExitCode::kOk;
}

// What a file holds, or only that it is good (`check`): remarks go to standard error.
int showProject(const FileOptions& options) {
  TLProjectFile file(options.input);
  const bool good = file.read(TLDefinitionNeed::look, false);
  fmt::print(stderr, "{}", file.report().text());
  if (!good) return TLExitCode::kStepFailed;
  const TLSummary summary = summaryOf(file.project());
  if (options.json) {
    printJson(options.input, TLFileKind::project, summary.json(), file.text());
  } else {
    fmt::print("{}", summary.text());
  }
  return TLExitCode::kOk;
}

int showDefinition(const FileOptions& options, TLFileKind kind, const std::string& text) {
  TLFileReport report(options.input);
  TLSummary summary;
  const bool good = summarizeDefinition(kind, text, report, summary);
  fmt::print(stderr, "{}", report.text());
  if (!good) return TLExitCode::kStepFailed;
  if (options.json) {
    printJson(options.input, kind, summary.json(), text);
  } else {
    fmt::print("{}", summary.text());
  }
  return TLExitCode::kOk;
}

int showFile(const FileOptions& options) {
  const auto text = hostForm().readFile(options.input);
  if (!text) return showTask(options);  // says that it can't be opened
  const TLFileKind kind = kindOfText(*text);
  switch (kind) {
    case TLFileKind::project:
      return showProject(options);
    case TLFileKind::task:
    case TLFileKind::unknown:
      return showTask(options);
    default:
      return showDefinition(options, kind, *text);
  }
}

int rewriteProject(const FileOptions& options) {
  TLProjectFile file(options.input);
  const bool good = file.read(TLDefinitionNeed::rewrite, true);
  fmt::print(stderr, "{}", file.report().text());  // what is lost, too
  if (!good) return TLExitCode::kStepFailed;
  return file.project().write(options.output) == 1 ? TLExitCode::kOk : TLExitCode::kStepFailed;
}

int rewriteTask(const FileOptions& options) {
  TLTaskFile file(options.input);
  if (!file.read(true)) {
    fmt::print(stderr, "{}", file.report().text());
    return TLExitCode::kStepFailed;
  }
  TLTextSink sink;
  file.task().write(sink);
  const int error = hostForm().replaceFile(options.output, sink.text());
  if (error == 0) return TLExitCode::kOk;
  fmt::print(stderr, "tlctl: cannot write {}: {}\n", options.output, std::strerror(error));
  return TLExitCode::kStepFailed;
}

// A set and its binary file.
int rewriteSteering(const FileOptions& options) {
  std::string error;
  const auto set = readSteeringSet(options.input, error);
  if (!set) {
    fmt::print(stderr, "{}", error);
    return TLExitCode::kStepFailed;
  }
  if (set->updateInBatch == 1) {
    fmt::print(stderr, "tlctl: {} is not to be saved (updateInBatch 1)\n", options.input);
    return TLExitCode::kStepFailed;
  }
  const int failure = set->saveAs(options.output);
  if (failure == 0) return TLExitCode::kOk;
  fmt::print(stderr, "tlctl: cannot write {}: {}\n", options.output, std::strerror(failure));
  return TLExitCode::kStepFailed;
}

struct Rewriter {
  std::string_view kind;
  int (*rewrite)(const FileOptions&);
};
constexpr Rewriter kRewriters[] = {
    {"task", rewriteTask}, {"project", rewriteProject}, {"steering", rewriteSteering}};

int rewriteFile(const FileOptions& options) {
  for (const auto& rewriter : kRewriters) {
    if (rewriter.kind == options.kind) return rewriter.rewrite(options);
  }
  return TLExitCode::kWrongUse;
}

}  // namespace

std::vector<TLCommand> fileCommands() {
  return {
      {"check",
       "Read a file as the daemon would and say what it holds and what is wrong with it",
       {"tlctl check heat.task", "tlctl check fan/fan.run > summary.txt"},
       [](CLI::App& app) -> std::function<int()> {
         auto options = std::make_shared<FileOptions>();
         app.add_option("FILE", options->input, "any file of the suite")->required();
         return [options] { return showFile(*options); };
       }},
      {"show",
       "Say what a file holds: task, project, run, steering and definition files",
       {"tlctl show fan/fan.run", "tlctl show --json fan/fan.run"},
       [](CLI::App& app) -> std::function<int()> {
         auto options = std::make_shared<FileOptions>();
         app.add_option("FILE", options->input, "any file of the suite")->required();
         app.add_flag("--json", options->json, "all of it, as JSON");
         return [options] { return showFile(*options); };
       }},
      {"rewrite",
       "Read a file and write it in its present form",
       {"tlctl rewrite task old.task new.task", "tlctl rewrite project old.run new.run",
        "tlctl rewrite steering heat.steering copy.steering"},
       [](CLI::App& app) -> std::function<int()> {
         auto options = std::make_shared<FileOptions>();
         app.add_option("KIND", options->kind, "kind of file")
             ->required()
             ->check(CLI::IsMember({"task", "project", "steering"}));
         app.add_option("IN", options->input, "file to read")->required();
         app.add_option("OUT", options->output, "file to write")->required();
         return [options] { return rewriteFile(*options); };
       }},
  };
}
