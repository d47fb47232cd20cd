#include <fmt/format.h>
#include <CLI/CLI.hpp>

#include <cstdio>
#include <iostream>
#include <memory>
#include <nlohmann/json.hpp>
#include <sstream>

#include "launching/TLLaunchPlan.h"
#include "launching/TLLaunching.h"
#include "launching/TLRemPathMapping.h"
#include "messaging/TLVirtualMachine.h"
#include "platform/TLConsole.h"
#include "platform/TLHostForm.h"
#include "tool/TLAnswer.h"
#include "tool/TLCommands.h"
#include "tool/TLExitCode.h"
#include "tool/TLTaskFile.h"

namespace {

using Json = nlohmann::json;

/// Stands for the identifier that the daemon will have.
constexpr const char* kDaemonTid = "<tid>";

struct PlanOptions {
  std::string task;
  bool json = false;
};

/// Tells the kinds of the hosts. Without a virtual machine nothing is known of them: they are taken
/// for hosts like this one.
class HostKinds {
 public:
  explicit HostKinds(const TLVirtualMachineStarter& machine) : known_(machine.running()) {
    if (!known_) return;
    TL_virtual_machine_allow(true);
    TL_virtual_machine_mytid();
  }
  bool known() const { return known_; }
  bool isWin32(const RWCString& host) const {
    if (known_) return hostIsWin32(host) != 0;
    return hostForm().kind() == TLHostKind::win32;
  }

 private:
  bool known_;
};

/// One word as a UNIX shell would have it, so that the line can be read without doubt.
std::string shellWord(const std::string& word) {
  constexpr std::string_view kPlain =
      "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789._/-+,:=@%<>\\";
  if (!word.empty() && word.find_first_not_of(kPlain) == std::string::npos) return word;
  std::string quoted = "'";
  for (const char c : word) quoted += c == '\'' ? "'\\''" : std::string(1, c);
  return quoted + "'";
}

std::string commandLine(const TLLaunchPlan& plan) {
  std::string line = shellWord(plan.program);
  for (const auto& word : plan.words) line += " " + shellWord(word);
  return line;
}

void printJobScript(const std::string& text) {
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line);) fmt::print("  script    {}\n", line);
}

const char* actionWord(TLPlannedAction::Kind kind) {
  switch (kind) {
    case TLPlannedAction::Kind::copy:
      return "copy";
    case TLPlannedAction::Kind::tree:
      return "tree";
    case TLPlannedAction::Kind::command:
      break;
  }
  return "command";
}

/// Commands and copies in their order, and what they come to.
void printActions(const TLLaunchPlan& plan) {
  std::size_t copies = 0;
  std::int64_t bytes = 0;
  for (const auto& action : plan.actions) {
    if (action.kind == TLPlannedAction::Kind::command) {
      fmt::print("  there     {}\n", action.target);
      continue;
    }
    const bool tree = action.kind == TLPlannedAction::Kind::tree;
    fmt::print("  {}    {} to {}:{} ({} bytes)\n", tree ? "trees " : "copies", action.source,
               plan.farHost, action.target, action.bytes);
    ++copies;
    bytes += action.bytes;
  }
  if (copies > 0) fmt::print("  carries   {} copies, {} bytes\n", copies, bytes);
}

Json actionsJson(const TLLaunchPlan& plan) {
  Json actions = Json::array();
  for (const auto& action : plan.actions) {
    Json entry = {{"kind", actionWord(action.kind)}, {"host", plan.farHost}};
    if (action.kind == TLPlannedAction::Kind::command) {
      entry["command"] = action.target;
    } else {
      entry["source"] = action.source;
      entry["target"] = action.target;
      entry["bytes"] = action.bytes;
    }
    actions.push_back(std::move(entry));
  }
  return actions;
}

Json mappedJson(const TLLaunchPlan& plan) {
  Json mapped = Json::array();
  for (const auto& path : plan.mapped)
    mapped.push_back({{"here", path.here}, {"there", path.there}});
  return mapped;
}

