#pragma once

#include "taskengine/TLTask.h"

/// The task of the process, null until the daemon made it. Set through setCurrentTask only.
extern TLTask* gCurrentTask;

/// Replaces gCurrentTask: takes a reference on `task` (which may be null), then lets the former one
/// go.
void setCurrentTask(TLTask* task);
