#pragma once

#include <cstdint>
#include <functional>

#include "textio/RWCString.h"

/// What of a step's files is on its way between this host and the step's, and what is left of it.
/// Before and between transfers `direction` is empty.
struct TLTransferProgress {
  RWCString direction;         ///< "to" or "from" the host; empty: nothing is carried at the moment
  RWCString host;              ///< The step's host, the far side.
  RWCString file;              ///< what is carried now: a path, or a pattern with a star
  std::int32_t number = 0;     ///< of `file` among all, from 1
  std::int32_t count = 0;      ///< of all files, patterns and trees; 0 when it isn't known
  std::int64_t bytes = 0;      ///< carried by now, `file` not counted
  std::int64_t total = 0;      ///< of all; 0 when it isn't known, as on the way back
  std::int64_t fileBytes = 0;  ///< of `file`; 0 when it isn't known

  /// @name What stays behind a transfer, until the next one.
  /// @{
  RWCString problem;        ///< why a copy failed, with host, path and the tool's words
  RWCString keptDirectory;  ///< on `host`: what could not be fetched lies there
  /// @}

  bool operator==(const TLTransferProgress&) const = default;
};

/// Called whenever the progress of some step has changed, since a copy holds the process until it
/// is done. Null for none.
void setTransferObserver(std::function<void()> observer);
/// Calls the observer, if there is one.
void tellTransferObserver();
