#pragma once

#include <cstdint>

#include "taskengine/TLTask.h"

/// The task of the daemon: supervises its steps. It has no thread and waits on nothing; the script
/// layer calls superviseOnce from a timer. It adds no data to the record.
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
  bool isEndedMarineTask() const;
  void readMessages();
  /// Says once that the virtual machine is gone, which the calls to it don't tell apart from
  /// silence. A process that never joined one isn't told.
  void watchVirtualMachine();
  /// Hears how processes ended and puts into words why steps did.
  void explainEnds();

  /// The end of a step that ran when the cycle's walk came to it.
  void checkEndedInCycle(TLSubTask& step, std::int32_t position);
  void reportQueueEnd(TLSubTask& step, std::int32_t position);
  void reportSolverCrash(TLSubTask& step, std::int32_t position);
  /// Tells script and parents that `tool` ("FWH") is gone.
  void reportCrash(TLSubTask& step, std::int32_t position, const RWCString& tool);
  void reportMesherEnd(TLSubTask& step, std::int32_t position);

  /// @name Reactions, one per tag.
  /// @{
  void answerStatus(TLProcessMessage& question);
  void stop(TLProcessMessage& message);
  void exit(TLProcessMessage& message);
  void greetSolver(TLProcessMessage& message);
  void replayEndMessages(TLProcessMessage& message);
  void reconnectChild(TLProcessMessage& message);
  void reconnectParent(TLProcessMessage& message);
  void reconnectOtherParent(TLProcessMessage& message);
  void suspendSubTask(TLProcessMessage& message);
  void suspendTask(TLProcessMessage& message);
  void takeSteering(TLProcessMessage& message);
  void takeProcessId(TLProcessMessage& message);
  void saveSolution(TLProcessMessage& message);
  void passOnPerformanceCurve(TLProcessMessage& message);
  /// @}

  void stopWholeTask();
  void addParentEverywhere(std::int32_t tid);
  /// Asks the processes of `step` to end, or touches the stop file of `stopFileOf` for its job.
  static void suspend(const TLSubTask& step, TLSubTask& stopFileOf);

  bool reachable_ = false;  ///< the virtual machine, as the last cycle found it
};
