#include <fmt/format.h>
#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <iostream>
#include <memory>
#include <optional>
#include <sstream>
#include <utility>

#include "platform/TLHostForm.h"
#include "textio/TLTextSink.h"
#include "tool/TLAnswer.h"
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
  bool offline = false;
};

/// What there is to say about a file.
struct FileLook {
  TLFileKind kind = TLFileKind::unknown;
  bool good = false;
  std::vector<TLFileRemark> remarks;
  std::string report;  ///< the remarks as text
  std::string text;    ///< what it holds, for people
  nlohmann::json summary = nlohmann::json::object();
  std::string blocks;  ///< its text in the block syntax

  void take(const TLFileReport& from) {
    remarks.insert(remarks.end(), from.remarks().begin(), from.remarks().end());
    report += from.text();
  }
};

std::string stepText(const TLSubTask& step, std::size_t position) {
  const auto& balance = step.loadBalancing;
  std::string text =
      fmt::format("  step {}  {}\n    runs      {} on {}{}\n", position, step.name, step.executable,
                  step.hostName, step.enabled != 0 ? "" : "  (disabled)");
  text += fmt::format("    starts    {}\n", step.waitingTask == 1   ? "after all steps before it"
                                            : step.waitingTask == 0 ? "beside the others"
                                                                    : "never");
  if (balance.parallel != 0) {
    text += fmt::format("    parallel  {} processes\n", balance.processNames.size());
  }
  if (balance.queuingSystemActivated != 0) {
    text += fmt::format("    queue     {} of system {}\n", balance.queuingSystemQueue,
                        balance.queuingSystemActivated);
  }
  for (const auto& argument : step.arguments.entries()) {
    const bool carried = argument->hasLocalFile() != 0 && argument->localFile() != 0;
    text += fmt::format("    argument  {} {}{}\n", argument->type(), argument->value(),
                        carried ? "  (carried along)" : "");
  }
  return text;
}

/// In files written on Windows each line ends in a carriage return, which belongs to the line's
/// last word: no block's name is recognised.
constexpr const char* kCarriageReturns =
    "its lines end in carriage returns, which count as part of the last words, so that hardly "
    "anything of it is recognised: take them out (dos2unix)";

bool hasCarriageReturns(std::string_view text) {
  return text.find("\r\n") != std::string_view::npos;
}

/// How far a look at a task goes beyond the file itself.
enum class TaskLook { file, hereOnly, hosts };

FileLook lookAtTask(const std::string& path, TaskLook depth) {
  TLTaskFile file(path);
  FileLook look;
  look.kind = TLFileKind::task;
  look.good = file.read();
  if (look.good) {
    const bool scripts = file.checkJobScripts(true);
    const bool hosts = depth == TaskLook::file || file.checkHosts(depth == TaskLook::hosts);
    look.good = scripts && hosts;
  }
  look.take(file.report());
  if (!look.good) return look;
  const TLTask& task = file.task();
  look.text = fmt::format("task {}\n  file         {}\n  computation  {}\n  steps        {}\n",
                          task.name, path, task.computationPath(), task.subTaskCount());
  for (std::size_t i = 0; i < task.subTasks.size(); ++i)
    look.text += stepText(*task.subTasks[i], i);
  TLTextSink sink;
  task.write(sink);
  look.blocks = sink.text();
  return look;
}

FileLook lookAtProject(const std::string& path) {
  TLProjectFile file(path);
  FileLook look;
  look.kind = TLFileKind::project;
  look.good = file.read(TLDefinitionNeed::look, false);
  look.take(file.report());
  if (!look.good) return look;
  const TLSummary summary = summaryOf(file.project());
  look.text = summary.text();
  look.summary = summary.json();
  look.blocks = file.text();
  return look;
}

FileLook lookAtDefinition(const std::string& path, TLFileKind kind, const std::string& text) {
  TLFileReport report(path);
  TLSummary summary;
  FileLook look;
  look.kind = kind;
  look.good = summarizeDefinition(kind, text, report, summary);
  look.take(report);
  look.text = summary.text();
  look.summary = summary.json();
  look.blocks = text;
  return look;
}

FileLook lookAtText(const std::string& path, const std::string& text, TaskLook depth) {
  const TLFileKind kind = kindOfText(text);
  switch (kind) {
    case TLFileKind::project:
      return lookAtProject(path);
    case TLFileKind::task:
    case TLFileKind::unknown:
      return lookAtTask(path, depth);
    default:
      return lookAtDefinition(path, kind, text);
  }
}

FileLook lookAt(const std::string& path, TaskLook depth) {
  const auto text = hostForm().readFile(path);
  if (!text) return lookAtTask(path, depth);  // says that it can't be opened
  FileLook look = lookAtText(path, *text, depth);
  if (hasCarriageReturns(*text)) {
    TLFileReport report(path);
    report.add(false, kCarriageReturns);
    look.take(report);
  }
  return look;
}

