#include "launching/TLComposition.h"
#include "launching/TLLaunchLines.h"
#include "launching/TLLaunching.h"
#include "launching/TLProgramNames.h"
#include "launching/TLRunFileLaunch.h"
#include "launching/TLStartFiles.h"
#include "launching/TLStarter.h"
#include "launching/TLTransfer.h"
#include "messaging/TLVirtualMachine.h"
#include "platform/TLConsole.h"
#include "session/TLScript.h"
#include "taskengine/TLSubTask.h"
#include "taskengine/TLTaskGlobals.h"

namespace {

/// One launch of an ordinary step. What the stages made is put back into the step after each, since
/// the script may look at it between them.
class OrdinaryLaunch {
 public:
  explicit OrdinaryLaunch(TLSubTask& step)
      : step_(step), site_(launchSite()), draft_(draftOf(step)) {}

  int run() {
    gTaskHostName = step_.hostName;
    completeArguments(draft_, site_);
    keep();
    if (isSolver(draft_.executable)) {
      launchWithRunFile(step_, draft_, site_);
      keep();
    }
    if (isSculpt(draft_.executable)) completeSculpt();
    step_.spawnArguments.assign(step_.arguments);
    if (!carryFiles()) return TLSubTask::kCopyFailed;
    draft_.spawnArguments.assign(step_.spawnArguments);
    draft_.win32 = step_.isWin32Host != 0;  // a transfer has asked for the kind of the host again
    return startProgram();
  }

 private:
  void keep() {
    step_.arguments.assign(draft_.arguments);
    step_.executable = draft_.executable;
    step_.hostName = draft_.hostName;
    step_.userSolverPrecision = draft_.precision;
  }

  void completeSculpt() {
    const RWCString file = procDistribFile(draft_);
    completeSculptArguments(draft_, site_);
    step_.loadBalancing.designGenerations = draft_.loadBalancing.designGenerations;
    writeProcDistrib(file, draft_.loadBalancing);
    keep();
  }

  bool carryFiles() {
    int failed = 0;
    switch (carriageOf(draft_, site_, step_.spawnArguments)) {
      case TLCarriage::unstructured:
        failed = transfer().transferHexa_(step_);
        break;
      case TLCarriage::sculpt:
        failed = transfer().transferSculpt(step_) == 1 ? 0 : 1;
        break;
      case TLCarriage::arguments:
        failed = transfer().transferStep(step_);
        break;
      case TLCarriage::none:
        break;
    }
    if (failed == 0) return true;
    tellScript(messageLine("_________REMOTE_COPY_FAILED"));
    return false;
  }

  void tellWords() const {
    tellScript(spawnLine(draft_.executable, draft_.hostName, draft_.win32, draft_.remoteLogin));
    for (const auto& line : argumentLines(draft_.spawnArguments)) tellScript(line);
  }

  void makeBatchFile() {
    if (!wantsBatchFile(draft_)) return;
    if (draft_.win32 && draft_.executable == "mpirun.exe" &&
        draft_.hostName != site_.localHostName) {
      console() << "hostname " << draft_.hostName << " localHost " << site_.localHostName << '\n'
                << std::flush;
    }
    const RWCString base = nameBatchFile(draft_);
    const RWCString text = batchFileText(draft_, site_.suiteDirectory, site_.separator);
    if (writeBatchFile(draft_.batchFile, base, text) == 0) {
      console() << "ERROR: could not create " << draft_.batchFile << '\n' << std::flush;
    }
    step_.arguments.assign(draft_.arguments);
  }

  int startProgram() {
    const RWCString given = step_.executable;
    nameProgram(draft_);
    step_.executable = draft_.executable;
    tellWords();
    makeBatchFile();
    finishSpawnArguments(draft_);
    step_.spawnArguments.assign(draft_.spawnArguments);
    std::int32_t child = 0;
    const int result = starterFor(startWay(draft_))->start(step_, draft_, site_, child);
    conclude(result, child);
    if (step_.executable != "Xmpirun.exe") step_.executable = given;
    return result;
  }

  void conclude(int result, std::int32_t child) {
    if (result == TLSubTask::kCopyFailed && draft_.queued()) return;  // told already
    if (result != 0) {
      tellScript(messageLine("___________CANNOT_SPAWN"));
      step_.status = TLSubTask::FinishedKo;
      return;
    }
    if (!draft_.queued()) evalScript("update");
    step_.addChild(child);
    step_.status = TLSubTask::Running;
    step_.stopRequest = 0;
  }

  TLSubTask& step_;
  TLLaunchSite site_;
  TLLaunchDraft draft_;
};

}  // namespace

int TLLaunching::startStep(TLSubTask& step) {
  if (step.enabled == 0) {
    step.status = TLSubTask::FinishedOk;
    return 0;
  }
  step.children.clear();
  step.isWin32Host = hostIsWin32(step.hostName);
  return OrdinaryLaunch(step).run();
}
