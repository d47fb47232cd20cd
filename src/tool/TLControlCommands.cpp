#include <fmt/format.h>
#include <CLI/CLI.hpp>

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <memory>
#include <nlohmann/json.hpp>

#include "messaging/TLVirtualMachine.h"
#include "tool/TLCommands.h"
#include "tool/TLDaemonClient.h"
#include "tool/TLDaemonFinder.h"
#include "tool/TLExitCode.h"
#include "tool/TLTerminal.h"

namespace {

using Json = nlohmann::json;

constexpr int kJsonVersion = 1;
constexpr int kNoStep = -1;
constexpr std::int32_t kRunning = 1;
constexpr TLDaemonClient::Seconds kPollPatience{10.0};
constexpr TLDaemonClient::Seconds kStopPatience{60.0};

struct ControlOptions {
  std::string task;
  int step = kNoStep;
  bool json = false;
};

// Everything at hand to talk to one daemon.
struct Contact {
  TLToolEnvironment environment;
  TLVirtualMachineStarter machine{environment.userDirectory()};
  std::optional<TLRunState> state;

  // A daemon hears only those who have told it that they are there.
  TLDaemonClient join() const {
    TLDaemonClient client(state->tid);
    client.send(TL_MSG_RECONNECTED);
    return client;
  }
};

bool reach(Contact& contact, const ControlOptions& options) {
  contact.state = findDaemon(contact.environment, contact.machine, options.task);
  return contact.state.has_value();
}

bool isStep(const Contact& contact, int step) {
  if (step >= 0 && step < static_cast<int>(contact.state->steps.size())) return true;
  fmt::print(stderr, "tlctl: there is no step {}: {} has steps 0 to {}\n", step,
             contact.state->taskFile, static_cast<int>(contact.state->steps.size()) - 1);
  return false;
}

// Statuses ----------------------------------------------------------------------------------

// True while the daemon's own notes can be taken for the truth: nothing that it holds for running
// has ended meanwhile. Only the virtual machine's children can be looked at from here.
bool isCurrent(const TLRunState& state) {
  return std::all_of(state.steps.begin(), state.steps.end(), [](const TLRunStateStep& step) {
    if (step.status != kRunning) return true;
    return step.queue == 0 && !step.children.empty() &&
           std::all_of(step.children.begin(), step.children.end(), [](std::int32_t tid) {
             return TL_virtual_machine_status(tid) == kVirtualMachineOk;
           });
  });
}

// The statuses as the daemon answers them; those of its state file when it is busy.
bool refresh(Contact& contact) {
  TLDaemonClient client = contact.join();
  const bool answered = client.poll(kPollPatience);
  const std::string file =
      TLRunState::fileName(contact.environment.userDirectory(), contact.state->pid);
  if (auto newer = TLRunState::load(file)) contact.state = std::move(newer);
  for (std::size_t i = 0; i < contact.state->steps.size(); ++i) {
    if (answered && i < client.statuses().size()) {
      contact.state->steps[i].status = client.statuses()[i];
    }
  }
  return answered;
}

double elapsed(const TLRunStateStep& step) {
  if (step.started <= 0) return 0;
  return (step.ended > 0 ? step.ended : static_cast<double>(std::time(nullptr))) - step.started;
}

std::string jobText(const TLRunStateStep& step) {
  if (step.queue == 0 || step.jobNumber <= 0) return {};
  return fmt::format(", job {}{}{}", step.jobNumber, step.queueState.empty() ? "" : " ",
                     step.queueState);
}

void printStatusTable(const TLRunState& state) {
  const TLTerminal terminal;
  std::size_t widest = 4;
  for (const auto& step : state.steps) widest = std::max(widest, step.name.size());
  fmt::print("{}\n", terminal.bold(fmt::format("{} on {}, daemon {}", state.taskFile, state.host,
                                               state.tid)));
  fmt::print("step  {:<{}}  {:<12}  {:>10}  {}\n", "name", widest, "status", "time",
             "host, and why");
  for (std::size_t i = 0; i < state.steps.size(); ++i) {
    const auto& step = state.steps[i];
    const std::string word = statusText(step.status);
    fmt::print("{:>4}  {:<{}}  {}  {:>10}  {}{}{}{}\n", i, step.name, widest,
               terminal.statusColoured(word, fmt::format("{:<12}", word)),
               durationText(elapsed(step)), step.host, jobText(step),
               step.reason.empty() ? "" : ": ", step.reason);
  }
}

Json toJson(const TLRunStateStep& step, std::size_t position) {
  return {{"step", position},          {"name", step.name},     {"executable", step.executable},
          {"host", step.host},         {"status", step.status}, {"word", statusText(step.status)},
          {"children", step.children}, {"job", step.jobNumber}, {"queue_state", step.queueState},
          {"started", step.started},   {"ended", step.ended},   {"reason", step.reason}};
}

Json toJson(const TLRunState& state) {
  Json json = {{"version", kJsonVersion},  {"task_file", state.taskFile},
               {"task", state.taskName},   {"daemon", state.tid},
               {"pid", state.pid},         {"host", state.host},
               {"started", state.started}, {"live", isLive(state)},
               {"steps", Json::array()}};
  for (std::size_t i = 0; i < state.steps.size(); ++i) {
    json["steps"].push_back(toJson(state.steps[i], i));
  }
  return json;
}

void printJson(const Json& json) {
  fmt::print("{}\n", json.dump(2, ' ', false, Json::error_handler_t::replace));
}

int showStatus(const ControlOptions& options) {
  Contact contact;
  if (!reach(contact, options)) return TLExitCode::kNobodyThere;
  const bool answered = isCurrent(*contact.state) || refresh(contact);
  if (options.json) {
    Json json = toJson(*contact.state);
    json["answered"] = answered;
    printJson(json);
  } else {
    if (!answered) fmt::print(stderr, "tlctl: the daemon is busy; this is what it last noted\n");
    printStatusTable(*contact.state);
  }
  return TLExitCode::kOk;
}

int listTasks(const ControlOptions& options) {
  const TLToolEnvironment environment;
  const auto states = TLDaemonFinder(environment.userDirectory()).all();
  if (options.json) {
    Json json = {{"version", kJsonVersion}, {"tasks", Json::array()}};
    for (const auto& state : states) json["tasks"].push_back(toJson(state));
    printJson(json);
    return TLExitCode::kOk;
  }
  for (const auto& state : states) {
    fmt::print("{}\t{}\t{}\t{}\t{}\n", state.tid, state.host, isLive(state) ? "live" : "killed",
               state.taskName, state.taskFile);
  }
  return TLExitCode::kOk;
}

// Requests ----------------------------------------------------------------------------------

int stopTask(const ControlOptions& options) {
  Contact contact;
  if (!reach(contact, options)) return TLExitCode::kNobodyThere;
  TLDaemonClient client = contact.join();
  if (options.step == kNoStep) {
    if (client.ask(TL_MSG_STOP, -1, TL_MSG_STOP, kStopPatience)) {
      fmt::print("all steps of {} are stopped\n", contact.state->taskFile);
      return TLExitCode::kOk;
    }
    fmt::print(stderr, "tlctl: the daemon has not confirmed the stop\n");
    return TLExitCode::kStepFailed;
  }
  if (!isStep(contact, options.step)) return TLExitCode::kWrongUse;
  client.send(TL_MSG_STOP, options.step);
  if (!refresh(contact)) return TLExitCode::kStepFailed;
  fmt::print("step {}: {}\n", options.step,
             statusText(contact.state->steps[static_cast<std::size_t>(options.step)].status));
  return TLExitCode::kOk;
}

int suspendTask(const ControlOptions& options) {
  Contact contact;
  if (!reach(contact, options)) return TLExitCode::kNobodyThere;
  TLDaemonClient client = contact.join();
  if (options.step == kNoStep) {
    client.send(TL_MSG_SUSPEND_TASK);
    fmt::print("asked to end after the next iteration; the daemon ends with the solver\n");
    return TLExitCode::kOk;
  }
  if (!isStep(contact, options.step)) return TLExitCode::kWrongUse;
  client.send(TL_MSG_SUSPEND_SUBTASK, options.step);
  fmt::print("step {} is asked to end after the next iteration\n", options.step);
  return TLExitCode::kOk;
}

int saveSolution(const ControlOptions& options) {
  Contact contact;
  if (!reach(contact, options)) return TLExitCode::kNobodyThere;
  if (!isStep(contact, options.step)) return TLExitCode::kWrongUse;
  TLDaemonClient client = contact.join();
  client.send(TL_MSG_SAVE_SOLUTION, options.step);
  fmt::print("step {} is asked to save its solution\n", options.step);
  return TLExitCode::kOk;
}

int replayEnds(const ControlOptions& options) {
  Contact contact;
  if (!reach(contact, options)) return TLExitCode::kNobodyThere;
  TLDaemonClient client = contact.join();
  if (!client.ask(TL_MSG_GET_STATUS_MESSAGE, TL_MSG_GET_STATUS_MESSAGE, kPollPatience)) {
    fmt::print(stderr, "tlctl: the daemon is busy\n");
    return TLExitCode::kStepFailed;
  }
  for (const auto& report : client.takeEndReports()) {
    fmt::print("step {} has ended{}\n", report.step, report.texts.empty() ? "" : ":");
    for (const auto& text : report.texts) fmt::print("  {}\n", text);
  }
  return TLExitCode::kOk;
}

int endDaemon(const ControlOptions& options) {
  Contact contact;
  if (!reach(contact, options)) return TLExitCode::kNobodyThere;
  TLDaemonClient client = contact.join();
  client.send(TL_MSG_EXIT);
  if (client.waitGone(kStopPatience)) {
    fmt::print("the daemon of {} has ended; steps that ran go on\n", contact.state->taskFile);
    return TLExitCode::kOk;
  }
  fmt::print(stderr, "tlctl: the daemon has not ended yet\n");
  return TLExitCode::kStepFailed;
}

enum Wants { kNothing = 0, kTask = 1, kStep = 2, kStepNeeded = 4, kJson = 8 };

std::function<std::function<int()>(CLI::App&)> withOptions(int wants,
                                                           int (*run)(const ControlOptions&)) {
  return [=](CLI::App& app) -> std::function<int()> {
    auto options = std::make_shared<ControlOptions>();
    if ((wants & kTask) != 0) {
      app.add_option("TASK", options->task,
                     "task file, task name or daemon; the only one if left out");
    }
    if ((wants & (kStep | kStepNeeded)) != 0) {
      app.add_option("--step", options->step, "position of the step, from 0")
          ->check(CLI::NonNegativeNumber)
          ->required((wants & kStepNeeded) != 0);
    }
    if ((wants & kJson) != 0) app.add_flag("--json", options->json, "print JSON");
    return [options, run] { return run(*options); };
  };
}

}  // namespace

