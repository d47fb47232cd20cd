#include "launching/TLProgramNames.h"
#include "messaging/TLVirtualMachine.h"
#include "platform/TLConsole.h"
#include "taskengine/TLLauncher.h"
#include "taskengine/TLMarineStatus.h"
#include "taskengine/TLReports.h"
#include "taskengine/TLStatusFile.h"
#include "taskengine/TLTask.h"
#include "taskengine/TLTaskGlobals.h"

namespace {

constexpr std::int32_t kWaits = 1;
constexpr std::int32_t kRunsBeside = 0;

/// Why a launch answered `result`.
RWCString failedStartText(int result) {
  switch (result) {
    case kVirtualMachineNoHost:
      return "the virtual machine has no such host";
    case kVirtualMachineNoFile:
      return TL_virtual_machine_last_spawn() + " in its directories for programs";
    default:
      break;
  }
  const bool told = TL_virtual_machine_last_spawn() != "ok";
  return told ? TL_virtual_machine_last_spawn()
              : "its launch failed with code " + std::to_string(result);
}

void noteFailedStart(TLSubTask& step, int result) {
  if (result == TLSubTask::kCopyFailed && !step.transfer.problem.empty()) {
    step.noteEnd(TLStepEnd::Kind::neverStarted, step.transfer.problem);
  } else if (result == TLSubTask::kCopyFailed) {
    step.noteEnd(TLStepEnd::Kind::copyFailed,
                 "is its directory " + step.remoteTmpDir + " accessible and not full?");
  } else if (!step.isQueued()) {
    step.noteEnd(TLStepEnd::Kind::neverStarted, failedStartText(result));
  }
}

}  // namespace

void TLTask::launchDueSubTasks(std::vector<std::int32_t>& wasRunning) {
  wasRunning.assign(subTasks.size(), 0);
  TLSubTask* previous = nullptr;
  for (std::int32_t i = 0; i < subTaskCount(); ++i) {
    TLSubTask& step = *subTasks[static_cast<std::size_t>(i)];
    wasRunning[static_cast<std::size_t>(i)] = step.status == Running ? 1 : 0;
    if (step.status != Pending) {
      previous = &step;
    } else if (step.waitingTask != kWaits) {
      if (step.waitingTask != kRunsBeside || step.isRunning()) continue;
      launchBesideWhenDue(step, i, previous);
      previous = &step;
    } else if (i == 0) {
      launchFirst(step);
      previous = &step;
    } else {
      // Behind a step that never starts there is no previous one, and nothing to wait for either.
      if (previous == nullptr || previous->status == Pending || previous->isRunning()) continue;
      if (!allEndedBefore(i)) continue;
      launchWaiting(step, i);
      previous = &step;
    }
  }
}

bool TLTask::waitsForHost(TLSubTask& step) const {
  const bool waited = static_cast<bool>(step.launchObstacle);
  const bool free = step.enabled == 0 || step.isQueued();
  step.launchObstacle = free ? TLSilentHost() : TL_virtual_machine_obstacle(step.hostName);
  if (step.launchObstacle && !waited) {
    console() << "step " << step.name << " is not started yet: host " << step.launchObstacle.name
              << " does not answer\n"
              << std::flush;
  }
  return static_cast<bool>(step.launchObstacle);
}

void TLTask::launchBesideWhenDue(TLSubTask& step, std::int32_t position,
                                 const TLSubTask* previous) {
  if (previous != nullptr && previous->status == Pending) return;
  if (previous != nullptr && previous->status == Running && gLaunchConfirmed == 0) {
    reportWord("WAITING_FOR_CONFIRMATION_TO_LAUNCH_PARALLEL");
    return;
  }
  launchBeside(step, position);
}

