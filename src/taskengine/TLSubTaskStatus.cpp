#include <ctime>
#include <optional>

#include "launching/TLProgramNames.h"
#include "messaging/TLVirtualMachine.h"
#include "platform/TLConsole.h"
#include "taskengine/TLJobQuery.h"
#include "taskengine/TLMarineStatus.h"
#include "taskengine/TLStatusFile.h"
#include "taskengine/TLSubTask.h"

namespace {

constexpr std::int64_t kFreshSeconds = 10;

bool isFresh(const TLMarineStatus& entry) {
  const RWCString date = readStatusEntry(entry.block, "DATE", entry.path, false);
  return parseStatusDate(date) > std::time(nullptr) - kFreshSeconds;
}

}  // namespace

bool TLSubTask::isRunning() {
  if (child(0) < 1) return false;
  if (isQueued()) return isJobRunning();
  if (isTerminal()) return false;
  if (const auto answer = askStatusFile()) return *answer;
  // A parallel run has its launcher as first child.
  const bool behindLauncher =
      children.size() > 1 && (!isSculpt(executable) || loadBalancing.parallel != 0);
  return isProcessAlive(child(behindLauncher ? 1 : 0));
}

bool TLSubTask::isJobRunning() {
  const TLJobAnswer answer =
      queryJob(loadBalancing.queuingSystemActivated, child(0), hostName, remoteLogin);
  if (answer.odd && answer.said != queueAnswer_) {
    console() << "the queuing system on job " << child(0) << ": " << answer.said << '\n'
              << std::flush;
  }
  queueAnswer_ = answer.said;
  if (!answer.word.empty()) queueState = answer.word;
  switch (answer.state) {
    case TLJobState::running:
      status = Running;
      break;
    case TLJobState::finished:
      status = FinishedOk;
      noteEnd(answer.word == "EXIT" ? TLStepEnd::Kind::jobFailed : TLStepEnd::Kind::leftQueue,
              answer.said);
      break;
    case TLJobState::unknown:
      break;
  }
  return status == Running;
}

std::optional<bool> TLSubTask::askStatusFile() {
  if (isMarineStep(name) && !isSculpt(executable)) return askMarineStatus();
  if (name == "PROBES2QVK") return askProbesStatus();
  return std::nullopt;
}

std::optional<bool> TLSubTask::askMarineStatus() {
  if (name == "CHECKSTATUS") {
    status = FinishedOk;
    noteEnd(TLStepEnd::Kind::allWell);
    return false;
  }
  const auto entry = marineStatusOf(*this);
  if (!entry) return std::nullopt;
  const RWCString word = readStatusEntry(entry->block, "STATUS", entry->path, true);
  if (word == "running") {
    status = Running;
    return true;
  }
  if (word == "pending" || !isFresh(*entry) || word == "mismatch") return std::nullopt;
  status = word == "finished" ? FinishedOk : FinishedKo;
  noteEnd(status == FinishedOk ? TLStepEnd::Kind::allWell : TLStepEnd::Kind::statusFile,
          "its status file, beside " + entry->path + ", says \"" + word + "\"");
  return false;
}

std::optional<bool> TLSubTask::askProbesStatus() {
  RWCString log;
  if (arguments.find("-log", log) == 0) return std::nullopt;
  const RWCString word = readStatusEntry("probes2sorvit", "STATUS", log, true);
  if (word == "running") return true;
  status = word == "finished" ? FinishedOk : FinishedKo;
  if (status != FinishedOk) return std::nullopt;
  noteEnd(TLStepEnd::Kind::allWell);
  return false;
}

bool TLSubTask::isProcessAlive(std::int32_t tid) {
  const std::int32_t answer = TL_virtual_machine_status(tid);
  if (answer == kVirtualMachineOk) {
    status = Running;
    return true;
  }
  if (status == Pending) return false;
  if (answer == kVirtualMachineNoTask) {
    status = FinishedOk;
  } else {
    status = FinishedKo;
    const bool noMachine = answer == kVirtualMachineNoAnswer;
    noteEnd(noMachine ? TLStepEnd::Kind::machineLost : TLStepEnd::Kind::lostSight,
            "code " + std::to_string(answer));
  }
  return false;
}

TLSilentHost TLSubTask::silentHost() const {
  if (status == Pending) return launchObstacle;
  if (status != Running || isQueued()) return {};
  for (const std::int32_t tid : children) {
    if (const TLSilentHost host = TL_virtual_machine_silence(tid)) return host;
  }
  return {};
}
