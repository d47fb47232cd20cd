#include "launching/TLLaunchPlan.h"

#include <algorithm>

#include "launching/TLCarryList.h"
#include "launching/TLCommands.h"
#include "launching/TLComposition.h"
#include "launching/TLJobScript.h"
#include "launching/TLLaunchLines.h"
#include "launching/TLLaunching.h"
#include "launching/TLProgramNames.h"
#include "launching/TLQueuingKind.h"
#include "launching/TLQueuingSystem.h"
#include "launching/TLRunFile.h"
#include "launching/TLRunFileLaunch.h"
#include "launching/TLStartFiles.h"
#include "launching/TLTransferPlanner.h"
#include "messaging/TLVirtualMachine.h"
#include "platform/TLHostForm.h"
#include "taskengine/TLTask.h"

namespace {

constexpr std::int32_t kFindsByName = 3;  // LSF

/// Maps as another strategy does, and notes what has another name there.
class NotingMapping : public TLMappingStrategy {
 public:
  NotingMapping(TLMappingStrategy& mapping, std::vector<TLMappedPath>& mapped)
      : mapping_(mapping), mapped_(mapped) {}

  bool mapPath(const RWCString& path, const RWCString& hostName, RWCString& result) override {
    const bool found = mapping_.mapPath(path, hostName, result);
    const auto known = [&](const TLMappedPath& entry) { return entry.here == path; };
    if (result != path && std::none_of(mapped_.begin(), mapped_.end(), known)) {
      mapped_.push_back({path, result});
    }
    return found;
  }

 private:
  TLMappingStrategy& mapping_;
  std::vector<TLMappedPath>& mapped_;
};

/// The plan of one step, by the stages of its launch.
class Planner {
 public:
  Planner(const TLSubTask& step, const TLHostKindTest& isWin32, const TLLaunchSite& site,
          const TLRunFileReader& readRunFile)
      : step_(step),
        isWin32_(isWin32),
        site_(site),
        readRunFile_(readRunFile),
        draft_(draftOf(step)) {
    draft_.win32 = isWin32_(draft_.hostName);
    plan_.win32 = draft_.win32;
  }

  TLLaunchPlan ordinary() {
    completeArguments(draft_, site_);
    if (isSolver(draft_.executable)) planRunFile();
    if (isSculpt(draft_.executable)) {
      const RWCString file = procDistribFile(draft_);
      completeSculptArguments(draft_, site_);
      plan_.written.push_back({file, procDistribText(draft_.loadBalancing)});
    }
    draft_.spawnArguments.assign(draft_.arguments);
    planCarriage();
    nameProgram(draft_);
    planLines();
    if (wantsBatchFile(draft_)) {
      nameBatchFile(draft_);
      plan_.written.push_back(
          {draft_.batchFile, batchFileText(draft_, site_.suiteDirectory, site_.separator)});
    }
    finishSpawnArguments(draft_);
    if (startWay(draft_) == TLStartWay::queued) planJob();
    return finished(startWay(draft_), startHost(draft_, site_));
  }

  TLLaunchPlan marine(const TLComputationPlace& place, TLMappingStrategy& mapping) {
    if (isIdlePartition(draft_.name, draft_.arguments)) {
      plan_.notes.emplace_back("one part needs no partition: finished without a process");
      return plan_;
    }
    completeMarineArguments(draft_, site_);
    if (isMarineSolver(draft_.executable)) settleMarineProcesses(draft_);
    nameParallelMarineProgram(draft_, site_);
    NotingMapping noting(mapping, plan_.mapped);
    finishMarineArguments(draft_, place, noting);
    planLines();
    if (!draft_.win32 && draft_.name == "QUOREL_CFD") {
      plan_.written.push_back({place.directory + "machines.txt", {}});
    }
    if (draft_.queued()) {
      plan_.notes.emplace_back("a queuing system is set: no process is started");
      return finished(TLStartWay::none, draft_.hostName);
    }
    return finished(TLStartWay::direct, draft_.hostName);
  }

  TLLaunchPlan probes() {
    draft_.spawnArguments.assign(draft_.arguments);
    return finished(TLStartWay::localTool, site_.localHostName);
  }

