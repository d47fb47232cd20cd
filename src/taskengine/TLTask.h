#pragma once

#include <cstdint>
#include <vector>

#include "taskengine/TLSubTask.h"

/// A list of steps with the place of its computation on disk, itself a sub-task. It owns its steps,
/// and each of them holds it: clearSubTasks breaks that cycle, and must be called for a task that
/// shall go before the process does.
class TLTask : public TLSubTask {
 public:
  TLTask() = default;

  ~TLTask() override;
  bool argumentsDefined() override;
  /// All steps to pending, then TLSubTask::start.
  int start() override;
  /// Answers a status question (1) to all parents with the status word of each step.
  void handleMessage(TLProcessMessage& message) override;
  /// Reads a task file. 1 at its closing line or the end of the text, 0 at the first fault.
  int read(TLTextSource& stream) override;
  void write(TLTextSink& stream) const override;

  /// Null when `position` is outside.
  TLSubTask* subTask(std::int32_t position) const;
  /// Positions of steps run from 0 to below this.
  std::int32_t subTaskCount() const { return static_cast<std::int32_t>(subTasks.size()); }
  /// Appends a step and makes this its parent task.
  void addSubTask(const Handle<TLSubTask>& step);
  /// Lets all steps go; those held elsewhere are then without a parent task.
  void clearSubTasks();
  /// Reads the task file `path`; 0 also when it can't be opened.
  int readFile(const RWCString& path);
  /// Takes directory and run file from the first marine solver's first word that is no option.
  void deduceComputationPath();
  /// Path of the run file: `localComputationPath` and `computationFileName`.
  RWCString computationPath() const;

  /// The walk through the steps that starts what may start now. `wasRunning` is resized to one
  /// entry per step: 1 for each that ran when the walk came to it.
  void launchDueSubTasks(std::vector<std::int32_t>& wasRunning);
  /// True when the status file says that a marine step didn't end well.
  static bool stepFailed(TLSubTask& step);
  /// Disables the steps from `position` on.
  void disableFrom(std::int32_t position);
  /// Asks the user, then ends all processes of the task. "yes" when it was done, else "no".
  RWCString stopTask();

  std::vector<Handle<TLSubTask>> subTasks;  ///< in file order
  RWCString fileName;                       ///< task file last read
  std::int32_t temporary = 0;               ///< Carried, without effect here, as are the next two.
  std::int32_t applyToAllSubtasks = 0;      ///< Carried.
  std::int32_t taskType = 0;                ///< Carried.
  RWCString localComputationPath;           ///< Directory of the computation on this host.
  RWCString computationFileName;            ///< Run file in it, without directory.

 private:
  /// True when a start of `step` would have to wait for a host that doesn't answer. The step stays
  /// as it is, and its turn comes again with the next walk.
  bool waitsForHost(TLSubTask& step) const;
  void launchBesideWhenDue(TLSubTask& step, std::int32_t position, const TLSubTask* previous);
  void launchBeside(TLSubTask& step, std::int32_t position);
  void launchFirst(TLSubTask& step);
  void launchWaiting(TLSubTask& step, std::int32_t position);
  bool allEndedBefore(std::int32_t position);
  void disableBehindFailures(std::int32_t position);
  bool disableBehindFailure(TLSubTask& step, std::int32_t position);
  void reportFailedCopy(const TLSubTask& step, std::int32_t position) const;
};
