#include "launching/TLProjectCarrier.h"

#include <array>
#include <string_view>

#include "launching/TLProjectReading.h"
#include "platform/TLHostForm.h"
#include "project/TLProject.h"
#include "project/TLProjectType.h"

namespace {

constexpr std::string_view kTables = "THEFIL,L,1,1,0";
/// Ending of the file by which a project with far paths leaves this host.
constexpr std::string_view kTemporary = "tmp";

/// What a path holds when it stands for no file.
constexpr auto kNoFile =
    std::to_array<std::string_view>({"undefined", "unknown", "/usr/unknown", "\\usr\\unknown"});

/// Beside the mesh.
constexpr auto kMeshFiles = std::to_array<std::string_view>({".zyv", ".bcs", ".cgns", ".adf"});
/// Beside the run file.
constexpr auto kRunFiles = std::to_array<std::string_view>(
    {".cgns", ".cooling-holes", ".mf", ".me.qvk", ".me.bc", ".me.uni", ".wall"});

/// A file beside another one here, and its name there. With `own`, the stem of the file stands
/// before the name.
struct Companion {
  std::string_view suffix;
  std::string_view farName;
  bool own;
};
/// Of the mesh of a reference project.
constexpr auto kReferenceMesh = std::to_array<Companion>({{".zyv", "_mesh_reftmp.zyv", false},
                                                          {".cgns", "_mesh_reftmp.cgns", false},
                                                          {".adf", "_mesh_reftmp.adf", false}});
/// Of a solution from which blocks start. The first two are under fixed names, beside the run file
/// that starts from them.
constexpr auto kInitialSolution = std::to_array<Companion>({{".run", "_initmp.run", false},
                                                            {".cgns", "_initmp.cgns", false},
                                                            {"_initmp.run", "_initmp.run", true},
                                                            {"_initmp.cgns", "_initmp.cgns", true},
                                                            {".cgns", ".cgns", true},
                                                            {".res", ".res", true}});

bool namesFile(const RWCString& path) {
  if (path.empty()) return false;
  for (const auto word : kNoFile) {
    if (path == word) return false;
  }
  return true;
}

bool isThere(const RWCString& path) {
  return hostForm().canRead(path);
}

/// True for the whole path of a file, not for a text that happens to be a name.
bool isFileHere(const RWCString& text) {
  const bool whole = text.starts_with('/') || text.starts_with('\\') || text.find(':') == 1;
  return whole && isThere(text) && !hostForm().isDirectory(text);
}

RWCString nameOf(const RWCString& path) {
  return RWCString(TLFile(path).name());
}

/// Reads the project of a file with the tables that its head asks for; false when it is none.
bool readAsProject(TLProject& project, const RWCString& path) {
  const auto text = hostForm().readFile(path);
  if (!text || !TLProject::isProjectText(*text)) return false;
  project.usesSteering = false;
  return readProject(project, path, wantsUnstructuredTables(*text)) == 1;
}

}  // namespace

void TLProjectCarrier::transferProject(const RWCString& file, const RWCString& directory) {
  directory_ = directory;
  const RWCString target = directory + nameOf(file);
  const auto project = makeHandle<TLProject>();
  if (!readAsProject(*project, file)) {
    list_.copy(file, target, true);
    return;
  }
  TLSubProject* computation = project->currentComputation.get();
  if (computation != nullptr) carryReference(*computation);
  const TLFile mesh = project->gridFile;
  carryMesh(*project);
  carryGeometry(*project);
  // Without parts of the mesh there is nothing to miss.
  if (project->projectType() == TLProjectType::hexa && namesFile(mesh.path())) {
    list_.copy(mesh.withoutSuffix() + "_p*", directory_, true);
  }
  if (computation != nullptr) {
    carryTables(*computation);
    carryInitialSolutions(*computation);
    carryPatchFiles(*computation);
  }
  carryText(*project, file, target);
  const RWCString stem = TLFile(file).withoutSuffix();
  for (const auto suffix : kRunFiles) {
    const RWCString beside = stem + RWCString(suffix);
    carryIfThere(beside, directory_ + nameOf(beside), true);
  }
}

void TLProjectCarrier::carryText(const TLProject& project, const RWCString& path,
                                 const RWCString& target) {
  const RWCString temporary = path + RWCString(kTemporary);
  TLTextSink sink;
  project.write(sink);
  list_.write(temporary, sink.take(), true);
  list_.copy(temporary, target, true);
  list_.remove(temporary);
}

void TLProjectCarrier::carryIfThere(const RWCString& path, const RWCString& target, bool needed) {
  if (isThere(path)) list_.copy(path, target, needed);
}