void printPlan(const TLSubTask& step, std::size_t position, const TLLaunchPlan& plan) {
  fmt::print("step {}  {}\n", position, step.name);
  if (!plan.program.empty()) {
    fmt::print("  host      {} ({})\n  started   by {}\n  command   {}\n", plan.host,
               plan.win32 ? "WIN32" : "UNIX", startWayWord(plan.way), commandLine(plan));
  }
  if (!plan.runFile.empty()) fmt::print("  run file  {}\n", plan.runFile);
  for (const auto& file : plan.written) fmt::print("  writes    {}\n", file.path);
  printActions(plan);
  for (const auto& path : plan.mapped) fmt::print("  maps      {} to {}\n", path.here, path.there);
  for (std::size_t block = 0; block < plan.blockProcess.size(); ++block) {
    fmt::print("  block     {} on process {}\n", block + 1, plan.blockProcess[block]);
  }
  if (!plan.submission.empty()) fmt::print("  submits   {}\n", plan.submission);
  printJobScript(plan.jobScript.text);
  for (const auto& note : plan.notes) fmt::print("  note      {}\n", note);
}

Json planJson(const TLSubTask& step, std::size_t position, const TLLaunchPlan& plan) {
  Json written = Json::array();
  for (const auto& file : plan.written) {
    Json entry = {{"path", file.path}};
    if (!file.text.empty()) entry["text"] = file.text;
    written.push_back(std::move(entry));
  }
  return {{"position", position},
          {"name", step.name},
          {"enabled", step.enabled != 0},
          {"host", plan.host},
          {"kind", plan.win32 ? "WIN32" : "UNIX"},
          {"way", startWayWord(plan.way)},
          {"program", plan.program},
          {"words", plan.words},
          {"run_file", plan.runFile},
          {"writes", std::move(written)},
          {"carries", plan.carried},
          {"transfers", actionsJson(plan)},
          {"mapped", mappedJson(plan)},
          {"blocks", plan.blockProcess},
          {"script_lines", plan.scriptLines},
          {"submission", plan.submission},
          {"notes", plan.notes}};
}

int planTask(const PlanOptions& options) {
  const TLConsoleRedirect complaints(std::cerr);  // of the records' readers
  const TLToolEnvironment environment;
  TLTaskFile file(options.task);
  if (!file.read()) {
    fmt::print(stderr, "{}", file.report().text());
    return TLExitCode::kStepFailed;
  }
  const TLVirtualMachineStarter machine(environment.userDirectory());
  const HostKinds kinds(machine);
  const auto isWin32 = [&kinds](const RWCString& host) { return kinds.isWin32(host); };
  TLLaunchSite site = launchSite();
  site.tid = kDaemonTid;
  TLRemPathMapping mapping("remote paths.txt", false);
  Json steps = Json::array();
  const auto& subTasks = file.task().subTasks;
  for (std::size_t i = 0; i < subTasks.size(); ++i) {
    TLLaunchPlan plan = planLaunch(*subTasks[i], isWin32, site, &readRunFileFacts, mapping);
    if (!kinds.known()) plan.notes.emplace_back("no virtual machine: the kind of host is assumed");
    if (options.json) {
      steps.push_back(planJson(*subTasks[i], i, plan));
    } else {
      printPlan(*subTasks[i], i, plan);
    }
  }
  if (options.json) {
    printAnswer("plan", {{"task", options.task}, {"steps", std::move(steps)}});
  }
  if (file.checkJobScripts(true)) return TLExitCode::kOk;
  fmt::print(stderr, "{}", file.report().text());
  return TLExitCode::kStepFailed;
}

}  // namespace

std::vector<TLCommand> planCommands() {
  return {{"plan",
           "Show what a run of a task would start, without starting or changing anything",
           {"tlctl plan heat.task", "tlctl plan --json heat.task"},
           [](CLI::App& app) -> std::function<int()> {
             auto options = std::make_shared<PlanOptions>();
             app.add_option("FILE", options->task, "task file")->required();
             declareJson(app, options->json);
             return [options] { return planTask(*options); };
           }}};
}
