#pragma once

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

#include "taskengine/TLRunState.h"
#include "tool/TLDaemonClient.h"
#include "tool/TLTerminal.h"

/// Follows one daemon from the outside: polls it, prints each change of a step's status and each
/// reason of an end as it comes, and keeps one line of progress on a terminal.
class TLTaskFollower {
 public:
  enum class End {
    allEnded,     ///< every step has a status that it keeps
    daemonGone,   ///< the daemon ended, or was killed, before that
    interrupted,  ///< the user asked to leave
    noStart       ///< the daemon said that it can't run the task
  };

  /// `run`: what is known of the run so far, with the names of all steps; the rest comes from the
  /// daemon's answers and from its state file.
  TLTaskFollower(TLDaemonClient& client, TLRunState run, std::string stateFile);

  /// Lines go to standard error: standard output is for the answer alone.
  void keepOutputFree() { out_ = stderr; }

  /// Shows the residuals that come as answers to its polls: drawn above the line of progress on a
  /// terminal, as lines of numbers elsewhere. `mirror` must live as long as this object.
  void showResiduals(TLSteeringMirror& mirror);

  /// Polls every `interval` until one of the ends; `interrupted` is looked at all the time.
  End follow(std::chrono::milliseconds interval, const volatile int& interrupted);

  /// The run as it stands.
  const TLRunState& run() const { return run_; }
  /// True when every step ended ok.
  bool allOk() const;

 private:
  using Clock = std::chrono::steady_clock;

  bool update();
  void showChanges(const std::vector<std::int32_t>& statuses);
  void showReports();
  void showProgress();
  void clearProgress();
  void showResidualNews();
  void showLastPlot();
  std::vector<std::string> residualLines() const;
  void printLine(const std::string& text);
  void readState();
  bool allEnded() const;
  std::string label(std::size_t step) const;

  TLDaemonClient& client_;
  TLRunState run_;
  std::string stateFile_;
  TLTerminal terminal_;
  std::FILE* out_ = stdout;
  Clock::time_point begin_ = Clock::now();
  TLSteeringMirror* mirror_ = nullptr;
  int linesShown_ = 0;  ///< of plot and progress
  int widthShown_ = 0;  ///< of the terminal at that time
};