nlohmann::json remarksJson(const std::vector<TLFileRemark>& remarks) {
  auto json = nlohmann::json::array();
  for (const auto& remark : remarks) {
    json.push_back({{"fault", remark.isFault},
                    {"line", remark.line},
                    {"column", remark.column},
                    {"text", remark.text},
                    {"message", remark.message}});
  }
  return json;
}

// `whole`: all that the file holds goes into the JSON, too.
int showFile(std::string_view command, const FileOptions& options, bool whole) {
  const TaskLook depth = whole             ? TaskLook::file
                         : options.offline ? TaskLook::hereOnly
                                           : TaskLook::hosts;
  const FileLook look = lookAt(options.input, depth);
  fmt::print(stderr, "{}", look.report);
  if (options.json) {
    nlohmann::json body{{"kind", nameOfKind(look.kind)},
                        {"file", options.input},
                        {"good", look.good},
                        {"remarks", remarksJson(look.remarks)}};
    if (whole && look.good) {
      body["summary"] = look.summary;
      body["content"] = blocksAsJson(look.blocks);
    }
    printAnswer(command, std::move(body));
  } else if (look.good) {
    fmt::print("{}", look.text);
  }
  return look.good ? TLExitCode::kOk : TLExitCode::kStepFailed;
}

/// Each answers 0, or an errno of the writing; none, everything said, when there is nothing to
/// write.
std::optional<int> rewriteProject(const FileOptions& options) {
  TLProjectFile file(options.input);
  const bool good = file.read(TLDefinitionNeed::rewrite, true);
  fmt::print(stderr, "{}", file.report().text());  // what is lost, too
  if (!good) return std::nullopt;
  errno = 0;
  if (file.project().write(options.output) == 1) return 0;
  return errno == 0 ? EIO : errno;
}

std::optional<int> rewriteTask(const FileOptions& options) {
  TLTaskFile file(options.input);
  if (!file.read(!options.json)) {
    fmt::print(stderr, "{}", file.report().text());
    return std::nullopt;
  }
  TLTextSink sink;
  file.task().write(sink);
  return hostForm().replaceFile(options.output, sink.text());
}

// A set and its binary file.
std::optional<int> rewriteSteering(const FileOptions& options) {
  std::string error;
  std::ostringstream unheard;
  const auto set = readSteeringSet(options.input, error, options.json ? unheard : std::cout);
  if (!set) {
    fmt::print(stderr, "{}", error);
    return std::nullopt;
  }
  if (set->updateInBatch != 1) return set->saveAs(options.output);
  complain("rewrite", options.input + " is not to be saved: it says \"updateInBatch 1\"");
  return std::nullopt;
}

struct Rewriter {
  std::string_view kind;
  std::optional<int> (*rewrite)(const FileOptions&);
};
constexpr Rewriter kRewriters[] = {
    {"task", rewriteTask}, {"project", rewriteProject}, {"steering", rewriteSteering}};

int rewriteFile(const FileOptions& options) {
  const auto* rewriter = std::find_if(std::begin(kRewriters), std::end(kRewriters),
                                      [&](const auto& one) { return one.kind == options.kind; });
  // What isn't recognised would be lost.
  const bool refused = hasCarriageReturns(hostForm().readFile(options.input).value_or(""));
  if (refused) complain("rewrite", options.input + ": " + kCarriageReturns);
  const auto failure = refused ? std::nullopt : rewriter->rewrite(options);
  if (failure && *failure != 0) {
    complain("rewrite",
             fmt::format("cannot write {}: {}", options.output, std::strerror(*failure)));
  }
  const bool done = failure && *failure == 0;
  if (options.json) {
    printAnswer("rewrite", {{"kind", options.kind},
                            {"input", options.input},
                            {"output", options.output},
                            {"done", done}});
  }
  return done ? TLExitCode::kOk : TLExitCode::kStepFailed;
}

std::function<std::function<int()>(CLI::App&)> lookCommand(bool whole) {
  return [whole](CLI::App& app) -> std::function<int()> {
    auto options = std::make_shared<FileOptions>();
    app.add_option("FILE", options->input, "any file of the suite")->required();
    if (!whole) app.add_flag("--offline", options->offline, "ask no other host whether it answers");
    declareJson(app, options->json);
    return [options, whole, name = app.get_name()] { return showFile(name, *options, whole); };
  };
}

}  // namespace

std::vector<TLCommand> fileCommands() {
  return {
      {"check",
       "Read a file as the daemon would and say what it holds and what is wrong with it",
       {"tlctl check heat.task", "tlctl check fan/fan.run > summary.txt"},
       lookCommand(false)},
      {"show",
       "Say what a file holds: task, project, run, steering and definition files",
       {"tlctl show fan/fan.run", "tlctl show --json fan/fan.run"},
       lookCommand(true)},
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
         declareJson(app, options->json);
         return [options] { return rewriteFile(*options); };
       }},
  };
}
