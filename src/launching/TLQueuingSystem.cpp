#include "launching/TLQueuingSystem.h"

#include "launching/TLCarryList.h"
#include "launching/TLCommands.h"
#include "launching/TLComposition.h"
#include "launching/TLJobListing.h"
#include "launching/TLJobScript.h"
#include "launching/TLLaunchLines.h"
#include "launching/TLQueueCommand.h"
#include "launching/TLQueuingKind.h"
#include "launching/TLTransfer.h"
#include "launching/TLTransferWatch.h"
#include "messaging/TLVirtualMachine.h"
#include "platform/TLConsole.h"
#include "session/TLScript.h"
#include "taskengine/TLSubTask.h"

namespace {

constexpr std::int32_t kLsf = 3;

/// One submission.
class Submission {
 public:
  Submission(TLSubTask& step, const TLQueuingKind& kind)
      : step_(step), kind_(kind), script_(jobScriptPath(number(), firstValue(step.arguments))) {}

  int run(const RWCString& precision, std::int32_t& job) {
    job = 0;
    RWCString filled;
    step_.loadBalancing.hostName = step_.hostName;
    step_.loadBalancing.remoteLogin = step_.remoteLogin;
    if (!createQueuingSystemScript(step_.loadBalancing, filled, step_.executable,
                                   firstValue(step_.spawnArguments), precision, script_)) {
      step_.noteEnd(TLStepEnd::Kind::neverStarted,
                    "the job script " + script_ + " could not be filled");
      return TLJobQueue::kNothingToSubmit;
    }
    step_.logFile = withRunReplaced(firstValue(step_.spawnArguments), ".std");
    if (isCarried() && !carry()) return TLJobQueue::kCopyFailed;
    const RWCString path = jobScriptPath(number(), firstValue(step_.spawnArguments));
    remoteExec(step_.hostName,
               submitCommand(step_.hostName, number(), path, step_.isWin32Host != 0),
               step_.remoteLogin, {});
    job = findJob();
    return 0;
  }

 private:
  std::int32_t number() const { return step_.loadBalancing.queuingSystemActivated; }

  bool isCarried() const {
    return step_.hostName != ownHostName() && hasMarkedFile(step_.spawnArguments);
  }

  bool carry() {
    const bool done = (standsThere() || carryFiles() == 0) && carryScript() == 0;
    tellScript(messageLine(done ? "file_transfered." : "_________REMOTE_COPY_FAILED"));
    return done;
  }

  /// True when the launch has carried the marked files before it came here.
  bool standsThere() const {
    for (std::int32_t i = 0; i < step_.spawnArguments.count(); ++i) {
      const auto& entry = step_.spawnArguments.at(i);
      if (entry->hasLocalFile() != 1 || entry->localFile() == 0) continue;
      return i >= step_.arguments.count() || entry->value() != step_.arguments.at(i)->value();
    }
    return false;
  }

  int carryFiles() {
    const bool unstructured = step_.name == "DORVEX" || step_.name == "LUMBRAKE";
    return unstructured ? transfer().transferHexa_(step_) : transfer().transferStep(step_);
  }

  /// The script goes beside the run file on the far side.
  int carryScript() {
    const RWCString target = jobScriptPath(number(), firstValue(step_.spawnArguments));
    if (target == script_) return 0;
    const TLFarSide far(step_);
    const std::int64_t bytes = bytesOf(script_);
    return TLTransferWatch(step_, far, "to", 1, bytes).send(script_, target, false, bytes) ? 0 : 1;
  }

  /// The number under which the queue lists the job; 0 when it doesn't.
  std::int32_t findJob() {
    const RWCString name = jobNameIn(hostForm().readFile(script_).value_or(""), number());
    RWCString command(kind_.find);
    if (number() == kLsf) command += hostForm().bare(name);
    const auto listing =
        askQueue(step_.hostName, command, step_.remoteLogin, RWCString(kind_.findStem) + name);
    const TLListedJob job = jobInListing(number(), listing.value_or(""), name);
    step_.queueState = job.state;
    if (job.number < 1) {
      console() << kind_.word << " lists no job \"" << name << "\" after the submission of "
                << script_ << "; its listing begins with: " << firstLineOf(listing.value_or(""))
                << '\n'
                << std::flush;
    }
    return job.number;
  }

  TLSubTask& step_;
  const TLQueuingKind& kind_;
  RWCString script_;
};

}  // namespace

RWCString firstValue(const TLProcessArguments& arguments) {
  return arguments.count() > 0 ? arguments.at(0)->value() : RWCString();
}

RWCString submitCommand(const RWCString& host, std::int32_t kind, const RWCString& path,
                        bool win32) {
  const TLQueuingKind* system = queuingKind(kind);
  if (system == nullptr) return {};
  return RWCString(system->submit) + wordForRemoteExec(host, path, win32);
}

int TLQueuingSystem::submit(TLSubTask& step, const RWCString& precision, std::int32_t& job) {
  const TLQueuingKind* kind = queuingKind(step.loadBalancing.queuingSystemActivated);
  if (kind == nullptr) {
    step.noteEnd(TLStepEnd::Kind::neverStarted, "no queuing system has this number");
    return kNothingToSubmit;
  }
  return Submission(step, *kind).run(precision, job);
}

void TLQueuingSystem::deleteJobs(TLSubTask& step) {
  const TLQueuingKind* kind = queuingKind(step.loadBalancing.queuingSystemActivated);
  if (kind == nullptr) return;
  for (auto child = step.children.rbegin(); child != step.children.rend(); ++child) {
    // To LSF the number 0 means all jobs of the user.
    if (*child < 1 && step.loadBalancing.queuingSystemActivated == kLsf) continue;
    const RWCString job = std::to_string(*child);
    const auto answer = askQueue(step.hostName, RWCString(kind->remove) + job, step.remoteLogin,
                                 RWCString(kind->removeStem) + job);
    console() << kind->word << " on the removal of job " << job << ": "
              << firstLineOf(answer.value_or("")) << '\n'
              << std::flush;
  }
}
