#include "launching/TLLaunchLines.h"
#include "launching/TLLaunching.h"
#include "launching/TLMarineComposition.h"
#include "launching/TLPathText.h"
#include "launching/TLStartFiles.h"
#include "launching/TLStarter.h"
#include "messaging/TLVirtualMachine.h"
#include "platform/TLConsole.h"
#include "session/TLScript.h"
#include "taskengine/TLStatusFile.h"
#include "taskengine/TLTask.h"
#include "taskengine/TLTaskGlobals.h"

namespace {

TLComputationPlace placeOf(const TLSubTask& step) {
  const Handle<TLTask> task = step.parentTask();
  if (!task) return {};
  return {task->localComputationPath, task->computationFileName};
}

/// The file beside which the status file lies.
RWCString statusPathOf(const TLSubTask& step) {
  const Handle<TLTask> task = step.parentTask();
  return task ? task->computationPath() : RWCString();
}

/// A file name as one word of a script line. Braces keep everything as it is, unless the name
/// itself has some or ends in a backslash.
RWCString tailWord(const RWCString& file) {
  if (file.find_first_of("{}") == RWCString::npos && !file.ends_with('\\')) {
    return "{" + file + "}";
  }
  return '"' + scriptQuoted(doubleBackslashes(file)) + '"';
}

/// One launch of a marine step.
class MarineLaunch {
 public:
  explicit MarineLaunch(TLSubTask& step)
      : step_(step), site_(launchSite()), draft_(draftOf(step)), place_(placeOf(step)) {}

  int run() {
    completeMarineArguments(draft_, site_);
    setStatusEntries();
    if (isMarineSolver(draft_.executable)) settleProcesses();
    nameParallelMarineProgram(draft_, site_);
    gTaskHostName = draft_.hostName;
    step_.arguments.assign(draft_.arguments);
    const RWCString remembered = draft_.executable;
    finishArguments();
    tellScript(spawnLine(draft_.executable, draft_.hostName, draft_.win32, draft_.remoteLogin));
    for (const auto& line : argumentLines(draft_.spawnArguments)) tellScript(line);
    const int result = start();
    if (step_.executable != "Xmpirun.exe") step_.executable = remembered;
    return result;
  }

 private:
  void setStatusEntries() const {
    const RWCString& program = draft_.executable;
    const RWCString path = statusPathOf(step_);
    if (program == "bmh2quorel_no_interactive" || program == "bmh2quorel_no_interactive.exe") {
      for (const char* block : {"premetis", "postmetis"}) {
        if (readStatusEntry(block, "STATUS", path, true) != "pending") {
          writeStatusEntry("pending", block, "STATUS", path);
        }
      }
    }
    if (isMarineSolver(program)) writeStatusEntry("running", "quorelcfd", "STATUS", path);
  }

  void settleProcesses() {
    bool said = false;
    for (const auto& entry : draft_.arguments.entries()) said = said || entry->type() == "-np";
    settleMarineProcesses(draft_);
    step_.loadBalancing.parallel = draft_.loadBalancing.parallel;
    if (!said) return;
    step_.virtualPartition.setNbTasks(0);
    step_.virtualPartition.setActivated(0);
  }

  void finishArguments() {
    if (!finishMarineArguments(draft_, place_, gMappingStrategy())) {
      console() << " Cannot perform for such a kind of sub-tasks\n" << std::flush;
    }
    step_.executable = draft_.executable;
    step_.spawnArguments.assign(draft_.spawnArguments);
    if (!draft_.win32 && draft_.name == "QUOREL_CFD") {
      normaliseLineEnds(place_.directory + "machines.txt");
    }
  }

  /// A step that a queuing system should run starts no process: it only counts as running.
  int start() {
    if (!draft_.queued()) {
      std::int32_t child = 0;
      const int result = directStarter().start(step_, draft_, site_, child);
      if (result != 0) {
        tellScript(messageLine("___________CANNOT_SPAWN"));
        step_.status = TLSubTask::FinishedKo;
        return result;
      }
      evalScript("update");
      step_.addChild(child);
    }
    step_.status = TLSubTask::Running;
    followLog();
    return 0;
  }

  void followLog() {
    const RWCString log = marineLogFile(draft_, place_, site_.separator);
    if (log.empty()) return;
    step_.logFile = log;
    for (const RWCString& line :
         {RWCString("after 3000"), RWCString("update"), "task_manager_init_tail " + tailWord(log),
          RWCString("update"), RWCString("task_manager_update_tail"), RWCString("update")}) {
      evalScript(line);
    }
  }

  TLSubTask& step_;
  TLLaunchSite site_;
  TLLaunchDraft draft_;
  TLComputationPlace place_;
};

}  // namespace

int TLLaunching::startMarineStep(TLSubTask& step) {
  if (isIdlePartition(step.name, step.arguments)) {
    step.status = TLSubTask::FinishedOk;
    return 0;
  }
  step.children.clear();
  step.isWin32Host = hostIsWin32(step.hostName);
  return MarineLaunch(step).run();
}
