// Why a step ended, in words.
#include <utility>

#include "messaging/TLVirtualMachine.h"
#include "platform/TLHostForm.h"
#include "taskengine/TLMessageItems.h"
#include "taskengine/TLSubTask.h"
#include "taskengine/TLTaskGlobals.h"

namespace {

RWCString joinedTexts(const TLProcessMessage& message) {
  RWCString all;
  for (const auto& item : message.subMessages) {
    const RWCString* text = textOf(*item);
    if (text != nullptr) all += (all.empty() ? "" : "; ") + *text;
  }
  return all;
}

/// Whether the kernel has killed anything for want of memory since this was asked last.
bool memoryWasShort() {
  const std::int64_t before = std::exchange(gMemoryKills, hostForm().memoryKills());
  return gMemoryKills > before;
}

}  // namespace

void TLSubTask::forgetEnd() {
  end_ = TLStepEnd();
  endExplained_ = false;
  endReason.clear();
  logFile.clear();
}

void TLSubTask::noteEnd(TLStepEnd::Kind kind, const RWCString& detail) {
  end_.kind = kind;
  end_.detail = detail;
  endExplained_ = false;
}

void TLSubTask::noteStop(bool inWindow) {
  using Kind = TLStepEnd::Kind;
  if (isTerminal()) {
    // Its status becomes another one, the cause stays.
    explainEnd();
    if (endReason.empty()) endReason = "it had ended when the task was stopped";
  } else if (status == Pending) {
    noteEnd(Kind::stoppedEarly);
  } else if (inWindow) {
    noteEnd(Kind::stoppedInWindow);
  } else if (isQueued()) {
    noteEnd(Kind::jobDeleted, std::to_string(child(0)));
  } else {
    noteEnd(Kind::stopped);
  }
}

void TLSubTask::noteProcessEnd(std::int32_t waitStatus) {
  end_.take(waitStatus);
  endExplained_ = false;
}

void TLSubTask::explainEnd() {
  if (!isTerminal() || endExplained_) return;
  endExplained_ = true;
  TLStepEnd end = end_;
  end.announced = finishMessage.tag == TL_MSG_SOLVER_FINISHED || finishMessage.tag == kEndReplayed;
  end.crashed = status == Crashed;
  end.host = hostName;
  if (end.kind == TLStepEnd::Kind::process && hostWasKnown_ && !hostIsKnown(hostName)) {
    end.kind = TLStepEnd::Kind::hostLost;
  }
  end.memoryWasShort = memoryWasShort() && hostName == ownHostName();
  end.errors = joinedTexts(errorLines);
  end.log = logFile.empty() ? gCatchoutFileName : logFile;
  endReason = end.sentence();
  if (endReason.empty() || gCatchoutFileName.empty()) return;
  end.lastLine = lastOutputLine(gCatchoutFileName, children);
  endReason = end.sentence();
}
