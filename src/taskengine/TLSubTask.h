#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "balancing/TLLoadBalancing.h"
#include "balancing/VPartParameters.h"
#include "messaging/TLProcessMessage.h"
#include "messaging/TLSteeringParameters.h"
#include "messaging/TLVirtualMachine.h"
#include "taskengine/TLProcessArguments.h"
#include "taskengine/TLResidualHistory.h"
#include "taskengine/TLStepEnd.h"
#include "taskengine/TLTransferProgress.h"
#include "textio/Handle.h"
#include "textio/RWCString.h"
#include "textio/RefCounted.h"
#include "textio/TLTextSink.h"
#include "textio/TLTextSource.h"

class TLTask;

/// One step of a task: what it runs, where, with which arguments, and all that is known of its
/// processes while it lives. The sub-task is the unit of launch; its `status` says how far it is.
///
/// A sub-task lives on the heap, held by Handles, and is used on the main thread. Its operations
/// answer by value; none throws. Lists of tids hold no duplicates when they grow through the add
/// operations. A `tid` above 0 is a task of the virtual machine; for a step of a queuing system the
/// first child is the number of its job.
class TLSubTask : public RefCounted {
 public:
  /// Values of `status`. From FinishedOk on they are terminal: a status doesn't leave them within
  /// one run.
  enum Status : std::int32_t {
    Pending = 0,     ///< not started
    Running = 1,     ///< started; what isRunning() last said
    FinishedOk = 2,  ///< ended, or disabled
    FinishedKo = 3,  ///< ended badly, or couldn't be started
    Crashed = 4,     ///< gone without an end message that it owed
    Stopped = 5      ///< ended on purpose
  };

  /// Values of `finishMessage.tag` besides the tag of a stored end message.
  /// @{
  static constexpr std::int32_t kNoEndSeen = -1;    ///< vanishing now is a crash
  static constexpr std::int32_t kEndReplayed = -2;  ///< sent again to a new interface
  static constexpr std::int32_t kEndRequested = 1;  ///< stopped on purpose
  /// @}

  /// Answer of start() when the files of the step could not be copied to its host.
  static constexpr int kCopyFailed = -100;

  /// The defaults; enters the process's parent in `parents` and asks the virtual machine for the
  /// kind of the host.
  TLSubTask();
  TLSubTask(const TLSubTask&) = delete;
  TLSubTask& operator=(const TLSubTask&) = delete;

  /// @name Virtual operations, in the order of their slots.
  /// @{

  /// Leaves its processes running.
  ~TLSubTask() override;
  /// Makes this a copy of `other` for a new run: identity, host, arguments and settings are copied,
  /// everything that belongs to a run starts anew.
  virtual void assign(const TLSubTask& other);
  /// False when a value among `arguments` is still "unknown" or "undefined"; gLastError then says
  /// so.
  virtual bool argumentsDefined();
  /// Launches the step. 0 on success (a disabled step ends at once), kCopyFailed, or another code
  /// of failure.
  virtual int start();
  /// Reads and handles, without waiting, all messages from `tid` with `tag` (-1 for any).
  /// Answers 1.
  virtual int pollMessages(std::int32_t tid, std::int32_t tag);
  /// As pollMessages, but waits for the first message.
  virtual int waitMessage(std::int32_t tid, std::int32_t tag);
  /// Reacts to one message of the step's own processes. May change `message` and send it on.
  virtual void handleMessage(TLProcessMessage& message);
  /// Reads the step's block of a task file behind its opening line. 1, or 0 at the first value that
  /// is missing; what was read until then stays.
  virtual int read(TLTextSource& stream);
  /// Writes the lines of the step's block, without those that open and close it.
  virtual void write(TLTextSink& stream) const;
  /// @}

  /// @name Status.
  /// @{

  /// "pending", "running", ... ; "not a correct status" for any other number.
  RWCString statusWord() const;
  /// True for a status that a run doesn't leave any more.
  bool isTerminal() const { return status >= FinishedOk && status <= Stopped; }
  /// True when a queuing system is asked to run the step, whichever it is.
  bool isQueued() const { return loadBalancing.queuingSystemActivated != 0; }
  /// The one place that learns the truth about the step: asks the queuing system, the status file
  /// or the virtual machine, changes `status` accordingly and answers true while the step runs.
  bool isRunning();
  /// @}

