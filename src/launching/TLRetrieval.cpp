#include "launching/TLRetrieval.h"

#include <array>
#include <string_view>

#include "launching/TLCommands.h"
#include "launching/TLKeptRunFile.h"
#include "launching/TLLaunchLines.h"
#include "launching/TLPathText.h"
#include "launching/TLProjectReading.h"
#include "launching/TLTransferPlanner.h"
#include "platform/TLConsole.h"
#include "platform/TLHostForm.h"
#include "project/TLProject.h"
#include "session/TLScript.h"
#include "taskengine/TLSubTask.h"

namespace {

constexpr std::string_view kWallFiles = "IMUWAL,I,1,1,0";
constexpr std::size_t kSuffix = 4;  // ".run"

/// Forms of the mesh in which a solver may have changed it.
constexpr auto kMeshForms = std::to_array<std::string_view>({".adf", ".cgns"});

RWCString nameOf(const RWCString& path) {
  return RWCString(TLFile(path).name());
}

/// A directory as a copy takes it.
RWCString directoryOf(const RWCString& path) {
  const RWCString directory = TLFile(path).directory();
  return directory.empty() ? RWCString(".") : directory;
}

/// The value that an argument had before it was rewritten; empty for one that was not there.
RWCString localValue(const TLSubTask& step, std::int32_t entry) {
  return entry < step.arguments.count() ? step.arguments.at(entry)->value() : RWCString();
}

bool hasWallFiles(const TLProject& project) {
  const TLSubProject* computation = project.currentComputation.get();
  if (computation == nullptr || !computation->parameters) return false;
  const auto values = computation->parameters->integers(kWallFiles);
  return !values.empty() && values.front() == 1;
}

}  // namespace

TLRetrieval::TLRetrieval(TLSubTask& step, bool expected)
    : step_(step), far_(step), watch_(step, far_, "from", 0, 0), expected_(expected) {}

// ---- any step ------------------------------------------------------------------------------

bool TLRetrieval::fetchArguments() {
  for (std::int32_t i = 0; i < step_.spawnArguments.count(); ++i) {
    const RWCString local = localValue(step_, i);
    if (!isMarked(*step_.spawnArguments.at(i)) || local.empty()) continue;
    const RWCString file = far_.path(nameOf(local));
    clearBackup(local + "tmp");
    const RWCString phrase = "Retrieving files " + far_.spec() + ":" + file;
    evalScript(messageLine('"' + scriptQuoted(doubleBackslashes(phrase)) + '"'));
    retrieveProject(file, local);
  }
  return !watch_.failed();
}

/// A file that an earlier retrieval left may not be taken for the copy of this one.
void TLRetrieval::clearBackup(const RWCString& path) {
  TLHostForm& form = hostForm();
  if (!form.canRead(path) || form.isDirectory(path)) return;
  const auto text = form.readFile(path);
  if (text && TLProject::isProjectText(*text)) return;
  removeLocal(path);
}

int TLRetrieval::retrieveProject(const RWCString& file, const RWCString& local) {
  const RWCString stem = file.substr(0, file.size() < kSuffix ? 0 : file.size() - kSuffix);
  if (TLFile(local).suffix() != "run") {
    fetchBehind(stem, local, false, false);
    return 0;
  }
  const auto project = makeHandle<TLProject>();
  project->usesSteering = false;
  bool walls = false;
  const auto text = hostForm().readFile(local);
  if (text && readProject(*project, local, wantsUnstructuredTables(*text)) == 1) {
    fetchMesh(project->gridFile.withoutSuffix());
    walls = hasWallFiles(*project);
  }
  TLKeptRunFile kept(local);
  if (!kept.safe()) {
    watch_.complain("Retrieval of " + far_.spec() + ":" + stem + ".* to " + directoryOf(local) +
                    " was not tried: the run file " + local + " could not be saved as " + local +
                    "tmp before");
    return 0;
  }
  fetchBehind(stem, local, expected_, walls);
  const RWCString trouble = kept.restore();
  if (!trouble.empty()) watch_.complain(trouble);
  return 0;
}

void TLRetrieval::fetchMesh(const RWCString& mesh) {
  for (const auto form : kMeshForms) {
    const RWCString local = mesh + RWCString(form);
    if (hostForm().canRead(local)) watch_.fetch(far_.path(nameOf(local)), local, false);
  }
}

void TLRetrieval::fetchBehind(const RWCString& stem, const RWCString& local, bool expected,
                              bool walls) {
  const RWCString directory = directoryOf(local);
  watch_.fetch(stem + ".*", directory, false, expected);
  const RWCString parts =
      local.substr(0, local.size() < kSuffix ? 0 : local.size() - kSuffix) + "_p0.ahex";
  if (hostForm().canRead(parts)) watch_.fetch(stem + "_p*", directory, false);
  watch_.fetch(stem + "_t*", directory, false);
  if (walls) watch_.fetch(stem + "_iter*.wall", directory, false);
}

// ---- an unstructured run -------------------------------------------------------------------

bool TLRetrieval::fetchUnstructured() {
  const RWCString phrase = "\nRetrieving files from directory: " + far_.host() + ":" +
                           far_.directory() + "*.*" + "\nPlease wait... ";
  sayToScript(phrase);
  RWCString source;
  RWCString target;
  for (std::int32_t i = 0; i < step_.spawnArguments.count(); ++i) {
    if (!isMarked(*step_.spawnArguments.at(i))) continue;
    const RWCString value = step_.spawnArguments.at(i)->value();
    console() << "TLSubTask::retrieveHexa_(), treating argument:" << value << '\n' << std::flush;
    // What was not carried lies here, and must not go.
    if (far_.directory().empty() || !value.starts_with(far_.directory())) continue;
    const RWCString suffix = TLFile(value).suffix();
    if (suffix != "run" && suffix != "p4pg") continue;
    const RWCString command = far_.removeFile(value);
    if (suffix == "run") {
      console() << "CMD:" << command << '\n' << std::flush;
      source = value.substr(0, value.size() - nameOf(value).size()) + "*";
      target = directoryOf(localValue(step_, i));
    }
    remoteExec(far_.host(), command, far_.login(), {});
  }
  if (!source.empty()) watch_.fetch(source, target, true, expected_);
  return !watch_.failed();
}

// ---- the shape optimiser -------------------------------------------------------------------

bool TLRetrieval::fetchSculpt() {
  for (const auto& argument : step_.arguments.entries()) {
    if (!isMarked(*argument)) continue;
    const RWCString directory = stripTrailingSlashes(TLFile(argument->value()).directory());
    watch_.fetch(far_.path(nameOf(directory)), directoryOf(directory), true, expected_);
    break;
  }
  return !watch_.failed();
}
