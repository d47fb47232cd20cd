#include "launching/TLComposition.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "launching/TLProgramNames.h"

namespace {

bool isUnstructuredStep(const TLLaunchDraft& draft) {
  return draft.name == "DORVEX" || draft.name == "LUMBRAKE";
}

bool isLauncher(const RWCString& executable) {
  return executable == "mpirun.exe" || executable == "mpiexec.exe";
}

void setIntelMark(TLLaunchDraft& draft) {
  if (!draft.parallel() || draft.win32) return;
  TLProcessArgument* present = findArgument(draft.arguments, "-intelmpi");
  if (draft.loadBalancing.mpiType == 1) {
    if (present == nullptr) draft.arguments.append("-intelmpi", "");
    return;
  }
  auto& entries = draft.arguments.entries();
  const auto found = std::find_if(entries.begin(), entries.end(),
                                  [&](const auto& entry) { return entry.get() == present; });
  if (present != nullptr) entries.erase(found);
}

void setParentAndDisplay(TLLaunchDraft& draft, const TLLaunchSite& site) {
  bool parentSeen = false;
  for (const auto& entry : draft.arguments.entries()) {
    if (entry->type() == "-parendId") {
      entry->setValue(site.tid);
      parentSeen = true;
    }
    if (entry->type() == "-display") draft.displayWanted = false;
  }
  draft.arguments.find("-steering", draft.steeringFile);
  draft.machinesFile = machinesFileOf(draft.steeringFile);
  const bool withoutParent = draft.executable == "sorvit" || draft.executable == "sorvit.exe" ||
                             isHybridMesher(draft.executable);
  if (!withoutParent && !parentSeen) draft.arguments.append("-parendId", site.tid);
}

void markForTransfer(TLProcessArgument& argument, const TLLaunchDraft& draft) {
  if (draft.needsTransfer) argument.setLocalFile(1);
}

RWCString firstValue(const TLProcessArguments& arguments) {
  return arguments.count() == 0 ? RWCString() : arguments.at(0)->value();
}

/// An unstructured run starts on one of its processes.
void moveToFirstProcess(TLLaunchDraft& draft) {
  const auto& names = draft.loadBalancing.processNames;
  if (std::find(names.begin(), names.end(), draft.hostName) != names.end()) return;
  draft.hostName = draft.loadBalancing.processName(0);
  if (hasMarkedFile(draft.arguments)) draft.needsTransfer = true;
}

void addProcessFile(TLLaunchDraft& draft, const TLLaunchSite& site) {
  draft.p4pgFile = withRunReplaced(firstValue(draft.arguments), ".p4pg");
  if (findArgument(draft.arguments, "-p4pg") != nullptr) return;
  if (!draft.win32) {
    draft.arguments.append("-p4pg", draft.p4pgFile);
    markForTransfer(*draft.arguments.entries().back(), draft);
  } else if (draft.use64) {
    draft.solverPath = structuredSolverPath(draft.choice(), site.binDirectory(), site.separator);
    putInFront(draft.arguments, "none", draft.solverPath);
    const auto processes = draft.loadBalancing.processNames.size();
    const auto count = processes + (isUnstructuredStep(draft) ? 0 : 1);
    putInFront(draft.arguments, "-n", std::to_string(count));
  } else {
    putInFront(draft.arguments, "none", draft.p4pgFile);
    markForTransfer(*draft.arguments.at(0), draft);
  }
}

void addParallelArguments(TLLaunchDraft& draft, const TLLaunchSite& site) {
  if (isUnstructuredStep(draft)) moveToFirstProcess(draft);
  if (draft.loadBalancing.mpiSgi664 != 0) {
    if (findArgument(draft.arguments, "-np") == nullptr) {
      draft.arguments.append("-np", std::to_string(draft.loadBalancing.processNames.size() + 1));
    }
    return;
  }
  if (!draft.queued()) addProcessFile(draft, site);
}

void addSolverArguments(TLLaunchDraft& draft, const TLLaunchSite& site) {
  if (draft.parallel()) {
    addParallelArguments(draft, site);
  } else if (draft.win32 && isUnstructuredStep(draft) &&
             findArgument(draft.arguments, "-seq") == nullptr) {
    draft.arguments.append("-seq", "");
  }
}

void replaceSolverPath(TLLaunchDraft& draft, const RWCString& path) {
  draft.solverPath = path;
  if (draft.arguments.count() > 1) draft.arguments.at(1)->setValue(path);
}

void putMachinesInFront(TLLaunchDraft& draft) {
  putInFront(draft.arguments, "-machinefile", draft.machinesFile);
  putInFront(draft.arguments, "-mapall", "none");
}

}  // namespace

