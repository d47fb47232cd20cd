#include "launching/TLMarineComposition.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "launching/TLComposition.h"
#include "launching/TLPathText.h"
#include "textio/TLNumbers.h"

namespace {

RWCString upToLast(const RWCString& path, char separator) {
  const auto last = path.rfind(separator);
  return last == RWCString::npos ? RWCString() : path.substr(0, last + 1);
}

RWCString firstValue(const TLProcessArguments& arguments) {
  return arguments.count() == 0 ? RWCString() : arguments.at(0)->value();
}

RWCString withoutSuffix(const RWCString& text, std::string_view suffix) {
  if (text.size() < suffix.size()) return text;
  const auto stem = text.size() - suffix.size();
  const bool there = equalIgnoringCase(std::string_view(text).substr(stem), suffix);
  return there ? text.substr(0, stem) : text;
}

// ---- mapping of paths --------------------------------------------------------------------------

constexpr std::string_view kSimulation = "-sim=";
constexpr std::string_view kProject = "-p=";

struct Mapped {
  RWCString run;
  RWCString directory;
  RWCString machines;
};

TLProcessArgument* positional(const TLProcessArguments& arguments, std::string_view start) {
  for (const auto& entry : arguments.entries()) {
    if (entry->type() == "none" && entry->value().starts_with(start)) return entry.get();
  }
  return nullptr;
}

void setPositional(TLProcessArguments& arguments, std::string_view start, const RWCString& path) {
  TLProcessArgument* argument = positional(arguments, start);
  if (argument != nullptr) argument->setValue(RWCString(start) + path);
}

void mapSimulation(TLProcessArguments& arguments, const Mapped& mapped) {
  setPositional(arguments, kSimulation, mapped.run);
}

void mapProject(TLProcessArguments& arguments, const Mapped& mapped) {
  setPositional(arguments, kProject, mapped.directory);
}

void mapSolver(TLProcessArguments& arguments, const Mapped& mapped) {
  for (const auto& entry : arguments.entries()) {
    if (entry->isOption()) continue;
    entry->setValue(mapped.run);
    break;
  }
  TLProcessArgument* machines = findArgument(arguments, "-machinefile");
  if (machines != nullptr) machines->setValue(mapped.machines);
}

/// What is mapped in the words of each kind of step. The kinds are those of the tools, not of the
/// task file: "3DTO2D" is in capitals here.
struct MappingRow {
  std::string_view name;
  void (*map)(TLProcessArguments&, const Mapped&);
};

constexpr auto kMappings = std::to_array<MappingRow>({
    {"3DTO2D", &mapSimulation},
    {"PREMETIS", &mapSimulation},
    {"CHECKSTATUS", &mapSimulation},
    {"BRAMOSH2QUOREL", &mapProject},
    {"QUOREL2SORVIT", &mapProject},
    {"QUOREL_CFD", &mapSolver},
});

// ---- logs
// ----------------------------------------------------------------------------------------

struct LogRow {
  std::string_view name;
  std::string_view log;
};

/// Logs in the directory of the computation.
constexpr auto kLogs = std::to_array<LogRow>({
    {"PREMETIS", "premetis.log"},
    {"BRAMOSH2QUOREL", "bramosh2quorel.log"},
    {"3dto2d", "3dto2d.log"},
    {"QUOREL2SORVIT", "quorel2sorvit.log"},
});

}  // namespace

bool isIdlePartition(const RWCString& name, const TLProcessArguments& arguments) {
  return name == "PREMETIS" &&
         std::any_of(arguments.entries().begin(), arguments.entries().end(),
                     [](const auto& entry) { return entry->value() == "-npar=1"; });
}

