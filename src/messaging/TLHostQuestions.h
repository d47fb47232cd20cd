#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>

#include "platform/TLHelperProcess.h"

/// Questions to the virtual machine about one other host, asked by a companion process.
///
/// PVM holds its caller for minutes when the host doesn't answer. Here a question waits a moment
/// only; after that it goes on beside this process, and is answered with what was known before
/// until PVM has answered. One question is under way at a time.
class TLHostQuestions {
 public:
  using Clock = std::chrono::steady_clock;  ///< Not set back by a change of the time of day.

  /// `program` is the companion's path, `name` the host's name for the log.
  TLHostQuestions(std::string program, std::string name);

  /// PVM's code for `question` ("task TID" or "host TID"), waited for at most `seconds`; what was
  /// answered last, at first 0, while a question is under way. When no companion can be had it is
  /// `direct` that asks.
  std::int32_t ask(const std::string& question, double seconds,
                   const std::function<std::int32_t()>& direct);

  /// True while a question is under way that has outlasted its wait.
  bool silent();
  /// When the question that is under way was asked.
  Clock::time_point askedAt() const { return askedAt_; }
  /// As askedAt(), in seconds since the epoch.
  double since() const { return since_; }
  /// When PVM last answered a question about this host.
  Clock::time_point answeredAt() const { return answeredAt_; }
  /// Name of the host, as it was given.
  const std::string& name() const { return name_; }

 private:
  bool haveCompanion();
  bool sendQuestion();
  /// Takes the answer when it comes in time; false while the question is under way.
  bool takeAnswer(double seconds);
  void lose(const std::string& why);

  std::string program_;
  std::string name_;
  std::optional<TLHelperProcess> companion_;
  std::string question_;  ///< under way; empty: none
  Clock::time_point askedAt_;
  double since_ = 0;  ///< askedAt_ by the wall clock
  Clock::time_point answeredAt_;
  Clock::time_point startedAt_;               ///< the companion
  Clock::time_point notBefore_;               ///< of the next start after one that failed
  std::map<std::string, std::int32_t> last_;  ///< the last answers
  std::map<std::string, std::int32_t> late_;  ///< bad news that nobody was there to hear
};
