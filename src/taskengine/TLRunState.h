#pragma once

#include <cstdint>
#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <string>
#include <vector>

#include "taskengine/TLTransferProgress.h"

/// How far a residual has come.
struct TLRunStateResidual {
  std::string name;  ///< Of the residual, as the solver tells it.
  double first = 0;  ///< Value that was told first.
  double last = 0;   ///< Value that was told last.

  bool operator==(const TLRunStateResidual&) const = default;
};

/// What is known of one step beyond what the messages carry.
struct TLRunStateStep {
  std::string name;                    ///< Kind of the step.
  std::string executable;              ///< Program, without directory.
  std::string host;                    ///< Where it runs.
  std::int32_t status = 0;             ///< as in the answer to a status poll
  std::vector<std::int32_t> children;  ///< tids; for a queued step its job number
  std::int32_t queue = 0;              ///< 0 none, 1 SGE, 2 PBS, 3 LSF
  std::int32_t jobNumber = 0;          ///< 0 none
  double started = 0;                  ///< seconds since the epoch; 0 not yet
  double ended = 0;                    ///< 0 not yet
  std::string reason;      ///< why it ended, one sentence; empty when it runs or all is well
  std::string queueState;  ///< the queuing system's own word for the job; empty if none

  std::string silentHost;  ///< a host that doesn't answer, for which the step waits; empty: none
  double silentSince = 0;  ///< when it was asked; 0: there is none

  std::int32_t iteration = 0;                 ///< the last one that its solver has told; 0 none
  std::int32_t iterationsAsked = 0;           ///< 0 unknown
  std::vector<TLRunStateResidual> residuals;  ///< In the order in which the solver told them.
  std::string lastText;                       ///< what it last had to say to the user

  /// What of its files is on its way to its host or back, and what a failed copy left where.
  TLTransferProgress transfer;

  /// "host not answering since 10:11:12", for a step that isn't started for that "waits: ..." with
  /// the host's name when it is another one's; empty when there is no such host.
  std::string silenceText() const;

  bool operator==(const TLRunStateStep&) const = default;
};

/// The small file by which a daemon can be found and understood from outside: one per run, in the
/// user's PVM directory, JSON with a version field, replaced atomically, removed at an orderly end.
/// A file whose process is gone belongs to a daemon that was killed.
class TLRunState {
 public:
  static constexpr int kVersion = 1;  ///< Of the format; files of others aren't read.

  std::int32_t tid = 0;  ///< of the daemon; 0 when it is not enrolled
  int pid = 0;           ///< Of the daemon, on its host.
  std::string host;      ///< Where the daemon runs.
  std::string taskFile;  ///< full path
  std::string taskName;  ///< As the task file says; "unknown" when it doesn't.
  std::string logFile;   ///< where the output of the steps is collected; empty if nowhere
  double started = 0;    ///< seconds since the epoch
  std::vector<TLRunStateStep> steps;  ///< In the order of the task.

  bool operator==(const TLRunState&) const = default;

  /// Path of the file of process `pid` in `directory`.
  static std::string fileName(const std::string& directory, int pid);

  /// As it stands in the file, and back.
  nlohmann::json json() const;
  /// What is missing keeps its default; throws nlohmann::json::exception for a value of a wrong
  /// type.
  static TLRunState fromJson(const nlohmann::json& json);

  /// Writes the file; 0 or an errno.
  int save(const std::string& directory) const;
  /// Removes the file of process `pid`.
  static void remove(const std::string& directory, int pid);

  /// Reads one file; none when it isn't there or is no state file.
  static std::optional<TLRunState> load(const std::string& path);
  /// All readable state files of a directory, oldest run first.
  static std::vector<TLRunState> list(const std::string& directory);
};