 private:
  void planRunFile() {
    plan_.runFile = runFileOf(draft_);
    const bool tables = draft_.name == "DORVEX" || draft_.name == "LUMBRAKE";
    std::int32_t blocks = 0;
    const TLRunFileFacts facts = readRunFile_(plan_.runFile, tables, blocks);
    if (facts.good) {
      adaptToRunFile(draft_, site_, facts);
      if (draft_.unstructured) return;
    } else {
      plan_.notes.push_back(
          site_.canRead(plan_.runFile)
              ? "the run file can't be read: it would be kept as " + plan_.runFile +
                    ".unreadable, and replaced by an empty project"
              : RWCString(
                    "the run file isn't there yet: the words are those for an empty project"));
    }
    plan_.written.push_back({plan_.runFile, {}});
    addMachineArguments(draft_);
    const auto distribution =
        distributionOf(draft_.loadBalancing, step_.virtualPartition.nbTasks(), blocks);
    if (distribution.balance) plan_.notes.emplace_back("the blocks are balanced at the start");
    for (std::int32_t block = 0; distribution.processes && block < blocks; ++block) {
      plan_.blockProcess.push_back(draft_.loadBalancing.processOfBlock(block) + 1);
    }
  }

  void planCarriage() {
    const TLCarriage way = carriageOf(draft_, site_, draft_.spawnArguments);
    const bool here = draft_.hostName == site_.localHostName;
    if (way == TLCarriage::none || !hasMarkedFile(draft_.spawnArguments)) return;
    if (way == TLCarriage::sculpt && here) return;
    for (const auto& entry : draft_.spawnArguments.entries()) {
      if (isMarked(*entry)) plan_.carried.push_back(entry->value());
    }
    draft_.win32 = isWin32_(draft_.hostName);  // as the transfer asks again
    const TLFarSide far(draft_.hostName, draft_.remoteLogin, draft_.win32,
                        TLFarSide::directoryName(step_.remoteTmpDir, draft_.win32, kPlannedNumber));
    take(way == TLCarriage::unstructured ? carriedUnstructured(far, draft_.spawnArguments)
         : way == TLCarriage::sculpt     ? carriedSculpt(far, draft_.spawnArguments)
                                         : carriedArguments(far, draft_.spawnArguments));
    plan_.notes.push_back(RWCString(kPlannedNumber) + " in the directory on " + far.host() +
                          " stands for the number that the start draws");
    if (way == TLCarriage::arguments && far.login().empty()) {
      plan_.notes.emplace_back(
          "no login is told: nothing is copied, and the files must stand in that directory");
    }
  }

  void take(const TLCarryList& list) {
    for (const auto& action : list.actions()) {
      switch (action.kind) {
        case TLCarryAction::Kind::directory:
        case TLCarryAction::Kind::command:
          plan_.actions.push_back({TLPlannedAction::Kind::command, {}, action.text, 0});
          break;
        case TLCarryAction::Kind::copy:
        case TLCarryAction::Kind::tree:
          plan_.actions.push_back({action.kind == TLCarryAction::Kind::tree
                                       ? TLPlannedAction::Kind::tree
                                       : TLPlannedAction::Kind::copy,
                                   action.source, action.target, action.bytes});
          break;
        case TLCarryAction::Kind::message:
          plan_.scriptLines.push_back(action.text);
          break;
        case TLCarryAction::Kind::value:
          draft_.spawnArguments.at(action.entry)->setValue(action.text);
          break;
        default:
          break;  // files that are there for the transfer only, and what is printed
      }
    }
  }

