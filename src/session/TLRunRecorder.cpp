#include "session/TLRunRecorder.h"

#include <chrono>

#include "messaging/TLVirtualMachine.h"
#include "platform/TLHostForm.h"
#include "taskengine/TLTask.h"
#include "taskengine/TLTaskGlobals.h"

namespace {

double secondsNow() {
  using std::chrono::duration;
  return duration<double>(std::chrono::system_clock::now().time_since_epoch()).count();
}

/// What is looked at in each cycle, of as many as a thousand steps. The rest of an entry changes
/// only together with these.
bool differs(const TLRunStateStep& entry, const TLSubTask& step) {
  return entry.status != step.status || entry.children != step.children ||
         entry.reason != step.endReason || entry.queueState != step.queueState;
}

}  // namespace

TLRunRecorder& runRecorder() {
  static TLRunRecorder recorder;
  return recorder;
}

void TLRunRecorder::begin(const TLTask& task, const RWCString& directory) {
  directory_ = directory;
  state_ = TLRunState();
  state_.tid = TL_virtual_machine_mytid();
  state_.pid = hostForm().processId();
  state_.host = ownHostName();
  state_.taskFile = gTaskFileName;
  state_.taskName = task.name;
  state_.logFile = gCatchoutFileName;
  state_.started = secondsNow();
  update(task);
}

void TLRunRecorder::update(const TLTask& task) {
  if (directory_.empty()) return;
  const bool isNew = state_.steps.size() != task.subTasks.size() || state_.steps.empty();
  bool changed = isNew;
  state_.steps.resize(task.subTasks.size());
  for (std::size_t i = 0; i < task.subTasks.size(); ++i) {
    if (!isNew && !differs(state_.steps[i], *task.subTasks[i])) continue;
    record(task, i);
    changed = true;
  }
  if (changed) state_.save(directory_);
}

void TLRunRecorder::record(const TLTask& task, std::size_t position) {
  const TLSubTask& step = *task.subTasks[position];
  TLRunStateStep& entry = state_.steps[position];
  if (step.status == TLSubTask::Running && entry.started == 0) entry.started = secondsNow();
  if (step.isTerminal() && entry.ended == 0) entry.ended = secondsNow();
  entry.name = step.name;
  entry.executable = step.executable;
  entry.host = step.hostName;
  entry.status = step.status;
  entry.children = step.children;
  entry.queue = step.loadBalancing.queuingSystemActivated;
  entry.jobNumber = step.isQueued() && !step.children.empty() ? step.children.front() : 0;
  entry.reason = step.endReason;
  entry.queueState = step.queueState;
}

void TLRunRecorder::forget() {
  if (directory_.empty()) return;
  TLRunState::remove(directory_, state_.pid);
  directory_.clear();
}
