#pragma once

#include <cstdint>

#include "taskengine/TLTask.h"

/// The task of the daemon: supervises its steps. It has no thread and waits on nothing; the script
/// layer calls superviseOnce from a timer. It adds no data to the task.
class TLTaskChildren : public TLTask {
 public:
  /// Sets gLaunchConfirmed.
  TLTaskChildren();
  ~TLTaskChildren() override;

  /// Marks the task running and all steps pending. Launches nothing; answers 1.
  int start() override;
  /// Reacts to one message of an interface, or of a process that no step knows.
  void handleMessage(TLProcessMessage& message) override;

  /// One supervision cycle: launches what is due, reports what ended without a word, reads and
  /// answers all messages that have arrived.
  void superviseOnce();

  /// The crash check of one step that was running when a status poll came to it.
  void checkEnded(TLSubTask& step, std::int32_t position);
  /// Asks a queued solver to stop, by a file beside its run file.
  static void touchStopFile(TLSubTask& step);

 private:
  void checkEndedInCycle(TLSubTask& step, std::int32_t position);
  void readMessages();
  bool endMarineTask() const;
};