TLProgramChoice TLLaunchDraft::choice() const {
  TLProgramChoice choice;
  choice.executable = executable;
  choice.win32 = win32;
  choice.use64 = use64;
  choice.parallel = parallel();
  choice.queued = queued();
  choice.mpiSgi664 = loadBalancing.mpiSgi664;
  choice.mpiType = loadBalancing.mpiType;
  choice.compilerChoice = loadBalancing.compilerChoice;
  choice.precision = precision;
  choice.unstructured = unstructured;
  choice.precisionWord = precisionWord;
  choice.generations = static_cast<std::int32_t>(loadBalancing.designGenerations.size());
  return choice;
}

RWCString withRunReplaced(const RWCString& path, const RWCString& suffix) {
  constexpr std::string_view kRun = ".run";
  RWCString result = path;
  const auto found = result.find(kRun);
  if (found != RWCString::npos) result.replace(found, kRun.size(), suffix);
  return result;
}

RWCString machinesFileOf(const RWCString& steeringFile) {
  constexpr std::string_view kSuffix = ".steering";
  if (!steeringFile.ends_with(kSuffix)) return "unknown";
  return steeringFile.substr(0, steeringFile.size() - kSuffix.size()) + ".machines";
}

void putInFront(TLProcessArguments& arguments, const RWCString& type, const RWCString& value) {
  auto& entries = arguments.entries();
  entries.insert(entries.begin(), makeHandle<TLProcessArgument>(type, value));
}

TLProcessArgument* findArgument(const TLProcessArguments& arguments, const RWCString& type) {
  for (const auto& entry : arguments.entries()) {
    if (entry->type() == type) return entry.get();
  }
  return nullptr;
}

bool hasMarkedFile(const TLProcessArguments& arguments) {
  return std::any_of(arguments.entries().begin(), arguments.entries().end(), [](const auto& entry) {
    return entry->hasLocalFile() == 1 && entry->localFile() != 0;
  });
}

void completeArguments(TLLaunchDraft& draft, const TLLaunchSite& site) {
  setIntelMark(draft);
  setParentAndDisplay(draft, site);
  if (draft.win32) {
    draft.use64 = findBin64(draft.choice(), site.binDirectory(), site.separator, site.canRead);
  }
  draft.needsTransfer = draft.hostName != site.localHostName && hasMarkedFile(draft.arguments);
  if (draft.win32) draft.executable = win32ToolProgram(draft.executable, draft.use64);
  if (isSolver(draft.executable)) addSolverArguments(draft, site);
}

RWCString runFileOf(const TLLaunchDraft& draft) {
  const bool behindLauncher = draft.parallel() && draft.win32;
  const int index = !behindLauncher ? 0 : draft.use64 ? 2 : 1;
  return index < draft.arguments.count() ? draft.arguments.at(index)->value() : RWCString();
}

void adaptToRunFile(TLLaunchDraft& draft, const TLLaunchSite& site, const TLRunFileFacts& facts) {
  draft.unstructured = facts.projectType == TLRunFileFacts::kUnstructured;
  if (draft.unstructured) {
    draft.precisionWord = facts.solverPrecision;
  } else if (facts.hasComputation) {
    draft.precision = facts.userSolverPrecision;
  }
  const RWCString bin = site.binDirectory();
  const bool isDefault = draft.solverPath == defaultSolverPath(bin, site.separator);
  if (isUnstructuredStep(draft)) {
    if (isDefault) {
      replaceSolverPath(draft, unstructuredSolverPath(draft.choice(), bin, site.separator));
    }
    if (draft.parallel() && !draft.queued()) putMachinesInFront(draft);
  } else if (isDefault && draft.precision == 1) {
    replaceSolverPath(draft, doubleSolverPath(bin, site.separator));
  }
}

void addMachineArguments(TLLaunchDraft& draft) {
  if (draft.parallel() && !draft.queued()) putMachinesInFront(draft);
}

