#include "session/TLTaskCommands.h"

#include <algorithm>
#include <array>
#include <fstream>
#include <string_view>

#include "platform/TLHostForm.h"
#include "session/TLRunRecorder.h"
#include "session/TLScriptCommand.h"
#include "session/TLSeriesFeed.h"
#include "taskengine/TLCurrentTask.h"
#include "taskengine/TLStatusFile.h"
#include "taskengine/TLTaskChildren.h"
#include "taskengine/TLTaskGlobals.h"

namespace {

constexpr const char* kMarineSolverStep = "QUOREL_CFD";
constexpr const char* kProbesStep = "PROBES2QVK";
constexpr std::array<std::string_view, 4> kMarineSolvers = {
    "quorelcfd", "quorelcfd_parallel", "quorelcfd.exe", "quorelcfd_parallel.exe"};

RWCString firstValue(const TLSubTask& step) {
  const Handle<TLProcessArgument> first = step.argument(0);
  return first ? first->value() : RWCString();
}

/// Asks a marine tool to stop by a file in `directory`; false when the file can't be made.
bool writeStopFile(const RWCString& directory, const RWCString& name) {
  std::ofstream file(hostForm().realPath(directory + name));
  file << "Q\n";
  return static_cast<bool>(file.flush());
}

/// Position of the first step named `name`, -1 for none.
std::int32_t positionOf(const TLTask& task, const RWCString& name) {
  const auto found = std::find_if(task.subTasks.begin(), task.subTasks.end(),
                                  [&](const auto& step) { return step->name == name; });
  if (found == task.subTasks.end()) return -1;
  return static_cast<std::int32_t>(found - task.subTasks.begin());
}

void exitCommand(ArgStream& /*arguments*/, ResultStream& /*result*/) {
  exitTaskManager();
}

/// Wraps the work of a command that needs the task.
template <void (*work)(TLTask&, ArgStream&, ResultStream&)>
void onTask(ArgStream& arguments, ResultStream& result) {
  if (gCurrentTask != nullptr) work(*gCurrentTask, arguments, result);
}

void stopTask(TLTask& task, ArgStream& /*arguments*/, ResultStream& result) {
  result.write(task.stopTask());
  runRecorder().update(task);
}

void taskName(TLTask& task, ArgStream& /*arguments*/, ResultStream& result) {
  result.write(task.name);
}

void taskTime(TLTask& task, ArgStream& /*arguments*/, ResultStream& result) {
  result.write(task.startingDate);
}

void taskHostName(TLTask& /*task*/, ArgStream& /*arguments*/, ResultStream& result) {
  result.write(gTaskHostName);
}

void updateTask(TLTask& task, ArgStream& /*arguments*/, ResultStream& /*result*/) {
  static TLSeriesFeed seriesFeed;
  if (auto* supervised = dynamic_cast<TLTaskChildren*>(&task)) supervised->superviseOnce();
  runRecorder().update(task);
  seriesFeed.update(task);
}

void searchByName(TLTask& task, ArgStream& arguments, ResultStream& result) {
  RWCString name;
  arguments.readString(name);
  result.write(positionOf(task, name));
}

/// Position of the running marine solver that works on this task's computation.
void checkKill(TLTask& task, ArgStream& /*arguments*/, ResultStream& result) {
  for (std::int32_t i = 0; i < task.subTaskCount(); ++i) {
    const TLSubTask& step = *task.subTask(i);
    if (step.name != kMarineSolverStep || step.status != TLSubTask::Running) continue;
    if (firstValue(step).find(task.name) == RWCString::npos) continue;
    result.write(i);
    return;
  }
  result.write(std::int32_t{-1});
}

/// The value of the first argument that names the list of machines; none when there is none.
const RWCString* machinesValue(const TLSubTask& step) {
  for (const auto& argument : step.arguments.entries()) {
    if (argument->value().find("machines.txt") != RWCString::npos) return &argument->value();
  }
  return nullptr;
}

void stopMarineSolver(TLTask& task, ArgStream& arguments, ResultStream& result) {
  std::int32_t position = 0;
  arguments.readInteger(position);
  TLSubTask* step = task.subTask(position);
  const bool running = step != nullptr && step->status == TLSubTask::Running;
  const RWCString* value = running ? machinesValue(*step) : nullptr;
  if (value == nullptr) {
    result.write(std::int32_t{0});
    return;
  }
  if (writeStopFile(hostForm().directoryOf(*value), "stop.now")) result.write(std::int32_t{1});
  step->stopRequest = 1;
}

/// 1 for a solver that doesn't run or was asked to stop, 0 for one that runs on.
std::int32_t suspendMark(const TLSubTask& step) {
  if (step.status != TLSubTask::Running || step.stopRequest == 1) return 1;
  return step.stopRequest == 0 ? 0 : -1;
}

void checkSuspend(TLTask& task, ArgStream& /*arguments*/, ResultStream& result) {
  const std::int32_t position = positionOf(task, kMarineSolverStep);
  result.write(position);
  result.write(position < 0 ? std::int32_t{-1} : suspendMark(*task.subTask(position)));
}

void askToStop(const TLSubTask& step) {
  if (step.name == kProbesStep) {
    RWCString log;
    step.arguments.find("-log", log);
    writeStopFile(hostForm().directoryOf(log), "stop_postprocessing.now");
    return;
  }
  const auto* end = kMarineSolvers.end();
  if (std::find(kMarineSolvers.begin(), end, step.executable) != end) {
    writeStopFile(hostForm().directoryOf(firstValue(step)), "stop.now");
  }
}

void killMarineTask(TLTask& task, ArgStream& /*arguments*/, ResultStream& /*result*/) {
  for (const auto& step : task.subTasks) {
    if (step->status == TLSubTask::Running) askToStop(*step);
    step->noteStop(true);
    step->status = TLSubTask::Stopped;
    step->explainEnd();
  }
  runRecorder().update(task);
}

void marineStatus(TLTask& /*task*/, ArgStream& arguments, ResultStream& result) {
  RWCString block;
  RWCString path;
  arguments.readString(block);
  arguments.readString(path);
  const bool asked = arguments.good() != nullptr;
  result.write(asked ? readStatusEntry(block, "STATUS", path, true) : RWCString("undefined"));
}

}  // namespace

void registerTaskCommands() {
  registerCommand<exitCommand>("exit_taskmanagerc");
  registerCommand<onTask<stopTask>>("stop_task");
  registerCommand<onTask<taskName>>("get_task_name");
  registerCommand<onTask<taskTime>>("get_task_time");
  registerCommand<onTask<taskHostName>>("get_task_host_name");
  registerCommand<onTask<updateTask>>("task_update");
  registerCommand<onTask<searchByName>>("search_for_subtask_by_name");
  registerCommand<onTask<checkKill>>("itf_check_kill_task_quorelcfd");
  registerCommand<onTask<stopMarineSolver>>("itf_stop_subtask_quorelcfd");
  registerCommand<onTask<checkSuspend>>("itf_check_suspend_task_quorelcfd");
  registerCommand<onTask<killMarineTask>>("itf_kill_current_task_marine");
  registerCommand<onTask<marineStatus>>("itf_check_marine_subtask_status");
}