RWCString TLProjectCarrier::farPath(const RWCString& path) {
  RWCString name = nameOf(path);
  for (int number = 2; !farNames_.insert(name).second; ++number) {
    name = std::to_string(number) + "_" + nameOf(path);
  }
  return directory_ + name;
}

void TLProjectCarrier::carryReference(TLSubProject& computation) {
  const RWCString path = computation.referenceRunFile.path();
  if (!namesFile(path)) return;
  const RWCString target = directory_ + "_reftmp.run";
  computation.referenceRunFile = TLFile::onOtherHost(target);
  const auto reference = makeHandle<TLProject>();
  const bool isProject = readAsProject(*reference, path);
  const TLFile mesh = reference->gridFile;
  if (isProject) {
    if (namesFile(mesh.path())) {
      reference->gridFile = TLFile::onOtherHost(directory_ + "_mesh_reftmp." + mesh.suffix());
    }
    carryText(*reference, path, target);
  } else {
    list_.copy(path, target, true);
  }
  carryIfThere(TLFile(path).withoutSuffix() + ".cgns", directory_ + "_reftmp.cgns", true);
  if (!isProject || !namesFile(mesh.path())) return;
  for (const auto& file : kReferenceMesh) {
    carryIfThere(mesh.withoutSuffix() + RWCString(file.suffix),
                 directory_ + RWCString(file.farName), true);
  }
}

void TLProjectCarrier::carryMesh(TLProject& project) {
  const RWCString path = project.gridFile.path();
  if (!namesFile(path)) return;
  const RWCString stem = project.gridFile.withoutSuffix();
  for (const auto suffix : kMeshFiles) {
    const RWCString beside = stem + RWCString(suffix);
    carryIfThere(beside, directory_ + nameOf(beside), true);
  }
  project.gridFile = TLFile::onOtherHost(directory_ + nameOf(path));
}

void TLProjectCarrier::carryGeometry(TLProject& project) {
  for (TLFile* file : {&project.trbFile, &project.geometryFile}) {
    const RWCString path = file->path();
    if (!namesFile(path)) continue;
    carryIfThere(path, directory_ + nameOf(path), false);
    *file = TLFile::onOtherHost(directory_ + nameOf(path));
  }
}

void TLProjectCarrier::carryTables(TLSubProject& computation) {
  if (!computation.parameters) return;
  const RWCString path = computation.parameters->text(kTables);
  if (!namesFile(path)) return;
  if (hostForm().isDirectory(path)) {
    list_.tree(path, directory_, true);
  } else {
    carryIfThere(path, directory_ + nameOf(path), true);
  }
  computation.parameters->setText(kTables, directory_ + nameOf(path));
}

void TLProjectCarrier::carryInitialSolutions(TLSubProject& computation) {
  std::map<RWCString, std::size_t> numbers;
  for (const auto& solution : computation.initialSolutions) {
    const RWCString path = solution->path();
    if (!namesFile(path)) continue;
    const TLFile file(path);
    // A second solution can't have the name of the first.
    const auto [known, isNew] = numbers.try_emplace(path, numbers.size() + 1);
    const RWCString number = known->second == 1 ? RWCString() : std::to_string(known->second);
    const bool isRun = file.suffix() == "run";
    solution->setPath(directory_ + (isRun ? number + "_initmp.run" : nameOf(path)));
    if (!isNew) continue;
    const RWCString stem = file.withoutSuffix();
    for (const auto& companion : kInitialSolution) {
      const RWCString name = companion.own ? nameOf(stem) : number;
      carryIfThere(stem + RWCString(companion.suffix),
                   directory_ + name + RWCString(companion.farName), true);
    }
  }
}

void TLProjectCarrier::carryPatchFiles(TLSubProject& computation) {
  const auto carryPath = [this](RWCString& path) {
    if (!namesFile(path) || path.find_first_of("/\\") == RWCString::npos) return;
    auto& far = patchFiles_[path];
    if (far.empty()) {
      far = farPath(path);
      carryIfThere(path, far, true);
    }
    path = far;
  };
  std::set<const TLBCParameters*> seen;
  for (const auto& block : computation.grid->blocks) {
    for (const auto& face : block->faces) {
      for (const auto& patch : face->conditions) {
        TLBCParameters* parameters = patch->parameters.get();
        if (parameters == nullptr || !seen.insert(parameters).second) continue;
        for (const auto* entries : {&parameters->physicalEntries, &parameters->chemicalEntries}) {
          for (const auto& entry : *entries) {
            if (!entry->isConstant()) carryPath(entry->externalProfile);
          }
        }
        for (const auto& entry : parameters->stringEntries) {
          if (isFileHere(entry->value)) carryPath(entry->value);
        }
      }
    }
  }
}
