#include <algorithm>
#include <array>
#include <utility>

#include "launching/TLProgramNames.h"
#include "messaging/TLSubMessageNewSteering.h"
#include "messaging/TLSubMessageSteeringStatus.h"
#include "messaging/TLVirtualMachine.h"
#include "taskengine/TLLauncher.h"
#include "taskengine/TLMessageItems.h"
#include "taskengine/TLReports.h"
#include "taskengine/TLTaskChildren.h"
#include "taskengine/TLTaskGlobals.h"

namespace {

constexpr std::int32_t kWholeTask = -1;
constexpr std::int32_t kNewSteering = 9;
constexpr std::int32_t kSteeringStatus = 10;

void killChildren(const TLSubTask& step) {
  for (const std::int32_t tid : step.children) TL_virtual_machine_kill(tid);
}

void sendEmptyToChildren(const TLSubTask& step, std::int32_t tag) {
  TLProcessMessage message;
  message.tag = tag;
  step.sendToChildren(message);
}

}  // namespace

void TLTaskChildren::handleMessage(TLProcessMessage& message) {
  using Reaction = void (TLTaskChildren::*)(TLProcessMessage&);
  static constexpr auto kReactions = std::to_array<std::pair<std::int32_t, Reaction>>({
      {TL_MSG_STATUS, &TLTaskChildren::answerStatus},
      {TL_MSG_STOP, &TLTaskChildren::stop},
      {TL_MSG_EXIT, &TLTaskChildren::exit},
      {TL_MSG_SOLVER_FINISHED, &TLTaskChildren::greetSolver},
      {TL_MSG_GET_STATUS_MESSAGE, &TLTaskChildren::replayEndMessages},
      {TL_MSG_TRY_RECONNECT, &TLTaskChildren::reconnectChild},
      {TL_MSG_RECONNECTED, &TLTaskChildren::reconnectParent},
      {TL_MSG_SUSPEND_SUBTASK, &TLTaskChildren::suspendSubTask},
      {TL_MSG_NEW_STEERING, &TLTaskChildren::takeSteering},
      {TL_MSG_RECONNECTED_OTHER, &TLTaskChildren::reconnectOtherParent},
      {TL_MSG_PROCESS_ID, &TLTaskChildren::takeProcessId},
      {TL_MSG_SAVE_SOLUTION, &TLTaskChildren::saveSolution},
      {TL_MSG_PERFORMANCE_CURVE, &TLTaskChildren::passOnPerformanceCurve},
      {TL_MSG_SUSPEND_TASK, &TLTaskChildren::suspendTask},
  });
  for (const auto& [tag, reaction] : kReactions) {
    if (tag == message.tag) return (this->*reaction)(message);
  }
}

void TLTaskChildren::answerStatus(TLProcessMessage& question) {
  TLProcessMessage answer;
  answer.tag = TL_MSG_STATUS;
  for (std::int32_t i = 0; i < subTaskCount(); ++i) {
    TLSubTask& step = *subTask(i);
    if (step.status == Running) {
      step.isRunning();
      checkEnded(step, i);
    }
    answer.addInteger(step.status);
  }
  answer.destination = question.source;
  answer.send();
  const auto asked = static_cast<std::int32_t>(question.subMessages.size());
  for (std::int32_t i = 0; i < std::min(subTaskCount(), asked); ++i) {
    const TLSubMessage& item = *question.subMessages[static_cast<std::size_t>(i)];
    TLSubTask& step = *subTask(i);
    if (item.type() != kSteeringStatus || step.steeringAsked == 0) continue;
    step.sendSteering(question.source,
                      static_cast<const TLSubMessageSteeringStatus&>(item).parameters);
  }
}

void TLTaskChildren::stop(TLProcessMessage& message) {
  const auto position = firstInteger(message);
  if (!position) return;
  if (*position == kWholeTask) {
    stopWholeTask();
    sendEmpty(message.source, TL_MSG_STOP);
  } else if (TLSubTask* step = subTask(*position)) {
    reportWord("SUBTASK_" + std::to_string(*position) + "_MUST_BE_STOPPED");
    step->noteStop(false);
    if (step->isQueued()) {
      launcher().stopSubTask(*step);
    } else {
      killChildren(*step);
    }
    step->status = Stopped;
  }
}

void TLTaskChildren::stopWholeTask() {
  for (const auto& step : subTasks) {
    if (isSolver(step->executable)) continue;
    if (step->steering && step->steering->name != "unknown") step->steering->save();
  }
  reportWord("TASK_MUST_BE_STOPPED_" + std::to_string(kWholeTask));
  for (const auto& step : subTasks) {
    step->noteStop(false);
    if (!step->isQueued()) killChildren(*step);
    launcher().stopSubTask(*step);
    step->finishMessage.tag = kEndRequested;
    step->status = Stopped;
  }
}

