#pragma once

#include <cstdint>
#include <vector>

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
  /// What is compared at each look: cheap, since a task may have a thousand steps.
  struct Seen {
    std::int32_t status = -1;
    std::size_t childCount = 0;
    std::int32_t firstChild = 0;
    std::size_t reasonLength = 0;
    RWCString queueState;
    bool operator==(const Seen&) const = default;
  };

  void record(const TLTask& task, std::size_t position);

  RWCString directory_;  ///< empty: not begun
  TLRunState state_;
  std::vector<Seen> seen_;
};

/// The recorder of this process.
TLRunRecorder& runRecorder();
