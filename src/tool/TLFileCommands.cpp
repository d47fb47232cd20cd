#include <fmt/format.h>
#include <CLI/CLI.hpp>

#include <cstdio>
#include <cstring>
#include <memory>

#include "platform/TLHostForm.h"
#include "textio/TLTextSink.h"
#include "tool/TLCommands.h"
#include "tool/TLExitCode.h"
#include "tool/TLTaskFile.h"

namespace {

struct FileOptions {
  std::string kind;
  std::string input;
  std::string output;
};

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

int checkTask(const FileOptions& options) {
  TLTaskFile file(options.input);
  const bool good = file.read();
  fmt::print(stderr, "{}", file.report().text());
  if (!good) return TLExitCode::kStepFailed;
  const TLTask& task = file.task();
  fmt::print("task {}\n  file         {}\n  computation  {}\n  steps        {}\n", task.name,
             options.input, task.computationPath(), task.subTaskCount());
  for (std::size_t i = 0; i < task.subTasks.size(); ++i) printStep(*task.subTasks[i], i);
  return TLExitCode::kOk;
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

}  // namespace

std::vector<TLCommand> fileCommands() {
  return {
      {"check",
       "Read a file as the daemon would and say what it holds and what is wrong with it",
       {"tlctl check heat.task", "tlctl check heat.task > summary.txt"},
       [](CLI::App& app) -> std::function<int()> {
         auto options = std::make_shared<FileOptions>();
         app.add_option("FILE", options->input, "task file")->required();
         return [options] { return checkTask(*options); };
       }},
      {"rewrite",
       "Read a file and write it in its present form",
       {"tlctl rewrite task old.task new.task"},
       [](CLI::App& app) -> std::function<int()> {
         auto options = std::make_shared<FileOptions>();
         app.add_option("KIND", options->kind, "kind of file")
             ->required()
             ->check(CLI::IsMember({"task"}));
         app.add_option("IN", options->input, "file to read")->required();
         app.add_option("OUT", options->output, "file to write")->required();
         return [options] { return rewriteTask(*options); };
       }},
  };
}
