#pragma once

#include <cstdint>
#include <cstdio>

#include "textio/RWCString.h"

/// @file
/// What exists once in the process of a task and is seen by its engine, its launches and its
/// script commands alike. All of it belongs to the one thread.

/// 1 when the sub-task launched last has confirmed its start.
extern std::int32_t gLaunchConfirmed;
/// 1 after the interface asked for the suspension of the task: the daemon ends with the solver.
extern std::int32_t gSuspendRequested;
/// Full path of the task file read.
extern RWCString gTaskFileName;
/// Path of the file that collects the output of the virtual machine's children; empty for none.
extern RWCString gCatchoutFileName;
/// The same file, open for writing; null for none.
extern std::FILE* gCatchoutFile;
/// Host of the sub-task started last.
extern RWCString gTaskHostName;
/// The last launching error.
extern RWCString gLastError;
/// Processes that the kernel has killed for want of memory, as last looked at: at the start of the
/// task, and at each end of a step, which asks whether there are more.
extern std::int64_t gMemoryKills;

/// The one orderly end of the process. Doesn't return in the daemon, where `main` has named what
/// it does; does nothing in a program that never named it.
void exitTaskManager();

/// Names what exitTaskManager does; null for nothing.
void setTaskManagerEnd(void (*end)());