std::optional<TLRunState> findDaemon(const TLToolEnvironment& environment,
                                     TLVirtualMachineStarter& machine, const std::string& who) {
  std::string error;
  auto state = TLDaemonFinder(environment.userDirectory()).find(who, error);
  if (state && (!machine.running() || !TLDaemonClient::enrol())) {
    error = fmt::format("there is no virtual machine at PVM_TMP={}: the daemon can't be reached",
                        std::getenv("PVM_TMP"));
    state.reset();
  }
  if (!state) fmt::print(stderr, "tlctl: {}\n", error);
  return state;
}

std::vector<TLCommand> controlCommands() {
  return {
      {"status",
       "Show how the steps of a running task stand",
       {"tlctl status", "tlctl status heat.task --json"},
       withOptions(kTask | kJson, showStatus)},
      {"stop",
       "Stop a task, or one of its steps, at once",
       {"tlctl stop heat.task", "tlctl stop heat.task --step 1"},
       withOptions(kTask | kStep, stopTask)},
      {"suspend",
       "Ask the solvers to end after their next iteration and save what they have",
       {"tlctl suspend heat.task", "tlctl suspend heat.task --step 1"},
       withOptions(kTask | kStep, suspendTask)},
      {"save",
       "Ask a running step to save its solution and go on",
       {"tlctl save --step 1", "tlctl save heat.task --step 1"},
       withOptions(kTask | kStepNeeded, saveSolution)},
      {"replay",
       "Show the end messages of the steps that nobody has asked for yet",
       {"tlctl replay", "tlctl replay heat.task"},
       withOptions(kTask, replayEnds)},
      {"exit",
       "End the daemon of a task; its steps go on",
       {"tlctl exit", "tlctl exit heat.task"},
       withOptions(kTask, endDaemon)},
      {"list",
       "List the tasks of this user: daemon, host, state, task, file",
       {"tlctl list", "tlctl list --json"},
       withOptions(kJson, listTasks)},
  };
}
