#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "messaging/TLProcessMessage.h"
#include "tool/TLSteeringMirror.h"

/// What a daemon reported of the end of one step.
struct TLEndReport {
  std::int32_t step = -1;          ///< position; -1 when the message named none
  std::vector<std::string> texts;  ///< reasons, as sent
};

/// The interface side of one daemon: sends it the messages of an interface and collects what comes
/// back. Everything waits with a deadline; nothing throws.
class TLDaemonClient {
 public:
  using Seconds = std::chrono::duration<double>;  ///< How long an operation waits at most.

  /// Talks to the daemon `tid`.
  explicit TLDaemonClient(std::int32_t tid) : tid_(tid) {}

  /// Enrols this process in the virtual machine. False when there is none.
  static bool enrol();

  /// Task identifier of the daemon.
  std::int32_t tid() const { return tid_; }
  /// False once the virtual machine no longer knows the daemon.
  bool alive() const;

  /// Asks for the statuses and waits for the answer. False when none came in time or the daemon is
  /// gone; end reports that came meanwhile are kept in any case.
  bool poll(Seconds patience);
  /// Asks for the statuses and goes on; receiveWaiting() takes the answer in.
  bool beginPoll();
  /// True when the answer to the last poll has come.
  bool pollAnswered() const;
  /// The statuses of the last answer, one per step.
  const std::vector<std::int32_t>& statuses() const { return statuses_; }

  /// From now on polls tell what `mirror` holds of the steering values, and it takes in what comes.
  /// It must live as long as this object. None ends that.
  void followSteering(TLSteeringMirror* mirror) { mirror_ = mirror; }

  /// Takes what has arrived without asking.
  void receiveWaiting();
  /// End reports since the last call.
  std::vector<TLEndReport> takeEndReports();
  /// What the daemon said when it could not start; empty when it did.
  const std::string& startError() const { return startError_; }

  /// Sends a message with no, or one integer, sub-message.
  bool send(std::int32_t code);
  /// The same with one integer.
  bool send(std::int32_t code, std::int32_t value);
  /// Sends, then waits for an answer of code `answer`.
  bool ask(std::int32_t code, std::int32_t answer, Seconds patience);
  /// The same with one integer in the question.
  bool ask(std::int32_t code, std::int32_t value, std::int32_t answer, Seconds patience);
  /// Sends the settings of a steering set, whose name must be the path by which the task knows it.
  bool sendSettings(const Handle<TLSteeringParameters>& set);
  /// Waits until the daemon is gone.
  bool waitGone(Seconds patience);

 private:
  bool waitFor(const std::function<bool()>& done, Seconds patience);
  void take(const TLProcessMessage& message);

  std::int32_t tid_;
  std::vector<std::int32_t> statuses_;
  std::vector<TLEndReport> endReports_;
  std::string startError_;
  TLSteeringMirror* mirror_ = nullptr;
  std::vector<std::int32_t> answered_;  // codes other than status and end, as they came
};

/// "pending", "running", ...: the word for a status.
std::string statusText(std::int32_t status);
/// True for a status that a step doesn't leave any more.
bool isTerminalStatus(std::int32_t status);
