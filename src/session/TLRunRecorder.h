#pragma once

#include <chrono>
#include <cstdint>
#include <vector>

#include "taskengine/TLKeptRun.h"
#include "taskengine/TLRunState.h"
#include "textio/RWCString.h"

class TLTask;

/// Keeps the file that describes this run (TLRunState) in step with its task, for those who look
/// from outside, and leaves a record of the run (TLKeptRun) for a report. The file is written when
/// something changed and only then, progress at most once a second; the record every few seconds
/// while something changes, and at the end. What can't be written is done without.
class TLRunRecorder {
 public:
  /// Begins the record of `task`: the files are in `directory`, the user's directory for such.
  void begin(const TLTask& task, const RWCString& directory);
  /// Looks at the task and writes the file when it differs from what was written last.
  void update(const TLTask& task);
  /// Writes the last record of the run, with its log, and removes the file.
  void end(const TLTask& task);

 private:
  using Clock = std::chrono::steady_clock;

  /// True when the file has to be written at once.
  bool takeAll(const TLTask& task);
  void removeStale() const;
  void record(const TLTask& task, std::size_t position);
  void noteTransfer(std::size_t position, const TLTransferProgress& transfer);
  void takeProgress(const TLTask& task, std::size_t position);
  TLKeptRun keptRun(const TLTask& task) const;

  RWCString directory_;  ///< empty: not begun
  TLRunState state_;
  std::vector<std::vector<TLKeptCopy>> copies_;  ///< per step
  bool changed_ = false;                         ///< the file is behind
  bool recordBehind_ = false;                    ///< the record is behind
  Clock::time_point written_;                    ///< the file
  Clock::time_point recordWritten_;              ///< the record
};

/// The recorder of this process.
TLRunRecorder& runRecorder();
