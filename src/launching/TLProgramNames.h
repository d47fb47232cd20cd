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
bool isPostProcessor(const RWCString& executable);
/// The shape optimiser.
bool isSculpt(const RWCString& executable);
bool isHybridMesher(const RWCString& executable);
bool isOofelie(const RWCString& executable);
bool isTessaly(const RWCString& executable);
bool isFileConvert(const RWCString& executable);
bool isBramosh(const RWCString& executable);
bool isMire(const RWCString& executable);
/// Steps of the marine chain, which report through the status file.
bool isMarineStep(const RWCString& name);
