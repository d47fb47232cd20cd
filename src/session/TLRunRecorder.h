#pragma once

#include <cstddef>

#include "taskengine/TLRunState.h"
#include "textio/RWCString.h"

class TLTask;

/// Keeps the file that describes this run (TLRunState) in step with its task, for those who look
/// from outside. The file is written when something changed and only then; a file that can't be
/// written is done without.
class TLRunRecorder {
 public:
  /// Begins the record of `task`: the file is in `directory`, the user's directory for such files.
  void begin(const TLTask& task, const RWCString& directory);
  /// Looks at the task and writes the file when it differs from what was written last.
  void update(const TLTask& task);
  /// Removes the file.
  void forget();

 private:
  void record(const TLTask& task, std::size_t position);

  RWCString directory_;  ///< empty: not begun
  TLRunState state_;
};

/// The recorder of this process.
TLRunRecorder& runRecorder();