void TLTaskChildren::exit(TLProcessMessage& /*message*/) {
  explainEnds();
  exitTaskManager();
}

void TLTaskChildren::greetSolver(TLProcessMessage& /*message*/) {
  reportPhrase("FLOW SOLVER STARTED");
}

void TLTaskChildren::replayEndMessages(TLProcessMessage& message) {
  reportWord("GET_FLOW_SOLVER_STATUS_MESSAGE");
  for (const auto& step : subTasks) {
    TLProcessMessage& end = step->finishMessage;
    if (end.tag < 0) continue;
    end.tag = TL_MSG_SOLVER_FINISHED;
    end.destination = message.source;
    end.send();
    end.tag = kEndReplayed;
  }
  sendEmpty(message.source, TL_MSG_GET_STATUS_MESSAGE);
}

void TLTaskChildren::reconnectChild(TLProcessMessage& message) {
  reportWord("TRY_RECONNECTION_TO_CHILDREN");
  for (const auto& step : subTasks) {
    if (!step->runFileMatches(message)) continue;
    step->addChild(message.source);
    reportWord("RECONNECTED_TO_CHILDREN");
  }
}

void TLTaskChildren::reconnectParent(TLProcessMessage& message) {
  reportWord("RECONNECTED_TO_PARENT");
  addParentEverywhere(message.source);
}

void TLTaskChildren::reconnectOtherParent(TLProcessMessage& message) {
  reportWord("RECONNECTED_TO_OTHER_MIRE_SESSION");
  addParentEverywhere(message.source);
}

void TLTaskChildren::addParentEverywhere(std::int32_t tid) {
  addParent(tid);
  for (const auto& step : subTasks) step->addParent(tid);
}

void TLTaskChildren::takeProcessId(TLProcessMessage& message) {
  for (const auto& step : subTasks) {
    if (!step->runFileMatches(message)) continue;
    if (const auto id = lastInteger(message)) step->addProcessId(*id);
    reportWord("RECEIVE_PROCESS_ID");
  }
}

void TLTaskChildren::saveSolution(TLProcessMessage& message) {
  const auto position = firstInteger(message);
  if (!position || *position < kWholeTask || *position >= subTaskCount()) return;
  reportWord("SUBTASK_PROMPTS_TO_SAVE_SOLUTION");
  if (const TLSubTask* step = subTask(*position)) sendEmptyToChildren(*step, TL_MSG_SAVE_SOLUTION);
}

void TLTaskChildren::passOnPerformanceCurve(TLProcessMessage& message) {
  sendToParents(message);
  reportWord("VELSTRA_PERF_CURVE");
}

void TLTaskChildren::suspendTask(TLProcessMessage& /*message*/) {
  gSuspendRequested = 1;
  reportWord("TASK_IS_BEING_SUSPENDED");
  for (const auto& step : subTasks) suspend(*step, *step);
}

void TLTaskChildren::suspendSubTask(TLProcessMessage& message) {
  const auto position = firstInteger(message);
  if (!position) return;
  TLSubTask* named = subTask(*position);
  if (*position == kWholeTask || (named != nullptr && *position == subTaskCount() - 1)) {
    reportWord("TASK_IS_BEING_SUSPENDED" + std::to_string(*position));
    // Queued steps are asked through the step that the message names, once for each of them.
    for (const auto& step : subTasks) suspend(*step, named != nullptr ? *named : *step);
  } else if (named != nullptr) {
    reportWord("SUBTASK_IS_BEING_SUSPENDED");
    suspend(*named, *named);
  }
}

void TLTaskChildren::suspend(const TLSubTask& step, TLSubTask& stopFileOf) {
  if (step.isQueued()) {
    touchStopFile(stopFileOf);
  } else {
    sendEmptyToChildren(step, TL_MSG_SUSPEND_SUBTASK);
  }
}

void TLTaskChildren::takeSteering(TLProcessMessage& message) {
  if (message.subMessages.size() != 2) return;
  const RWCString* file = firstText(message);
  if (file == nullptr || message.subMessages.back()->type() != kNewSteering) return;
  const Handle<TLSteeringParameters> parameters =
      static_cast<const TLSubMessageNewSteering&>(*message.subMessages.back()).parameters;
  for (const auto& step : subTasks) {
    for (const auto& argument : step->arguments.entries()) {
      if (argument->value() != *file) continue;
      reportWord("NEW_STEERING_TRANSFERED_TO_TASKMANAGER");
      step->applyNewSteering(parameters);
      if (step->status != Running) continue;
      reportWord("NEW_STEERING_TRANSFERED_TO_FLOW_SOLVER");
      step->sendToChildren(message);
    }
  }
}
