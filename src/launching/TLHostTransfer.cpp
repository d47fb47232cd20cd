#include "launching/TLHostTransfer.h"

#include "launching/TLCommands.h"
#include "launching/TLLaunchLines.h"
#include "launching/TLPathText.h"
#include "launching/TLProgramNames.h"
#include "launching/TLRetrieval.h"
#include "launching/TLTransferPlanner.h"
#include "launching/TLTransferWatch.h"
#include "messaging/TLVirtualMachine.h"
#include "platform/TLConsole.h"
#include "platform/TLHostForm.h"
#include "session/TLScript.h"
#include "taskengine/TLSubTask.h"

namespace {

constexpr std::int64_t kNumberStep = 10000;

RWCString placeOf(const TLSubTask& step) {
  return step.hostName + ":" + step.remoteRunDir;
}

bool hasMarked(const TLProcessArguments& arguments) {
  for (const auto& entry : arguments.entries()) {
    if (isMarked(*entry)) return true;
  }
  return false;
}

void print(const char* text) {
  console() << text << '\n' << std::flush;
}

/// A line that needs no redrawing behind it.
void tell(const RWCString& phrase) {
  evalScript(messageLine('"' + scriptQuoted(doubleBackslashes(phrase)) + '"'));
}

void runThere(const TLFarSide& far, const std::vector<RWCString>& commands) {
  for (const auto& command : commands) remoteExec(far.host(), command, far.login(), {});
}

/// One list being done.
class Carrying {
 public:
  Carrying(TLSubTask& step, const TLCarryList& list)
      : step_(step), far_(list.far()), watch_(step, far_, "to", countOf(list), totalOf(list)) {}

  /// False when it failed.
  bool act(const TLCarryAction& action) {
    switch (action.kind) {
      case TLCarryAction::Kind::message:
        evalScript(action.text);
        if (action.update) evalScript("update");
        return true;
      case TLCarryAction::Kind::print:
        console() << action.text << std::flush;
        return true;
      case TLCarryAction::Kind::directory:
        return makeRunDirectory(action);
      case TLCarryAction::Kind::command:
        remoteExec(far_.host(), action.text, far_.login(), {});
        return true;
      case TLCarryAction::Kind::copy:
      case TLCarryAction::Kind::tree:
        return watch_.send(action.source, action.target, action.kind == TLCarryAction::Kind::tree,
                           action.bytes);
      case TLCarryAction::Kind::write:
        return write(action);
      case TLCarryAction::Kind::remove:
        removeLocal(action.target);
        return true;
      case TLCarryAction::Kind::value:
        step_.spawnArguments.at(action.entry)->setValue(action.text);
        return true;
    }
    return true;
  }

 private:
  static bool isCopy(const TLCarryAction& action) {
    return action.kind == TLCarryAction::Kind::copy || action.kind == TLCarryAction::Kind::tree;
  }
  static std::int32_t countOf(const TLCarryList& list) {
    std::int32_t count = 0;
    for (const auto& action : list.actions()) count += isCopy(action) ? 1 : 0;
    return count;
  }
  static std::int64_t totalOf(const TLCarryList& list) {
    std::int64_t total = 0;
    for (const auto& action : list.actions()) total += action.bytes;
    return total;
  }

  bool makeRunDirectory(const TLCarryAction& action) {
    if (makeRemoteDir(far_, far_.host(), action.text) != TLFarSide::kRefused) return true;
    watch_.complain("The directory " + far_.directory() + " of host " + far_.host() +
                    " belongs to somebody else: nothing is copied there");
    step_.remoteRunDir.clear();  // nor removed; the next start draws another number
    return false;
  }

  bool write(const TLCarryAction& action) {
    TLHostForm& form = hostForm();
    const bool link = form.isLink(action.target);
    if (!link && form.replaceFile(action.target, action.text) == 0) return true;
    watch_.complain("The file " + action.target + ", which goes to host " + far_.host() +
                    (link ? ", is a symbolic link" : ", could not be written"));
    return false;
  }

  TLSubTask& step_;
  const TLFarSide& far_;
  TLTransferWatch watch_;
};

}  // namespace

// ---- to the host -----------------------------------------------------------------------------

int makeRemoteDir(const TLFarSide& far, const RWCString& host, const RWCString& command) {
  if (far.directory().empty()) return 0;
  hostForm().setVariable("RPWD", far.win32() ? "$PWD" : "none");
  return remoteExec(host, command, far.login(), {});
}

int carry(TLSubTask& step, const TLCarryList& list) {
  Carrying carrying(step, list);
  RWCString written;  // a file of this host that is there for the transfer only
  RWCString unwritten;
  bool failed = false;
  for (const auto& action : list.actions()) {
    const bool removes = action.kind == TLCarryAction::Kind::remove;
    if (failed && !(removes && action.target == written)) continue;
    // What could not be written goes nowhere, and has not to go.
    if (!unwritten.empty() && (action.source == unwritten || action.target == unwritten)) continue;
    const bool done = carrying.act(action);
    if (action.kind == TLCarryAction::Kind::write) (done ? written : unwritten) = action.target;
    if (removes) written.clear();
    if (!done && action.needed) failed = true;
  }
  return failed ? 1 : 0;
}

