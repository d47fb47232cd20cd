#include "taskengine/TLTaskChildren.h"

#include <algorithm>

#include "launching/TLCommands.h"
#include "launching/TLProgramNames.h"
#include "messaging/TLVirtualMachine.h"
#include "platform/TLConsole.h"
#include "platform/TLHostForm.h"
#include "taskengine/TLLauncher.h"
#include "taskengine/TLMessageItems.h"
#include "taskengine/TLReports.h"
#include "taskengine/TLTaskGlobals.h"

namespace {

constexpr std::int32_t kAnyone = -1;
constexpr std::int32_t kAnyTag = -1;

const char* queueWord(std::int32_t kind) {
  constexpr const char* kWords[] = {"", "SGE", "PBS", "LSF"};
  return kind >= 1 && kind <= 3 ? kWords[kind] : kWords[0];
}

bool contains(const std::vector<std::int32_t>& tids, std::int32_t tid) {
  return std::find(tids.begin(), tids.end(), tid) != tids.end();
}

/// True for a step that is gone although nobody has seen its orderly end.
bool endedUnseen(const TLSubTask& step) {
  return step.status != TLSubTask::Running && step.finishMessage.tag == TLSubTask::kNoEndSeen;
}

}  // namespace

TLTaskChildren::TLTaskChildren() {
  gLaunchConfirmed = 1;
  status = Pending;
}

TLTaskChildren::~TLTaskChildren() = default;

int TLTaskChildren::start() {
  status = Running;
  gMemoryKills = hostForm().memoryKills();
  for (std::int32_t i = 0; i < subTaskCount(); ++i) {
    TLSubTask& step = *subTask(i);
    step.status = Pending;
    step.index = i;
  }
  return 1;
}

void TLTaskChildren::superviseOnce() {
  std::vector<std::int32_t> wasRunning;
  launchDueSubTasks(wasRunning);
  for (std::int32_t i = 0; i < subTaskCount(); ++i) {
    if (wasRunning[static_cast<std::size_t>(i)] != 0) checkEndedInCycle(*subTask(i), i);
  }
  if (isEndedMarineTask()) {
    explainEnds();
    exitTaskManager();
    return;
  }
  readMessages();
  watchVirtualMachine();
  explainEnds();
}

void TLTaskChildren::watchVirtualMachine() {
  const bool reachable = !TL_virtual_machine_lost();
  if (reachable_ && !reachable) {
    const RWCString text = "The virtual machine of this host is gone: nothing can be heard or told";
    console() << text << '\n' << std::flush;
    reportPhrase(text);
  }
  reachable_ = reachable;
}

void TLTaskChildren::explainEnds() {
  for (std::int32_t tid = 0, waitStatus = 0; TL_virtual_machine_next_end(tid, waitStatus);) {
    for (const auto& step : subTasks) {
      if (!step->isQueued() && contains(step->children, tid)) step->noteProcessEnd(waitStatus);
    }
  }
  for (const auto& step : subTasks) step->explainEnd();
}

bool TLTaskChildren::isEndedMarineTask() const {
  const auto isMarine = [](const Handle<TLSubTask>& step) { return isMarineStep(step->name); };
  const auto isOver = [](const Handle<TLSubTask>& step) {
    return step->name == "CHECKSTATUS" || step->isTerminal();
  };
  return std::any_of(subTasks.begin(), subTasks.end(), isMarine) &&
         std::all_of(subTasks.begin(), subTasks.end(), isOver);
}

void TLTaskChildren::readMessages() {
  // By position: a message can add a child, a parent.
  for (std::size_t i = 0; i < subTasks.size(); ++i) {
    const Handle<TLSubTask> step = subTasks[i];
    for (std::size_t j = 0; j < step->children.size(); ++j) {
      step->pollMessages(step->children[j], kAnyTag);
    }
  }
  for (std::size_t i = 0; i < parents.size(); ++i) pollMessages(parents[i], kAnyTag);
  for (const std::int32_t tag :
       {TL_MSG_RECONNECTED_OTHER, TL_MSG_RECONNECTED, TL_MSG_TRY_RECONNECT}) {
    pollMessages(kAnyone, tag);
  }
}