void TLTask::launchBeside(TLSubTask& step, std::int32_t position) {
  if (waitsForHost(step)) return;
  if (isMarineStep(step.name) && position > 0) disableBehindFailures(position);
  const int result = step.start();
  if (result == 0) {
    gLaunchConfirmed = isSolver(step.executable) ? 0 : 1;
    return;
  }
  step.status = FinishedKo;
  noteFailedStart(step, result);
  launcher().removeRemoteDir(step);
  if (result == kCopyFailed) reportFailedCopy(step, position);
}

void TLTask::launchFirst(TLSubTask& step) {
  if (waitsForHost(step)) return;
  const int result = step.start();
  if (result == 0) {
    gLaunchConfirmed = isSolver(step.executable) ? 0 : 1;
    return;
  }
  step.status = FinishedKo;
  noteFailedStart(step, result);
  reportWord("Cleaning_REMOTE_TMP_directory");
  launcher().removeRemoteDir(step);
  if (result == kCopyFailed) reportFailedCopy(step, 0);
}

void TLTask::launchWaiting(TLSubTask& step, std::int32_t position) {
  if (waitsForHost(step)) return;
  const int result = step.start();
  if (result == 0) {
    gLaunchConfirmed = 0;
    return;
  }
  launcher().removeRemoteDir(step);
  step.status = FinishedKo;
  noteFailedStart(step, result);
  if (result == kCopyFailed) reportFailedCopy(step, position);
}

bool TLTask::allEndedBefore(std::int32_t position) {
  bool allEnded = true;
  for (std::int32_t i = 0; i < position; ++i) {
    TLSubTask& step = *subTasks[static_cast<std::size_t>(i)];
    if (step.status == Pending || step.isRunning()) allEnded = false;
    if (disableBehindFailure(step, i)) break;
  }
  return allEnded;
}

void TLTask::disableBehindFailures(std::int32_t position) {
  for (std::int32_t i = 0; i < position; ++i) {
    if (disableBehindFailure(*subTasks[static_cast<std::size_t>(i)], i)) return;
  }
}

bool TLTask::disableBehindFailure(TLSubTask& step, std::int32_t position) {
  if (step.enabled == 0 || !isMarineStep(step.name) || !stepFailed(step)) return false;
  const RWCString failed = "step " + std::to_string(position + 1) + ", " + step.name + ",";
  for (std::int32_t i = position + 1; i < subTaskCount(); ++i) {
    TLSubTask& behind = *subTasks[static_cast<std::size_t>(i)];
    if (behind.enabled != 0) behind.disabledBehind = failed;
  }
  disableFrom(position);
  return true;
}

void TLTask::disableFrom(std::int32_t position) {
  for (std::int32_t i = position < 0 ? 0 : position; i < subTaskCount(); ++i) {
    subTasks[static_cast<std::size_t>(i)]->enabled = 0;
  }
}

bool TLTask::stepFailed(TLSubTask& step) {
  if (!isMarineStep(step.name)) return false;
  const auto entry = marineStatusOf(step);
  if (!entry) return false;
  const RWCString word = readStatusEntry(entry->block, "STATUS", entry->path, true);
  return entry->block != "quorelcfd" && word != "finished" && word != "pending";
}

void TLTask::reportFailedCopy(const TLSubTask& step, std::int32_t position) const {
  TLProcessMessage report;
  report.tag = TL_MSG_SOLVER_FINISHED;
  report.addString("Couldn't start " + step.name + " : remote copy failed !!");
  report.addString("Check if directory " + step.remoteTmpDir + " of host " + step.hostName +
                   " is accessible and not full.");
  report.addInteger(position);
  sendToParents(report);
}

RWCString TLTask::stopTask() {
  evalScript("confirm { this will kill the task }");
  if (scriptResult() != "1") return "no";
  for (const auto& step : subTasks) {
    for (auto tid = step->children.rbegin(); tid != step->children.rend(); ++tid) {
      TL_virtual_machine_kill(*tid);
    }
    step->finishMessage.tag = kEndRequested;
    launcher().retrieveResults(*step);
    step->noteStop(true);
    step->status = Stopped;
    step->explainEnd();
  }
  return "yes";
}
