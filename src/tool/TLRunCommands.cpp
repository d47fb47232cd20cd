#include <fmt/format.h>
#include <CLI/CLI.hpp>

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <memory>

#include "platform/TLHostForm.h"
#include "taskengine/TLKeptRun.h"
#include "tool/TLAnswer.h"
#include "tool/TLCommand.h"
#include "tool/TLCommands.h"
#include "tool/TLDaemonFinder.h"
#include "tool/TLDaemonRunner.h"
#include "tool/TLExitCode.h"
#include "tool/TLRunView.h"
#include "tool/TLTaskFile.h"
#include "tool/TLTaskFollower.h"

namespace {

constexpr TLDaemonClient::Seconds kEndPatience{30.0};
constexpr TLDaemonClient::Seconds kReplayPatience{10.0};

volatile std::sig_atomic_t gInterrupted = 0;

void markInterrupt(int /*signal*/) {
  gInterrupted = 1;
}

struct RunOptions {
  std::string command;
  std::string task;
  std::vector<std::string> tools;
  int intervalMs = 300;
  bool json = false;
};

void declareRunOptions(CLI::App& app, RunOptions& options) {
  app.add_option("TASK", options.task, "task file")->required();
  app.add_option("--tools", options.tools,
                 "directory of the steps' programs (repeat for more; also TL_TOOLS)");
}

void declareInterval(CLI::App& app, RunOptions& options) {
  app.add_option("--interval", options.intervalMs, "milliseconds between two polls")
      ->check(CLI::Range(10, 600000))
      ->capture_default_str();
}

struct EndWords {
  TLTaskFollower::End end;
  const char* word;  ///< in JSON
};
constexpr EndWords kEndWords[] = {{TLTaskFollower::End::allEnded, "all_ended"},
                                  {TLTaskFollower::End::daemonGone, "daemon_gone"},
                                  {TLTaskFollower::End::interrupted, "left"},
                                  {TLTaskFollower::End::noStart, "no_start"}};

void sayHowItEnded(const RunOptions& options, TLTaskFollower::End end, const std::string& task,
                   const std::string& startError) {
  switch (end) {
    case TLTaskFollower::End::allEnded:
      break;
    case TLTaskFollower::End::daemonGone:
      complain(
          options.command,
          fmt::format("the daemon of {} is gone: it was ended or killed, or its virtual machine or "
                      "host went down.\n       Steps that ran may go on. What it noted: tlctl "
                      "report {} -o report.html",
                      task, task));
      break;
    case TLTaskFollower::End::interrupted:
      complain(options.command,
               fmt::format("left; the task goes on. Come back with: tlctl attach {}\n"
                           "       end it with: tlctl stop {}",
                           task, task));
      break;
    case TLTaskFollower::End::noStart:
      complain(options.command, startError);
      break;
  }
}

// What ran where, how long, how it ended, and why not.
void printSummary(const TLRunState& run) {
  const TLTerminal terminal;
  const double took = run.started > 0 ? secondsNow() - run.started : 0;
  fmt::print(
      "\n{}\n{}",
      terminal.bold(fmt::format("{}: {}, {}", run.taskName, countText(run), durationText(took))),
      statusTable(run, terminal));
  const bool remarks =
      std::ranges::any_of(run.steps, [](const auto& step) { return !step.reason.empty(); });
  if (remarks) {
    fmt::print("\nFor all of it: tlctl report {} -o report.html\n", run.taskFile);
  }
}

int answerOf(const RunOptions& options, TLTaskFollower::End end, const TLTaskFollower& follower,
             const TLRunState& run) {
  const auto* words = std::find_if(std::begin(kEndWords), std::end(kEndWords),
                                   [&](const EndWords& one) { return one.end == end; });
  const bool left = end == TLTaskFollower::End::interrupted;
  if (options.json) {
    auto body = statusJson(run);
    body["end"] = words->word;
    printAnswer(options.command, std::move(body));
  } else if (!left && end != TLTaskFollower::End::noStart) {
    printSummary(run);
  }
  return left || follower.allOk() ? TLExitCode::kOk : TLExitCode::kStepFailed;
}

// Follows to the end; ends a daemon whose steps have all ended.
int followAndEnd(const RunOptions& options, const TLToolEnvironment& environment,
                 TLDaemonClient& client, const TLRunState& run, bool endDaemon, bool& left,
                 TLSteeringMirror* mirror = nullptr) {
  std::signal(SIGINT, markInterrupt);
  std::signal(SIGTERM, markInterrupt);
  const std::string& directory = environment.userDirectory();
  TLTaskFollower follower(client, run, {directory, TLKeptRun::fileName(directory, run.taskFile)});
  if (options.json) follower.keepOutputFree();
  if (mirror != nullptr) follower.showResiduals(*mirror);
  const auto end = follower.follow(std::chrono::milliseconds(options.intervalMs), gInterrupted);
  sayHowItEnded(options, end, run.taskFile, client.startError());
  left = end == TLTaskFollower::End::interrupted;
  TLRunState last = follower.run();
  if (end == TLTaskFollower::End::allEnded && endDaemon) {
    client.send(TL_MSG_EXIT);
    // The log is another file then, and reasons name it.
    const bool gone = client.waitGone(kEndPatience);
    const auto kept = TLKeptRun::load(TLKeptRun::fileName(directory, run.taskFile));
    if (gone && kept && kept->run.pid == last.pid) last = kept->run;
  }
  return answerOf(options, end, follower, last);
}

/// Starts a daemon on the file; answers kOk, or what the command ends with.
int startDaemon(TLDaemonRunner& runner, const RunOptions& options) {
  if (!runner.readTask(options.task)) return TLExitCode::kStepFailed;
  if (runner.start()) return TLExitCode::kOk;
  runner.stop();
  return TLExitCode::kNobodyThere;
}

int runTask(const RunOptions& options) {
  const TLToolEnvironment environment;
  TLDaemonRunner runner(environment, options.tools);
  if (const int refused = startDaemon(runner, options); refused != TLExitCode::kOk) return refused;
  TLDaemonClient client(runner.tid());
  bool left = false;
  const int code = followAndEnd(options, environment, client, runner.run(), true, left);
  if (!left) runner.stop();
  return code;
}

int startTask(const RunOptions& options) {
  const TLToolEnvironment environment;
  TLDaemonRunner runner(environment, options.tools);
  if (const int refused = startDaemon(runner, options); refused != TLExitCode::kOk) return refused;
  TLDaemonClient client(runner.tid());
  if (!client.poll(kEndPatience)) {
    complain(options.command, client.startError().empty()
                                  ? "the daemon did not come up: see " +
                                        environment.userDirectory() + "/virtual-machine.log"
                                  : "the daemon did not come up: " + client.startError());
    runner.stop();
    return TLExitCode::kStepFailed;
  }
  if (options.json) {
    printAnswer(options.command, {{"task_file", runner.taskFile()}, {"daemon", runner.tid()}});
  } else {
    fmt::print("daemon {} runs {}\n", runner.tid(), runner.taskFile());
  }
  return TLExitCode::kOk;
}

// The names of the steering sets, by step. A task file that can't be read here costs only what the
// daemon could leave out.
std::vector<std::string> steeringNames(const TLRunState& state) {
  TLTaskFile file(state.taskFile);
  std::vector<std::string> names;
  if (file.read()) names = file.steeringFiles();
  names.resize(state.steps.size());
  return names;
}

// Enters the list of those whom the daemon reports to and has it tell what was missed.
// `residuals`: shows the residuals of the solver, too.
int followRunning(const RunOptions& options, bool residuals) {
  const TLToolEnvironment environment;
  TLVirtualMachineStarter machine(environment.userDirectory());
  const auto state = findDaemon(environment, machine, options.task);
  if (!state) return TLExitCode::kNobodyThere;
  TLDaemonClient client(state->tid);
  client.send(TL_MSG_RECONNECTED);
  if (!client.poll(kReplayPatience)) {
    complain(options.command,
             fmt::format("daemon {} is busy with a start or a copy; waiting for it", state->tid));
  }
  client.ask(TL_MSG_GET_STATUS_MESSAGE, TL_MSG_GET_STATUS_MESSAGE, kReplayPatience);
  TLRunState run = *state;
  for (auto& step : run.steps) step.status = 0;  // so that the first answer is shown whole
  bool left = false;
  TLSteeringMirror mirror(steeringNames(*state));
  return followAndEnd(options, environment, client, run, false, left,
                      residuals ? &mirror : nullptr);
}

template <class Run>
std::function<std::function<int()>(CLI::App&)> withOptions(bool required, bool tools, bool interval,
                                                           Run run) {
  return [=](CLI::App& app) -> std::function<int()> {
    auto options = std::make_shared<RunOptions>();
    options->command = app.get_name();
    if (tools) {
      declareRunOptions(app, *options);
    } else {
      app.add_option("TASK", options->task,
                     "task file, task name or daemon; the only one if left out")
          ->required(required);
    }
    if (interval) declareInterval(app, *options);
    declareJson(app, options->json);
    return [options, run] { return run(*options); };
  };
}

}  // namespace

std::vector<TLCommand> runCommands() {
  return {
      {"run",
       "Run a task to its end: start its daemon, show each step's status, end the daemon",
       {"tlctl run heat.task", "tlctl run --tools ~/solvers/bin heat.task"},
       withOptions(true, true, true, runTask)},
      {"start",
       "Start the daemon of a task and leave it running",
       {"tlctl start heat.task", "tlctl start heat.task && tlctl attach heat.task"},
       withOptions(true, true, false, startTask)},
      {"attach",
       "Join a running task as an interface, hear what was missed, follow it",
       {"tlctl attach", "tlctl attach heat.task"},
       withOptions(false, false, true,
                   [](const RunOptions& options) { return followRunning(options, false); })},
      {"watch",
       "Follow a running task until its end; draw the solver's residuals, print reasons of crashes",
       {"tlctl watch", "tlctl watch heat.task --interval 1000"},
       withOptions(false, false, true,
                   [](const RunOptions& options) { return followRunning(options, true); })},
  };
}