void TLTaskChildren::checkEndedInCycle(TLSubTask& step, std::int32_t position) {
  if (!endedUnseen(step)) return;
  if (step.isQueued()) {
    if (isSolver(step.executable)) reportQueueEnd(step, position);
  } else if (isSolver(step.executable)) {
    reportSolverCrash(step, position);
  } else if (isFwh(step.executable)) {
    reportCrash(step, position, "FWH");
    launcher().retrieveResults(step);
  } else if (isMesher(step.executable)) {
    reportMesherEnd(step, position);
  } else if (isSculpt(step.executable)) {
    launcher().removeRemoteResults(step);
    reportWord("PROCESS_TERMINATED");
    step.status = FinishedOk;
  }
}

// Differs from the check of the cycle for the shape optimiser and the acoustic tool, and asks for a
// queue only at a solver: whichever of the two sees an end first decides.
void TLTaskChildren::checkEnded(TLSubTask& step, std::int32_t position) {
  if (!endedUnseen(step)) return;
  if (isSolver(step.executable)) {
    if (step.isQueued()) {
      reportQueueEnd(step, position);
    } else {
      reportSolverCrash(step, position);
    }
  } else if (isMesher(step.executable)) {
    reportMesherEnd(step, position);
  } else if (isSculpt(step.executable)) {
    reportCrash(step, position, "SCULPT3D");
  } else if (isFwh(step.executable)) {
    reportCrash(step, position, "FWH");
  }
}

void TLTaskChildren::reportQueueEnd(TLSubTask& step, std::int32_t position) {
  TLProcessMessage report;
  report.tag = TL_MSG_SOLVER_FINISHED;
  report.addString(RWCString(queueWord(step.loadBalancing.queuingSystemActivated)) +
                   " process terminated");
  report.addInteger(position);
  sendToParents(report);
  launcher().retrieveResults(step);
  step.status = FinishedOk;
}

void TLTaskChildren::reportSolverCrash(TLSubTask& step, std::int32_t position) {
  reportCrash(step, position, "FLOW SOLVER");
  launcher().retrieveResults(step);
  step.removeSemaphores();
}

void TLTaskChildren::reportCrash(TLSubTask& step, std::int32_t position, const RWCString& tool) {
  reportPhrase(tool + " CRASHED");
  TLProcessMessage report;
  report.tag = TL_MSG_SOLVER_FINISHED;
  if (step.errorLines.subMessages.empty()) report.addString(tool + " : RUN TIME ERROR");
  step.status = Crashed;
  for (const auto& item : step.errorLines.subMessages) {
    if (const RWCString* text = textOf(*item)) report.addString(*text);
  }
  report.addInteger(position);
  sendToParents(report);
}

void TLTaskChildren::reportMesherEnd(TLSubTask& step, std::int32_t position) {
  launcher().retrieveResults(step);
  reportWord("PROCESS_TERMINATED");
  step.status = FinishedOk;
  TLProcessMessage report;
  report.tag = TL_MSG_SOLVER_FINISHED;
  report.addString("KelMark terminated !");
  report.addInteger(position);
  sendToParents(report);
}

void TLTaskChildren::touchStopFile(TLSubTask& step) {
  const auto first = step.spawnArgument(0);
  if (!first) return;
  RWCString file = first->value();
  const RWCString runSuffix = ".run";
  if (const auto found = file.find(runSuffix); found != RWCString::npos) {
    file.replace(found, runSuffix.size(), ".stop");
  }
  const RWCString word = wordForRemoteExec(step.hostName, file, step.isWin32Host != 0);
  remoteExec(step.hostName, "touch " + word, step.remoteLogin, "");
}
