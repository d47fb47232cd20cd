#pragma once

#include <optional>

#include "textio/RWCString.h"

class TLSubTask;

/// Where a step of the marine chain stands in the status file.
struct TLMarineStatus {
  RWCString block;  ///< Of the status file, as its first line names it.
  RWCString path;   ///< of a file beside the status file
};

/// None for a step without a block of its own, and for one without a task to say where its
/// computation lies.
std::optional<TLMarineStatus> marineStatusOf(const TLSubTask& step);
