#pragma once

#include "textio/RWCString.h"

/// @file
/// The vocabulary of program names. A test answers true when its argument equals one of the test's
/// words exactly, case counting. All are put to a sub-task's `executable`, isMarineStep to its
/// `name`. The task files of the whole suite use these words; none may be added or dropped on one
/// side only.

/// Flow solvers, and the MPI launchers that stand in for them on a Windows host.
bool isSolver(const RWCString& executable);
/// The acoustic tool.
bool isFwh(const RWCString& executable);
/// The structured mesher.
bool isMesher(const RWCString& executable);
/// The post-processor ("sorvit").
bool isPostProcessor(const RWCString& executable);
/// The shape optimiser.
bool isSculpt(const RWCString& executable);
/// The hybrid mesher ("bramoshhybrid").
bool isHybridMesher(const RWCString& executable);
/// The structural solver ("oofelie") and the scripts that start it.
bool isOofelie(const RWCString& executable);
/// A tool that is started under its plain name on every host, as are the next three.
bool isTessaly(const RWCString& executable);
/// The mesher's converter of files ("bramoshfileconvert").
bool isFileConvert(const RWCString& executable);
/// The mesher "bramosh".
bool isBramosh(const RWCString& executable);
/// The interface program "mire".
bool isMire(const RWCString& executable);
/// Steps of the marine chain, which report through the status file.
bool isMarineStep(const RWCString& name);