  /// @name Lists.
  /// @{

  /// Null when `position` is outside.
  Handle<TLProcessArgument> argument(std::int32_t position) const;
  /// Null when `position` is outside.
  Handle<TLProcessArgument> spawnArgument(std::int32_t position) const;
  /// 0 when `position` is outside.
  std::int32_t child(std::int32_t position) const;
  /// 0 when `position` is outside.
  std::int32_t parent(std::int32_t position) const;
  /// 0 when none was reported; also the key of the process's semaphores.
  std::int32_t firstProcessId() const;
  /// Appends `tid` unless it is there already.
  void addChild(std::int32_t tid);
  /// Appends `id` unless it is there already.
  void addProcessId(std::int32_t id);
  /// Enters a parent with the present `steeringDirty`; nothing changes when it is there already.
  void addParent(std::int32_t tid);
  /// The owning task; prints a warning when there is none.
  Handle<TLTask> parentTask() const;
  /// Shares `task`, which then can't go before this lets it go; null lets it go.
  void setParentTask(TLTask* task);
  /// @}

  /// @name Messages.
  /// @{

  /// Sends to each parent above 0, in order.
  void sendToParents(TLProcessMessage& message) const;
  /// As sendToParents, adding 10000 to the tag before each send; the sum accumulates.
  void sendToParentsOffset(TLProcessMessage& message) const;
  /// Sends to each child above 0, in order. 0 when there are no children, else 1.
  int sendToChildren(TLProcessMessage& message) const;
  /// True when the run files named in `message` hold every run file of `spawnArguments`, which must
  /// not be empty. A message 20 must also end in an integer.
  bool runFileMatches(const TLProcessMessage& message) const;
  /// @}

  /// @name Steering.
  /// @{

  /// Gives the interface `tid` the values that it lacks by `known` (null: nothing known).
  void sendSteering(std::int32_t tid, const Handle<TLSteeringParameters>& known);
  /// Takes over a new set; histories of parameters that stay are kept. Null drops the present set.
  void applyNewSteering(const Handle<TLSteeringParameters>& parameters);
  /// Takes a new set read from the steering file `path`, whatever the result of the reading, which
  /// is answered.
  int loadSteering(const RWCString& path);
  /// @}

  /// Removes what a crashed parallel solver left locked on its hosts.
  void removeSemaphores();
  /// Asks the virtual machine's host table again.
  void updateHostKind();

