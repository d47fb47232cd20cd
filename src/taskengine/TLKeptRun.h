#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "taskengine/TLPlotSeries.h"
#include "taskengine/TLRunState.h"

/// Files that went to a step's host, or came back.
struct TLKeptCopy {
  std::string direction;           ///< "to" or "from"
  std::string host;                ///< The other side of the copy.
  std::int32_t files = 0;          ///< Files, patterns and trees; 0 when it isn't known.
  std::int64_t bytes = 0;          ///< as far as known
  double started = 0;              ///< seconds since the epoch
  double ended = 0;                ///< 0: not yet
  std::vector<std::string> names;  ///< of the first of them
  std::string problem;             ///< why not all were copied

  bool operator==(const TLKeptCopy&) const = default;
};

/// What a report tells of one step beyond its state.
struct TLKeptStep {
  std::vector<std::string> command;        ///< words of its command line as started; none: never
  std::vector<std::string> crashLines;     ///< what its processes said of a failure
  std::vector<std::string> endTexts;       ///< texts of its end message
  std::vector<std::int32_t> blockProcess;  ///< process of each mesh block, from 0
  std::vector<std::int32_t> blockCells;    ///< weight of each block; 0 unknown
  std::vector<std::string> processHosts;   ///< host of each process of a parallel run
  std::vector<TLKeptCopy> copies;          ///< In the order in which they were made.
  std::vector<TLPlotSeries> residuals;     ///< over the iterations, each of kMostPoints at most
};

/// The record that a run leaves for a report: its last state and what the state file has no room
/// for. One per task file, in the user's PVM directory, JSON with a version field, replaced
/// atomically by the next run of the same task; the log of the run beside it. Only the newest are
/// kept.
class TLKeptRun {
 public:
  static constexpr int kVersion = 1;                ///< Of the format; files of others aren't read.
  static constexpr std::size_t kMostPoints = 1000;  ///< Points that are kept of a residual.
  static constexpr std::size_t kMostRuns = 50;      ///< Records that removeOld() leaves.
  /// Bytes that are kept of a log, from its end.
  static constexpr std::size_t kLongestLog = std::size_t{1} << 20;

  TLRunState run;                 ///< The last state of the run.
  double ended = 0;               ///< of the daemon, orderly; 0: it runs, or was killed
  std::vector<TLKeptStep> steps;  ///< as many as there are in `run`

  /// Path of the record of `taskFile` in `directory`.
  static std::string fileName(const std::string& directory, const std::string& taskFile);
  /// Path of the log beside it.
  static std::string logName(const std::string& directory, const std::string& taskFile);

  /// Writes the record; 0 or an errno.
  int save(const std::string& directory) const;
  /// Copies the end of the run's log beside the record and has the record name the copy, its
  /// reasons included. Nothing when there is no log.
  void keepLog(const std::string& directory);
  /// Reads a record; none when it isn't there or is none.
  static std::optional<TLKeptRun> load(const std::string& path);
  /// All records of a directory, the newest run first.
  static std::vector<TLKeptRun> list(const std::string& directory);
  /// Removes all but the newest records, with their logs.
  static void removeOld(const std::string& directory);
};
