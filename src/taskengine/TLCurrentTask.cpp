#include "taskengine/TLCurrentTask.h"

TLTask* gCurrentTask = nullptr;

void setCurrentTask(TLTask* task) {
  static Handle<TLTask> owner;
  gCurrentTask = task;
  owner = Handle<TLTask>(task);
}
