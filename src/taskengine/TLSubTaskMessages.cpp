#include <algorithm>

#include "launching/TLPathText.h"
#include "messaging/TLVirtualMachine.h"
#include "parameters/TLFile.h"
#include "platform/TLHostForm.h"
#include "taskengine/TLLauncher.h"
#include "taskengine/TLMessageItems.h"
#include "taskengine/TLReports.h"
#include "taskengine/TLSubTask.h"
#include "taskengine/TLTaskGlobals.h"

namespace {

constexpr std::size_t kRunSuffix = 4;  // with its point
constexpr std::size_t kLongestLastText = 500;

bool isRunFile(const RWCString& path) {
  return TLFile(path).suffix() == "run";
}

/// Passes a message on to each of `tids`. A dead one's turn repeats the send to the one before it,
/// which the tools of the suite expect.
void passOn(TLProcessMessage& message, const std::vector<std::int32_t>& tids) {
  for (const std::int32_t tid : tids) {
    if (tid == 0) continue;
    if (TL_virtual_machine_status(tid) == kVirtualMachineOk) message.destination = tid;
    message.send();
  }
}

/// True for an argument that takes no part in the comparison of run files.
bool isPassedOver(const TLProcessArgument& argument) {
  const RWCString& value = argument.value();
  return argument.type() == "-p4pg" || value.empty() || value == "none" ||
         argument.type() == "-tlversion" || value == "undefined" || !isRunFile(value);
}

bool names(const TLProcessMessage& message, const RWCString& runFile) {
  const RWCString path = TLFile(runFile).path();
  const auto& items = message.subMessages;
  return std::any_of(items.begin(), items.end(), [&](const Handle<TLSubMessage>& item) {
    const RWCString* text = textOf(*item);
    return text != nullptr && isRunFile(*text) && TLFile(*text).path() == path;
  });
}

}  // namespace

void TLSubTask::handleMessage(TLProcessMessage& message) {
  switch (message.tag) {
    case TL_MSG_SOLVER_STARTED:
      gLaunchConfirmed = 1;
      reportPhrase("FLOW SOLVER STARTED");
      break;
    case TL_MSG_SOLVER_FINISHED:
      handleEnd(message);
      break;
    case TL_MSG_TEXT:
      if (const RWCString* text = firstText(message)) {
        lastText = text->substr(0, kLongestLastText);
        reportPhrase(doubleBackslashes(*text));
        evalScript("update");
      }
      break;
    case TL_MSG_ERROR_TEXT:
      if (const RWCString* text = firstText(message)) {
        errorLines.addString(*text);
        sendEmpty(message.source, TL_MSG_ERROR_TEXT);
      }
      break;
    case TL_MSG_TRY_RECONNECT:
      reportWord("TRYRECONNECTED_TO_CHILDREN");
      if (runFileMatches(message)) {
        addChild(message.source);
        reportWord("SUBTASK_RECONNECTED_TO_CHILDREN");
      }
      break;
    case TL_MSG_STEERING_VALUES:
      if (steering) residuals.take(*steering);
      evalScript("task_manager_update_ratio");
      break;
    case TL_MSG_ASK_STEERING:
      answerSteering(message.source);
      break;
    case TL_MSG_RESET_STEERING:
      resetSteering(message.source);
      break;
    case TL_MSG_PROCESS_ID:
      if (runFileMatches(message)) {
        if (const auto id = lastInteger(message); id && *id > 0) addProcessId(*id);
        reportWord("RECEIVE_PROCESS_ID");
      }
      break;
    case TL_MSG_RETRIEVE_SOLUTION:
      reportPhrase("RECEIVE SOLUTION RETRIEVE");
      if (loadBalancing.parallel != 0 && (name == "DORVEX" || name == "LUMBRAKE")) {
        launcher().retrieveHexa_(*this);
        sendSolutionName(message.source);
      }
      break;
    case TL_MSG_CHILD_TID:
      if (const auto tid = lastInteger(message); tid && *tid > 0) addChild(*tid);
      break;
    default:
      break;
  }
}

void TLSubTask::handleEnd(TLProcessMessage& message) {
  reportPhrase("FLOW SOLVER FINISHED");
  if (name == "LUMBRAKE") sendEmpty(message.source, TL_MSG_ACK);
  if (gSuspendRequested != 0) {
    exitTaskManager();
    return;
  }
  if (!isQueued()) {
    if (std::find(children.begin(), children.end(), message.source) != children.end()) {
      message.addInteger(index);
      finishMessage.assign(message);
    }
    passOn(message, children);
    passOn(message, parents);
  }
  launcher().retrieveResults(*this);
}

void TLSubTask::sendSolutionName(std::int32_t tid) const {
  RWCString solution;
  for (const auto& argument : arguments.entries()) {
    const RWCString& value = argument->value();
    if (argument->type() == "none" && isRunFile(value)) {
      solution = value.substr(0, value.size() - kRunSuffix);
    }
  }
  TLProcessMessage answer;
  answer.tag = TL_MSG_SOLUTION_RETRIEVED;
  answer.addString(solution);
  answer.destination = tid;
  answer.send();
}

bool TLSubTask::runFileMatches(const TLProcessMessage& message) const {
  if (message.tag == TL_MSG_PROCESS_ID && !lastInteger(message)) return false;
  const auto& entries = spawnArguments.entries();
  return !entries.empty() &&
         std::all_of(entries.begin(), entries.end(), [&](const Handle<TLProcessArgument>& entry) {
           return isPassedOver(*entry) || names(message, entry->value());
         });
}

void TLSubTask::removeSemaphores() {
  if (processIds.empty()) return;
  const RWCString id = std::to_string(firstProcessId());
  reportWord("REMOVE_SEMAPHORE_" + id);
  const auto remove = [&](const RWCString& host) {
    hostForm().runSystem("tlrsh -n " + hostForm().bare(host) + " killsem " + id);
  };
  // Each repetition names the first host: its tool works through all of them in turn.
  const RWCString first = loadBalancing.processName(0);
  for (std::size_t i = 0; i < loadBalancing.processNames.size(); ++i) remove(first);
  remove(hostName);
}