  /// @name The record, in its order.
  /// @{
  TLProcessMessage finishMessage;     ///< end message kept; its tag is a state, see above
  TLProcessMessage errorLines;        ///< texts of message 8, the lines of a crash report
  TLLoadBalancing loadBalancing;      ///< Processes, distribution and queue of a parallel run.
  TLProcessArguments spawnArguments;  ///< command line as last composed at launch
  /// Numbers that the processes reported of themselves (message 20).
  std::vector<std::int32_t> processIds;
  /// Task identifiers of its processes; a queued step's job number.
  std::vector<std::int32_t> children;
  std::vector<std::int32_t> parents;  ///< Those to whom it reports; 0 stands for none.
  /// In step with `parents`: 1 when that parent lacks the current steering values.
  std::vector<std::int32_t> parentSteeringDirty;
  std::int32_t steeringDirty = 0;  ///< 1 from a message 15 until the steering was next sent.
  RWCString remoteLogin;           ///< empty: the same user
  std::vector<Handle<TLProcessMessage>> inbox;  ///< Received, not yet handled.
  Handle<TLSteeringParameters> steering;        ///< Never null but after applyNewSteering(null).
  TLProcessArguments arguments;                 ///< as the task file gives them
  RWCString executable = "unknown";             ///< program, without directory
  RWCString hostName = "unknown";               ///< As the virtual machine's table has it.
  std::int32_t isWin32Host = 1;                 ///< 1 also for a host that the table lacks.
  RWCString remoteTmpDir;                       ///< where run directories are made on a remote host
  RWCString remoteRunDir;                       ///< the one made for this run; empty for none
  RWCString name = "unknown";                   ///< kind of the step
  std::int32_t startingDate = -1;               ///< -1 at once, -2 after `startAfterTask`
  std::int32_t endingDate = -1;                 ///< Carried, without effect here.
  std::int32_t status = Pending;                ///< A Status.
  std::int32_t stopRequest = 0;  ///< 1 after the script asked a marine solver to stop by file
  std::int32_t waitingTask = 1;  ///< 1 waits for all steps before it, 0 runs beside them
  std::int32_t automaticMemoryEstimation = 1;  ///< 1: the solver sizes its memory itself. Carried.
  std::int32_t userSolverPrecision = 0;        ///< 0 single, 1 double
  std::int64_t integerSize = 1000000;          ///< Integers that a solver makes room for. Carried.
  std::int64_t realSize = 1000000;             ///< Reals likewise. Carried.
  std::int32_t index = 0;                      ///< place in the task, from 0, set at its start
  std::int32_t steeringAsked = 0;    ///< 1 once a solver asked for its settings (message 14).
  RWCString startAfterTask;          ///< Name of the task to wait for; empty for none.
  VPartParameters virtualPartition;  ///< Settings of the solver's own partition of the mesh.
  std::int32_t enabled = 1;          ///< 0: start() finishes the step at once
  /// Of the performance curve. Carried.
  RWCString perfCurveName = "unknown";
  /// @}

  /// @name Why the step ended; not part of the record's file.
  /// @{

  /// Notes what ended the step. What is noted later counts, up to explainEnd.
  void noteEnd(TLStepEnd::Kind kind, const RWCString& detail = {});
  /// Notes that it is being stopped: on the order of an interface, or of the user at the window.
  /// To be called while `status` is still the former one.
  void noteStop(bool inWindow);
  /// Notes how one of its processes ended, which may be heard before or after the end itself.
  void noteProcessEnd(std::int32_t waitStatus);
  /// Puts what is known about the end into words. Does nothing while the step hasn't ended, or
  /// when nothing was noted since.
  void explainEnd();
  /// Why it ended, one sentence for people; empty as long as it hasn't, and when all is well.
  RWCString endReason;
  /// Name and place of the step that failed, for one that was disabled for that.
  RWCString disabledBehind;
  /// Where the tool writes what it does; empty: only into the collected output.
  RWCString logFile;
  /// @}
  /// Its host when that doesn't answer; for a step that is due, the host that its start waits for.
  TLSilentHost silentHost() const;
  /// What keeps it from being started although it is due. Not part of the record's file.
  TLSilentHost launchObstacle;
  /// The queuing system's own word for the state of the job, as last seen ("qw", "RUN"); empty
  /// when none was seen. Not part of the record's file.
  RWCString queueState;
  /// What its solver has told of its residuals so far. Not part of the record's file.
  TLResidualHistory residuals;
  /// The last text that one of its processes had for the user. Not part of the record's file.
  RWCString lastText;
  /// Files on their way to the step's host or back. Not part of the record's file.
  TLTransferProgress transfer;

 private:
  int launch();
  void forgetEnd();
  bool isJobRunning();
  /// What the status file says: runs, or has ended; none when the process has to be asked.
  std::optional<bool> askStatusFile();
  std::optional<bool> askMarineStatus();
  std::optional<bool> askProbesStatus();
  bool isProcessAlive(std::int32_t tid);
  void handleEnd(TLProcessMessage& message);
  void sendSolutionName(std::int32_t tid) const;
  void answerSteering(std::int32_t tid);
  void resetSteering(std::int32_t tid);

  Handle<TLTask> parentTask_;
  RWCString queueAnswer_;  ///< what the queuing system said last
  TLStepEnd end_;
  bool endExplained_ = false;
  bool hostWasKnown_ = false;  ///< by the virtual machine, at the start
};
