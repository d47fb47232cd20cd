#include "launching/TLRunFileLaunch.h"

#include "launching/TLComposition.h"
#include "launching/TLLaunchLines.h"
#include "launching/TLPathText.h"
#include "launching/TLRunFile.h"
#include "platform/TLHostForm.h"
#include "taskengine/TLSubTask.h"

namespace {

/// Keeps what stands in an unreadable run file. False when there is something that could not be
/// kept: the file must then stay as it is.
bool keepUnreadable(const RWCString& path) {
  TLHostForm& form = hostForm();
  const auto bytes = form.readFile(path);
  if (!bytes || bytes->empty()) return true;
  RWCString kept = path + ".unreadable";
  for (int number = 2; form.canRead(kept) && form.readFile(kept) != bytes; ++number) {
    kept = path + ".unreadable" + std::to_string(number);
  }
  const bool done = form.replaceFile(kept, *bytes) == 0;
  const RWCString phrase =
      done ? "The run file could not be read. What it held is kept as " + kept
           : "The run file could not be read, and stays as it is: cannot write " + kept;
  tellScript(messageLine('"' + scriptQuoted(doubleBackslashes(phrase)) + '"'));
  return done;
}

void distribute(TLRunFile& file, TLSubTask& step) {
  TLLoadBalancing& balancing = step.loadBalancing;
  const auto distribution =
      distributionOf(balancing, step.virtualPartition.nbTasks(), file.blockCount());
  file.setTaskCount(distribution.taskCount);
  file.setCommunication(distribution.communication);
  if (distribution.balance) file.balance(balancing);
  if (!distribution.processes) return;
  file.setProcesses([&](std::int32_t block) { return balancing.processOfBlock(block) + 1; });
}

}  // namespace

TLRunFileDistribution distributionOf(const TLLoadBalancing& loadBalancing, std::int32_t parts,
                                     std::int32_t blocks) {
  TLRunFileDistribution result;
  if (loadBalancing.queuingSystemActivated != 0) {
    result.taskCount = loadBalancing.nbQueuingSystemProcessor;
    const bool several = result.taskCount > 1;
    result.communication = several ? 2 : 0;
    result.processes = several && loadBalancing.parallel == 1;
    result.balance = result.processes && loadBalancing.automaticLoadBalancing == 1;
    return result;
  }
  const bool parallel = loadBalancing.parallel != 0;
  result.communication = parallel ? 2 : 0;
  result.taskCount = loadBalancing.parallel == 2
                         ? parts
                         : static_cast<std::int32_t>(loadBalancing.processNames.size());
  result.processes = parallel && blocks != 0;
  return result;
}

void launchWithRunFile(TLSubTask& step, TLLaunchDraft& draft, const TLLaunchSite& site) {
  const RWCString path = runFileOf(draft);
  const bool unstructured = draft.name == "DORVEX" || draft.name == "LUMBRAKE";
  const auto file = makeRunFile();
  const TLRunFileFacts facts = file->read(path, unstructured);
  bool mayWrite = true;
  if (facts.good) {
    adaptToRunFile(draft, site, facts);
    if (draft.unstructured) return;
  } else {
    tellScript(messageLine("CANNOT_OPEN_RUN_FILE"));
    mayWrite = keepUnreadable(path);
  }
  if (mayWrite) file->write();
  distribute(*file, step);
  if (mayWrite) file->write();
  addMachineArguments(draft);
  if (draft.parallel()) file->setMemory(step.integerSize, step.realSize);
  file->storeSteering(step.steering);
  if (mayWrite) file->write();
}
