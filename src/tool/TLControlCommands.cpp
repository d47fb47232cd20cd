#include <fmt/format.h>
#include <CLI/CLI.hpp>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <memory>
#include <nlohmann/json.hpp>
#include <thread>

#include "messaging/TLVirtualMachine.h"
#include "tool/TLAnswer.h"
#include "tool/TLCommands.h"
#include "tool/TLDaemonClient.h"
#include "tool/TLDaemonFinder.h"
#include "tool/TLExitCode.h"
#include "tool/TLRunView.h"

namespace {

using Json = nlohmann::json;

constexpr int kNoStep = -1;
constexpr std::int32_t kRunning = 1;
constexpr TLDaemonClient::Seconds kPollPatience{10.0};
constexpr TLDaemonClient::Seconds kStopPatience{60.0};
constexpr auto kNotePatience = std::chrono::seconds(2);
constexpr auto kNoteLook = std::chrono::milliseconds(20);

struct ControlOptions {
  std::string command;
  std::string task;
  std::string step;  ///< position or name; empty for the whole task
  bool json = false;
};

// Everything at hand to talk to one daemon.
struct Contact {
  TLToolEnvironment environment;
  TLVirtualMachineStarter machine{environment.userDirectory()};
  std::optional<TLRunState> state;
  int step = kNoStep;

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

// False, said, when a step is asked for that isn't there.
bool takeStep(Contact& contact, const ControlOptions& options) {
  if (options.step.empty()) return true;
  std::string error;
  const auto step = findStep(*contact.state, options.step, error);
  if (!step) complain(options.command, error);
  contact.step = step.value_or(kNoStep);
  return step.has_value();
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

int showStatus(const ControlOptions& options) {
  Contact contact;
  if (!reach(contact, options)) return TLExitCode::kNobodyThere;
  const TLRunState& state = *contact.state;
  const bool answered = isCurrent(state) || refresh(contact);
  if (options.json) {
    Json json = statusJson(state);
    json["answered"] = answered;
    printAnswer(options.command, std::move(json));
    return TLExitCode::kOk;
  }
  const TLTerminal terminal;
  if (!answered) complain(options.command, "the daemon is busy; this is what it last noted");
  fmt::print(
      "{}\n{}",
      terminal.bold(fmt::format("{} on {}, daemon {}", state.taskFile, state.host, state.tid)),
      statusTable(state, terminal));
  return TLExitCode::kOk;
}

int listTasks(const ControlOptions& options) {
  const TLToolEnvironment environment;
  const auto states = TLDaemonFinder(environment.userDirectory()).all();
  if (options.json) {
    Json tasks = Json::array();
    for (const auto& state : states) tasks.push_back(statusJson(state));
    printAnswer(options.command, {{"tasks", std::move(tasks)}});
    return TLExitCode::kOk;
  }
  for (const auto& state : states) {
    fmt::print("{}\t{}\t{}\t{}\t{}\n", state.tid, state.host, isLive(state) ? "live" : "killed",
               state.taskName, state.taskFile);
  }
  return TLExitCode::kOk;
}

// Requests ----------------------------------------------------------------------------------

// What came of a request. Told as text, or as JSON with `details`.
int answer(const ControlOptions& options, const Contact& contact, bool done,
           const std::string& text, Json details = Json::object()) {
  if (options.json) {
    details["task_file"] = contact.state->taskFile;
    details["daemon"] = contact.state->tid;
    details["done"] = done;
    if (contact.step != kNoStep) details["step"] = contact.step;
    printAnswer(options.command, std::move(details));
  } else if (done) {
    fmt::print("{}\n", text);
  }
  if (!done) complain(options.command, text);
  return done ? TLExitCode::kOk : TLExitCode::kStepFailed;
}

std::string busyText(const Contact& contact) {
  return fmt::format(
      "daemon {} on {} has not answered: it is busy with a start or a copy; ask "
      "again, or see \"tlctl status {}\"",
      contact.state->tid, contact.state->host, contact.state->taskFile);
}

// Why a step ended. The daemon notes that after the cycle in which it answers.
std::string reasonOf(const Contact& contact, std::int32_t step) {
  const std::string file =
      TLRunState::fileName(contact.environment.userDirectory(), contact.state->pid);
  const auto deadline = std::chrono::steady_clock::now() + kNotePatience;
  do {
    const auto state = TLRunState::load(file);
    if (!state || step < 0 || step >= static_cast<std::int32_t>(state->steps.size())) return {};
    const auto& entry = state->steps[static_cast<std::size_t>(step)];
    if (isTerminalStatus(entry.status)) return entry.reason;
    std::this_thread::sleep_for(kNoteLook);
  } while (std::chrono::steady_clock::now() < deadline);
  return {};
}

int stopTask(const ControlOptions& options) {
  Contact contact;
  if (!reach(contact, options)) return TLExitCode::kNobodyThere;
  if (!takeStep(contact, options)) return TLExitCode::kWrongUse;
  TLDaemonClient client = contact.join();
  if (contact.step == kNoStep) {
    const bool done = client.ask(TL_MSG_STOP, -1, TL_MSG_STOP, kStopPatience);
    return answer(options, contact, done,
                  done ? fmt::format("all steps of {} are stopped", contact.state->taskFile)
                       : busyText(contact));
  }
  client.send(TL_MSG_STOP, contact.step);
  if (!refresh(contact)) return answer(options, contact, false, busyText(contact));
  const std::string word =
      statusText(contact.state->steps[static_cast<std::size_t>(contact.step)].status);
  const std::string reason = reasonOf(contact, contact.step);
  return answer(
      options, contact, true,
      fmt::format("step {}: {}{}{}", contact.step, word, reason.empty() ? "" : ": ", reason),
      {{"word", word}, {"reason", reason}});
}

int suspendTask(const ControlOptions& options) {
  Contact contact;
  if (!reach(contact, options)) return TLExitCode::kNobodyThere;
  if (!takeStep(contact, options)) return TLExitCode::kWrongUse;
  TLDaemonClient client = contact.join();
  if (contact.step == kNoStep) {
    return answer(options, contact, client.send(TL_MSG_SUSPEND_TASK),
                  "asked to end after the next iteration; the daemon ends with the solver");
  }
  return answer(options, contact, client.send(TL_MSG_SUSPEND_SUBTASK, contact.step),
                fmt::format("step {} is asked to end after the next iteration", contact.step));
}

int saveSolution(const ControlOptions& options) {
  Contact contact;
  if (!reach(contact, options)) return TLExitCode::kNobodyThere;
  if (!takeStep(contact, options)) return TLExitCode::kWrongUse;
  return answer(options, contact, contact.join().send(TL_MSG_SAVE_SOLUTION, contact.step),
                fmt::format("step {} is asked to save its solution", contact.step));
}

int replayEnds(const ControlOptions& options) {
  Contact contact;
  if (!reach(contact, options)) return TLExitCode::kNobodyThere;
  TLDaemonClient client = contact.join();
  if (!client.ask(TL_MSG_GET_STATUS_MESSAGE, TL_MSG_GET_STATUS_MESSAGE, kPollPatience)) {
    return answer(options, contact, false, busyText(contact));
  }
  std::string text = "no end message has been missed";
  Json ends = Json::array();
  for (const auto& report : client.takeEndReports()) {
    if (ends.empty()) text.clear();
    text += fmt::format("{}step {} has ended{}", ends.empty() ? "" : "\n", report.step,
                        report.texts.empty() ? "" : ":");
    for (const auto& line : report.texts) text += "\n  " + line;
    const std::string reason = reasonOf(contact, report.step);
    if (!reason.empty()) text += "\n  " + reason;
    ends.push_back({{"step", report.step}, {"texts", report.texts}, {"reason", reason}});
  }
  return answer(options, contact, true, text, {{"ends", std::move(ends)}});
}

int endDaemon(const ControlOptions& options) {
  Contact contact;
  if (!reach(contact, options)) return TLExitCode::kNobodyThere;
  TLDaemonClient client = contact.join();
  client.send(TL_MSG_EXIT);
  const bool done = client.waitGone(kStopPatience);
  return answer(options, contact, done,
                done ? fmt::format("the daemon of {} has ended; steps that ran go on",
                                   contact.state->taskFile)
                     : busyText(contact));
}

enum Wants { kNothing = 0, kTask = 1, kStep = 2, kStepNeeded = 4 };

std::function<std::function<int()>(CLI::App&)> withOptions(int wants,
                                                           int (*run)(const ControlOptions&)) {
  return [=](CLI::App& app) -> std::function<int()> {
    auto options = std::make_shared<ControlOptions>();
    options->command = app.get_name();
    if ((wants & kTask) != 0) {
      app.add_option("TASK", options->task,
                     "task file, task name or daemon; the only one if left out");
    }
    if ((wants & (kStep | kStepNeeded)) != 0) {
      app.add_option("--step", options->step, "name of the step, or its position from 0")
          ->required((wants & kStepNeeded) != 0);
    }
    declareJson(app, options->json);
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
       withOptions(kTask, showStatus)},
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
       withOptions(kNothing, listTasks)},
  };
}