void completeMarineArguments(TLLaunchDraft& draft, const TLLaunchSite& site) {
  bool parentSeen = false;
  for (const auto& entry : draft.arguments.entries()) {
    if (entry->type() == "-parendId") {
      entry->setValue(site.tid);
      parentSeen = true;
    }
    if (entry->type() == "-display") draft.displayWanted = false;
  }
  const bool withoutParent = draft.executable == "sorvit" || draft.executable == "sorvit.exe";
  if (!withoutParent && !parentSeen) draft.arguments.append("-parendId", site.tid);
}

bool isMarineSolver(const RWCString& executable) {
  return executable == "quorelcfd" || executable == "quorelcfd.exe";
}

void settleMarineProcesses(TLLaunchDraft& draft) {
  auto& entries = draft.arguments.entries();
  for (auto entry = entries.begin(); entry != entries.end(); ++entry) {
    if ((*entry)->type() != "-np") continue;
    const std::int32_t count = integerFrom((*entry)->value());
    draft.loadBalancing.parallel = count < 2 ? 0 : 1;
    if (count == 1) {
      entries.erase(entry);
      return;
    }
  }
}

void nameParallelMarineProgram(TLLaunchDraft& draft, const TLLaunchSite& site) {
  if (!isMarineSolver(draft.executable) || !draft.parallel() || draft.queued()) return;
  draft.executable = marineProgram(draft.executable, draft.win32, true);
  if (draft.win32) return;
  draft.arguments.append("-machinefile",
                         upToLast(firstValue(draft.arguments), site.separator) + "machines.txt");
}

bool finishMarineArguments(TLLaunchDraft& draft, const TLComputationPlace& place,
                           TLMappingStrategy& mapping) {
  draft.spawnArguments.assign(draft.arguments);
  if (!draft.win32 && draft.displayWanted) {
    draft.spawnArguments.append("-display", "TL_NO_DISPLAY");
  }
  bool changed = false;
  const bool known =
      mapMarineArguments(draft.name, draft.hostName, place, mapping, draft.spawnArguments, changed);
  const bool solver = draft.name == "QUOREL_CFD";
  if (changed) draft.spawnArguments.append(solver ? "-local" : "-relative", "");
  draft.executable = marineProgram(draft.executable, draft.win32, false);
  if (solver && draft.loadBalancing.mpiType == 1) draft.spawnArguments.append("-intelmpi", "");
  return known;
}

bool mapMarineArguments(const RWCString& name, const RWCString& hostName,
                        const TLComputationPlace& place, TLMappingStrategy& mapping,
                        TLProcessArguments& spawnArguments, bool& changed) {
  RWCString there;
  mapping.mapPath(place.directory, hostName, there);
  changed = there != place.directory;
  Mapped mapped{there + place.fileName, there, there + "machines.txt"};
  for (const char* end : {"/", "\\"}) mapped.directory = withoutSuffix(mapped.directory, end);
  if (name == "POSTMETIS") {
    TLProcessArgument* argument = positional(spawnArguments, kSimulation);
    if (argument == nullptr) return true;
    RWCString path;
    mapping.mapPath(argument->value().substr(kSimulation.size()), hostName, path);
    argument->setValue(RWCString(kSimulation) + path);
    return true;
  }
  const auto row = std::find_if(kMappings.begin(), kMappings.end(),
                                [&](const auto& mappingRow) { return mappingRow.name == name; });
  if (row == kMappings.end()) return false;
  row->map(spawnArguments, mapped);
  return true;
}

RWCString marineLogFile(const TLLaunchDraft& draft, const TLComputationPlace& place,
                        char separator) {
  if (draft.name == "QUOREL_CFD") {
    return place.directory + withoutSuffix(place.fileName, ".sim") + ".std";
  }
  if (draft.name == "POSTMETIS") {
    const RWCString first = firstValue(draft.arguments);
    const RWCString path = first.substr(std::min(kSimulation.size(), first.size()));
    return doubleBackslashes(upToLast(path, separator) + "postmetis.log");
  }
  for (const auto& row : kLogs) {
    if (row.name == draft.name) return place.directory + RWCString(row.log);
  }
  return {};
}