void completeSculptArguments(TLLaunchDraft& draft, const TLLaunchSite& site) {
  auto& generations = draft.loadBalancing.designGenerations;
  if (generations.empty()) generations.emplace_back("Undefined");
  if (generations.size() < 2) return;
  RWCString runArgument;
  draft.arguments.find("-run", runArgument);
  draft.p4pgFile = withRunReplaced(runArgument, ".p4pg");
  if (findArgument(draft.arguments, "-p4pg") == nullptr) {
    if (!draft.win32) {
      draft.arguments.append("-p4pg", draft.p4pgFile);
      markForTransfer(*draft.arguments.entries().back(), draft);
    } else if (draft.use64) {
      putInFront(draft.arguments, "none", sculptPath(site.binDirectory(), site.separator));
      putInFront(draft.arguments, "-n", std::to_string(generations.size() + 1));
    } else {
      putInFront(draft.arguments, "none", draft.p4pgFile);
      markForTransfer(*draft.arguments.at(0), draft);
    }
  }
  if (findArgument(draft.arguments, "-parallel_mode") == nullptr) {
    draft.arguments.append("-parallel_mode", "");
  }
}

RWCString procDistribFile(const TLLaunchDraft& draft) {
  constexpr std::size_t kSuffix = 3;  // "run"
  RWCString path;
  draft.arguments.find("-run", path);
  return path.substr(0, path.size() < kSuffix ? 0 : path.size() - kSuffix) + "proc_distrib";
}

TLCarriage carriageOf(const TLLaunchDraft& draft, const TLLaunchSite& site,
                      const TLProcessArguments& spawnArguments) {
  const RWCString& program = draft.executable;
  const bool marked = hasMarkedFile(spawnArguments);
  if (isUnstructuredStep(draft)) return marked ? TLCarriage::unstructured : TLCarriage::none;
  if (draft.name == "Sculpt3d") return TLCarriage::sculpt;
  const bool stays = isHybridMesher(program) || isOofelie(program) || isTessaly(program) ||
                     isFileConvert(program) || isBramosh(program) || isMire(program);
  if (stays || draft.hostName.empty() || draft.hostName == site.localHostName || !marked) {
    return TLCarriage::none;
  }
  return TLCarriage::arguments;
}

void nameProgram(TLLaunchDraft& draft) {
  draft.executable = startedProgram(draft.choice());
}

bool wantsBatchFile(const TLLaunchDraft& draft) {
  static constexpr auto kPrograms = std::to_array<std::string_view>(
      {"velstraTurbo_parallel", "velstraTurbo", "velstraTurbodp_parallel", "velstraTurbodp",
       "mpirun.exe", "velstra.exe", "velstrax86_64.exe", "velstradp.exe", "velstradpx86_64.exe",
       "velstraTurbo_parallel_MPISGI664", "lumbrakesp_parallel", "lumbrakehp_parallel",
       "lumbrakedp_parallel", "lumbrakesp", "lumbrakehp", "lumbrakedp"});
  return !draft.use64 &&
         std::find(kPrograms.begin(), kPrograms.end(), draft.executable) != kPrograms.end();
}

RWCString nameBatchFile(TLLaunchDraft& draft) {
  const bool launcher = draft.win32 && draft.executable == "mpirun.exe";
  RWCString base = firstValue(draft.arguments);
  if (launcher) {
    base = draft.arguments.count() > 1 ? draft.arguments.at(1)->value() : RWCString();
    RWCString word = base;
    const auto escapedQuote = word.find("\\\"");
    if (escapedQuote != RWCString::npos) word.erase(escapedQuote, 2);
    word = "\"\\\"" + word + "\\\"\"";
    if (draft.spawnArguments.count() > 1) draft.spawnArguments.at(1)->setValue(word);
    if (draft.arguments.count() > 1) draft.arguments.at(1)->setValue(word);
  }
  draft.batchFile = withRunReplaced(base, draft.win32 ? ".bat" : ".batch");
  draft.p4pgFile = withRunReplaced(base, ".p4pg");
  return base;
}

void finishSpawnArguments(TLLaunchDraft& draft) {
  if (!draft.win32 && draft.displayWanted) {
    draft.spawnArguments.append("-display", "TL_NO_DISPLAY");
  }
  if (!draft.queued() && draft.executable == "mpirun.exe" && draft.spawnArguments.count() > 0) {
    draft.spawnArguments.at(0)->setValue(draft.p4pgFile);
  }
}

TLStartWay startWay(const TLLaunchDraft& draft) {
  if (draft.queued()) return TLStartWay::queued;
  return isLauncher(draft.executable) ? TLStartWay::mpiLauncher : TLStartWay::direct;
}

RWCString startHost(const TLLaunchDraft& draft, const TLLaunchSite& site) {
  return startWay(draft) == TLStartWay::mpiLauncher ? site.localHostName : draft.hostName;
}
