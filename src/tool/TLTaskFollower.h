#pragma once

#include <chrono>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "taskengine/TLRunState.h"
#include "tool/TLDaemonClient.h"
#include "tool/TLTerminal.h"

/// Names of the steps of a task, as they are shown.
struct TLStepLabel {
  std::string name;
  std::string executable;
  std::string host;
};

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

  TLTaskFollower(TLDaemonClient& client, std::vector<TLStepLabel> steps, std::string stateFile);

  /// Shows the residuals that come as answers to its polls: drawn above the line of progress on a
  /// terminal, as lines of numbers elsewhere. `mirror` must live as long as this object.
  void showResiduals(TLSteeringMirror& mirror);

  /// Polls every `interval` until one of the ends; `interrupted` is looked at all the time.
  End follow(std::chrono::milliseconds interval, const volatile int& interrupted);

  /// Every step as it stands: name, host, status, time, reason.
  std::string table() const;
  /// True when every step ended ok.
  bool allOk() const;
  const std::vector<std::int32_t>& statuses() const { return shown_; }

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
  double elapsed(std::size_t step) const;
  std::string label(std::size_t step) const;

  TLDaemonClient& client_;
  std::vector<TLStepLabel> steps_;
  std::string stateFile_;
  TLTerminal terminal_;
  std::vector<std::int32_t> shown_;
  std::vector<Clock::time_point> startTimes_;
  std::vector<Clock::time_point> endTimes_;
  std::map<std::int32_t, std::string> reasons_;
  Clock::time_point begin_ = Clock::now();
  TLSteeringMirror* mirror_ = nullptr;
  int linesShown_ = 0;  ///< of plot and progress
  int widthShown_ = 0;  ///< of the terminal at that time
};