  void planJob() {
    const std::int32_t kind = draft_.loadBalancing.queuingSystemActivated;
    const RWCString runFile = firstValue(draft_.spawnArguments);
    plan_.submission =
        submitCommand(draft_.hostName, kind, jobScriptPath(kind, runFile), draft_.win32);
    if (plan_.submission.empty()) {
      plan_.notes.push_back("no queuing system has the number " + std::to_string(kind) +
                            ": the step would fail to start");
      return;
    }
    plan_.jobScript.path = jobScriptPath(kind, firstValue(draft_.arguments));
    planQueueCommands(kind, jobScriptPath(kind, runFile));
    const auto text = hostForm().readFile(plan_.jobScript.path);
    if (!text) {
      plan_.notes.push_back(missingTemplateText(plan_.jobScript.path));
      return;
    }
    const TLJobScriptValues values{kind,
                                   draft_.hostName,
                                   runFile,
                                   jobPrecision(draft_),
                                   draft_.loadBalancing.queuingSystemQueue,
                                   draft_.loadBalancing.nbQueuingSystemProcessor,
                                   draft_.executable,
                                   "NNN",
                                   readsWin32Words(draft_.hostName, draft_.win32)};
    const RWCString fault = jobScriptFault(values);
    if (!fault.empty()) {
      plan_.notes.push_back(fault + ": the step would fail to start");
      return;
    }
    plan_.jobScript.text = filledJobScript(*text, values);
    plan_.written.push_back(plan_.jobScript);
    plan_.notes.emplace_back("NNN in the job script stands for the number that the start draws");
  }

  /// Where the job is on another host: the queue is asked for its jobs before and after.
  void planQueueCommands(std::int32_t kind, const RWCString& script) {
    if (draft_.hostName == site_.localHostName) return;
    using Kind = TLPlannedAction::Kind;
    plan_.actions.push_back({Kind::command, {}, RWCString(queuingKind(kind)->list), 0});
    if (script != plan_.jobScript.path) {
      plan_.actions.push_back(
          {Kind::copy, plan_.jobScript.path, script, bytesOf(plan_.jobScript.path)});
    }
    plan_.actions.push_back({Kind::command, {}, plan_.submission, 0});
    RWCString find(queuingKind(kind)->find);
    if (kind == kFindsByName) find += RWCString("comp") + kPlannedNumber;
    plan_.actions.push_back({Kind::command, {}, find, 0});
  }

  void planLines() {
    plan_.scriptLines.push_back(
        spawnLine(draft_.executable, draft_.hostName, draft_.win32, draft_.remoteLogin));
    for (const auto& line : argumentLines(draft_.spawnArguments)) plan_.scriptLines.push_back(line);
  }

  TLLaunchPlan finished(TLStartWay way, const RWCString& host) {
    plan_.way = way;
    plan_.farHost =
        TLFarSide(draft_.hostName, draft_.remoteLogin, draft_.win32, RWCString()).spec();
    plan_.host = host;
    plan_.win32 = draft_.win32;
    plan_.program = draft_.executable;
    plan_.words = commandWords(draft_.spawnArguments);
    return plan_;
  }

  const TLSubTask& step_;
  const TLHostKindTest& isWin32_;
  const TLLaunchSite& site_;
  const TLRunFileReader& readRunFile_;
  TLLaunchDraft draft_;
  TLLaunchPlan plan_;
};

TLComputationPlace placeOf(const TLSubTask& step) {
  const Handle<TLTask> task = step.parentTask();
  if (!task) return {};
  return {task->localComputationPath, task->computationFileName};
}

}  // namespace

const char* startWayWord(TLStartWay way) {
  switch (way) {
    case TLStartWay::direct:
      return "pvm";
    case TLStartWay::mpiLauncher:
      return "mpi launcher";
    case TLStartWay::queued:
      return "queue";
    case TLStartWay::localTool:
      return "local tool";
    case TLStartWay::none:
      break;
  }
  return "none";
}

TLLaunchPlan planLaunch(const TLSubTask& step, const TLHostKindTest& isWin32,
                        const TLLaunchSite& site, const TLRunFileReader& readRunFile,
                        TLMappingStrategy& mapping) {
  if (step.enabled == 0) {
    TLLaunchPlan plan;
    plan.notes.emplace_back("disabled: finished without a process");
    return plan;
  }
  Planner planner(step, isWin32, site, readRunFile);
  if (isMarineStep(step.name)) return planner.marine(placeOf(step), mapping);
  if (step.name == "PROBES2QVK") return planner.probes();
  return planner.ordinary();
}

TLRunFileFacts readRunFileFacts(const RWCString& path, bool unstructuredTables,
                                std::int32_t& blocks) {
  const auto file = makeRunFile();
  TLRunFileFacts facts = file->read(path, unstructuredTables);
  blocks = file->blockCount();
  return facts;
}
