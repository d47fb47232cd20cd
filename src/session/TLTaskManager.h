#pragma once

#include <cstdio>

#include "textio/RWCString.h"

/// @file
/// What the process of the task manager does once: finding its script, collecting its children's
/// output, its orderly end.

/// Evaluates the script of a run mode: `name` is the name under which the process was started. An
/// unknown name has no script; the attempt prints its error and the process goes on. Without
/// TCL_PATH the process ends.
void sourceScriptFor(const RWCString& name);

/// Makes the file that collects what the virtual machine's children print, and answers its stream,
/// null when it can't be made. Sets gCatchoutFileName. The caller owns the stream and keeps it
/// open.
std::FILE* openCatchout();

/// Removes the collecting file and the file that describes the run, and ends the process with exit
/// code 0. Processes of the task are left alone. What exitTaskManager does in the daemon.
void endTaskManager();