void TLHostTransfer::prepareRemoteDir(TLSubTask& step) {
  if (!step.remoteRunDir.empty()) return;
  step.updateHostKind();
  // Numbers repeat: two runs of this process must not share a directory.
  do {
    const std::int64_t number = hostForm().randomNumber() * kNumberStep + 1;
    step.remoteRunDir =
        TLFarSide::directoryName(step.remoteTmpDir, step.isWin32Host != 0, std::to_string(number));
  } while (!usedDirectories_.insert(placeOf(step)).second);
}

int TLHostTransfer::transferStep(TLSubTask& step) {
  if (!hasMarked(step.spawnArguments)) return 0;
  prepareRemoteDir(step);
  const int failed = carry(step, carriedArguments(TLFarSide(step), step.spawnArguments));
  if (failed == 0 && !step.remoteLogin.empty()) filledDirectories_.insert(placeOf(step));
  return failed;
}

int TLHostTransfer::transferHexa_(TLSubTask& step) {
  print("TLSubTask::transferHexa_ ... IN");
  prepareRemoteDir(step);
  const int failed = carry(step, carriedUnstructured(TLFarSide(step), step.spawnArguments));
  if (step.transfer.problem.empty()) filledDirectories_.insert(placeOf(step));
  print("TLSubTask::transferHexa_ ... OUT");
  return failed;
}

int TLHostTransfer::transferSculpt(TLSubTask& step) {
  if (step.hostName == ownHostName() || !hasMarked(step.spawnArguments)) return 1;
  prepareRemoteDir(step);
  const int failed = carry(step, carriedSculpt(TLFarSide(step), step.spawnArguments));
  if (step.transfer.problem.empty()) filledDirectories_.insert(placeOf(step));
  return failed == 0 ? 1 : 0;
}

// ---- from the host ---------------------------------------------------------------------------

bool TLHostTransfer::isFilled(const TLSubTask& step) const {
  return filledDirectories_.contains(placeOf(step));
}

void TLHostTransfer::settle(TLSubTask& step, bool complete, bool stillRuns) {
  const TLFarSide far(step);
  if (far.directory().empty()) return;
  const RWCString place = placeOf(step);
  if (complete) {
    keptDirectories_.erase(place);
    if (stillRuns) return;
    runThere(far, far.removal());
    filledDirectories_.erase(place);
    return;
  }
  keptDirectories_.insert(place);
  step.transfer.keptDirectory = far.directory();
  tellTransferObserver();
  const RWCString text = "What could not be fetched is kept on host " + far.host() +
                         " in the directory " + far.directory();
  print(text.c_str());
  sayToScript(text);
}

int TLHostTransfer::retrieveResults(TLSubTask& step) {
  if (retrieving_) return 0;
  retrieving_ = true;
  if (step.name == "DORVEX" || step.name == "LUMBRAKE") {
    const int result = retrieveUnstructured(step, false);
    retrieving_ = false;
    return result;
  }
  if (step.name == "Sculpt3d") {
    const int result = removeRemoteResults(step);
    retrieving_ = false;
    return result;
  }
  // Such a step ends all retrieving of this process.
  if (isHybridMesher(step.executable) || isOofelie(step.executable)) return 1;
  const int result = retrieveArguments(step);
  retrieving_ = false;
  return result;
}

int TLHostTransfer::retrieveArguments(TLSubTask& step) {
  bool complete = true;
  if (step.hostName != ownHostName() && step.arguments.count() > 0) {
    complete = TLRetrieval(step, isFilled(step)).fetchArguments();
  }
  if (step.remoteRunDir.empty()) return 1;
  if (complete) tell("Removing remote temporary directory: " + step.remoteRunDir);
  settle(step, complete);
  return 1;
}

int TLHostTransfer::retrieveHexa_(TLSubTask& step) {
  return retrieveUnstructured(step, step.status == TLSubTask::Running);
}

int TLHostTransfer::retrieveUnstructured(TLSubTask& step, bool stillRuns) {
  print("TLSubTask::retrieveHexa_ ... IN");
  if (!hasMarked(step.spawnArguments)) return 1;
  settle(step, TLRetrieval(step, isFilled(step)).fetchUnstructured(), stillRuns);
  tell("Retrieval completed ! \n");
  return 1;
}

int TLHostTransfer::removeRemoteResults(TLSubTask& step) {
  if (step.remoteRunDir.empty()) return 1;
  const bool complete = TLRetrieval(step, isFilled(step)).fetchSculpt();
  if (complete) tell("Removing remote temporary directory " + step.remoteRunDir);
  const bool removable = step.remoteRunDir.find("tmp") != RWCString::npos;
  settle(step, complete, !removable);
  return 1;
}

void TLHostTransfer::removeRemoteDir(TLSubTask& step) {
  if (step.hostName == ownHostName() || !hasMarked(step.spawnArguments)) return;
  const TLFarSide far(step);
  // An empty name would stand for the root of the host's disk.
  if (far.directory().empty()) return;
  if (keptDirectories_.contains(placeOf(step))) return;
  tell("Removing remote temporary directory " + far.directory());
  runThere(far, far.discard());
  filledDirectories_.erase(placeOf(step));
}

TLHostTransfer& hostTransfer() {
  static TLHostTransfer instance;
  return instance;
}
