#include "taskengine/TLTask.h"

#include <algorithm>

#include "taskengine/TLTaskPaths.h"

TLTask::~TLTask() = default;

bool TLTask::argumentsDefined() {
  return std::all_of(subTasks.begin(), subTasks.end(),
                     [](const Handle<TLSubTask>& step) { return step->argumentsDefined(); });
}

int TLTask::start() {
  for (const auto& step : subTasks) step->status = Pending;
  return TLSubTask::start();
}

void TLTask::handleMessage(TLProcessMessage& message) {
  if (message.tag != TL_MSG_STATUS) return;
  TLProcessMessage answer;
  answer.tag = TL_MSG_STATUS;
  for (const auto& step : subTasks) answer.addString(step->statusWord());
  sendToParents(answer);
}

TLSubTask* TLTask::subTask(std::int32_t position) const {
  return position >= 0 && position < subTaskCount()
             ? subTasks[static_cast<std::size_t>(position)].get()
             : nullptr;
}

void TLTask::addSubTask(const Handle<TLSubTask>& step) {
  step->setParentTask(this);
  subTasks.push_back(step);
}

void TLTask::clearSubTasks() {
  for (const auto& step : subTasks) step->setParentTask(nullptr);
  subTasks.clear();
}

RWCString TLTask::computationPath() const {
  return joinPath(localComputationPath, computationFileName);
}
