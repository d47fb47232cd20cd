#pragma once

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

#include "taskengine/TLRunState.h"
#include "tool/TLDaemonClient.h"
#include "tool/TLTerminal.h"
#include "tool/TLTerminalKeys.h"

/// Follows one daemon from the outside: polls it, prints each change of a step's status and each
/// end message as it comes. On a terminal it keeps a line for each step below them, and draws the
/// residuals when the key "p" is pressed; elsewhere it prints how far the solvers are now and then.
class TLTaskFollower {
 public:
  /// Why the following came to its end.
  enum class End {
    allEnded,     ///< every step has a status that it keeps
    daemonGone,   ///< the daemon ended, or was killed, before that
    interrupted,  ///< the user asked to leave
    noStart       ///< the daemon said that it can't run the task
  };

  /// Where the daemon leaves what its messages don't carry.
  struct Files {
    std::string directory;  ///< with the file of the running daemon
    std::string record;     ///< of the run, with its residuals
  };

  /// `run`: what is known of the run so far, with the names of all steps; the rest comes from the
  /// daemon's answers and from its files.
  TLTaskFollower(TLDaemonClient& client, TLRunState run, Files files);

  /// Lines go to standard error: standard output is for the answer alone.
  void keepOutputFree() { out_ = stderr; }

  /// Shows the residuals that come as answers to its polls: drawn on a terminal, as lines of
  /// numbers elsewhere. `mirror` must live as long as this object.
  void showResiduals(TLSteeringMirror& mirror);

  /// Polls every `interval` until one of the ends; `interrupted` is looked at all the time.
  End follow(std::chrono::milliseconds interval, const volatile int& interrupted);

  /// The run as it stands.
  const TLRunState& run() const { return run_; }
  /// True when every step ended ok.
  bool allOk() const;

 private:
  using Clock = std::chrono::steady_clock;

  /// Whether the daemon is there, looked at from time to time while it owes an answer.
  bool isThere();
  void takeAnswer();
  void takeFiles();
  bool obeyKeys();
  void showChanges(const std::vector<std::int32_t>& statuses);
  void showReasons();
  void showTransfers();
  void showReports();
  void showBusy();
  void showResidualNews();
  void showSteps();
  void clearSteps();
  void showLastPlot();
  void printLine(const std::string& text);
  void takeLogs();
  void takeRecord();
  void sayProgress();
  void readState();
  bool findState();
  bool allEnded() const;
  bool drawsLive() const { return out_ == stdout && terminal_.isTerminal(); }
  std::vector<TLPlotSeries> series() const;
  std::string label(std::size_t step) const;

  TLDaemonClient& client_;
  TLRunState run_;
  Files files_;
  std::string stateFile_;  ///< empty until the daemon has made it
  TLTerminal terminal_;
  TLTerminalKeys keys_;
  std::FILE* out_ = stdout;
  std::vector<std::string> lastLines_;        ///< of the steps' output
  std::vector<std::string> reasonsSaid_;      ///< per step
  std::vector<std::string> transfersSaid_;    ///< per step its direction, or its problem
  std::vector<std::int32_t> iterationsSaid_;  ///< per step, in plain lines
  TLSteeringMirror* mirror_ = nullptr;
  bool plot_ = false;
  bool busySaid_ = false;
  Clock::time_point asked_;
  Clock::time_point nextLifeCheck_;
  Clock::time_point nextFiles_;
  Clock::time_point nextDrawing_;
  Clock::time_point nextNews_;
  std::vector<TLPlotSeries> recorded_;  ///< series of the record, while they are drawn
  int linesShown_ = 0;
  int widthShown_ = 0;  ///< of the terminal at that time
};
