#include "launching/TLTransferPlanner.h"

#include "launching/TLPathText.h"
#include "launching/TLProjectCarrier.h"
#include "launching/TLProjectReading.h"
#include "platform/TLHostForm.h"
#include "project/TLProject.h"
#include "taskengine/TLProcessArguments.h"

namespace {

RWCString nameOf(const RWCString& path) {
  return RWCString(TLFile(path).name());
}

/// `text` with the first `match` in it replaced.
RWCString replaced(RWCString text, const RWCString& match, const RWCString& by) {
  const auto found = text.find(match);
  if (found != RWCString::npos) text.replace(found, match.size(), by);
  return text;
}

/// The list of an unstructured run.
class UnstructuredList {
 public:
  UnstructuredList(const TLFarSide& far, const TLProcessArguments& arguments)
      : arguments_(arguments), list_(far) {}

  TLCarryList make() {
    const TLFarSide& far = list_.far();
    list_.makeRunDirectory();
    list_.message("Transfering project to host: " + far.host() + ", OS: " + far.system() +
                      ", with login: " + far.login(),
                  true);
    list_.message("Remote temporary directory: " + far.directory() + " \nPlease wait... ", true);
    list_.print("\n***********************************\nTranfering data to remote directory: " +
                far.directory() + "\n***********************************");
    forEach("run", &UnstructuredList::carryRun);
    forEach("p4pg", &UnstructuredList::carryProcesses);
    list_.message("Transfer completed ! \n", false);
    return list_;
  }

 private:
  void forEach(const char* suffix, void (UnstructuredList::*carry)(std::int32_t, const TLFile&)) {
    for (std::int32_t i = 0; i < arguments_.count(); ++i) {
      const TLProcessArgument& argument = *arguments_.at(i);
      const TLFile file(argument.value());
      if (isMarked(argument) && file.suffix() == suffix) (this->*carry)(i, file);
    }
  }

  RWCString place(const RWCString& directory) const { return list_.far().host() + ":" + directory; }

  void carryRun(std::int32_t entry, const TLFile& file) {
    const auto project = makeHandle<TLProject>();
    project->usesSteering = false;
    if (readProject(*project, file.path(), true) != 1) return;
    const RWCString base(TLFile(file.withoutSuffix()).name());
    carryMesh(*project);
    const RWCString directory = list_.far().path(base);
    list_.makeDirectory(directory);
    list_.print("  . Creating computation subdirectory on remote host: " + place(directory));
    if (project->currentComputation) carrySolutions(*project->currentComputation, base);
    carryText(*project, file, directory);
    list_.setValue(entry, directory + "/" + RWCString(file.name()));
  }

  void carryMesh(TLProject& project) {
    const RWCString directory = list_.far().path("_mesh");
    list_.makeDirectory(directory);
    list_.print(". Creating _mesh/ subdirectory on remote host: " + place(directory));
    const RWCString mesh = project.gridFile.path();
    const RWCString files = replaced(mesh, ".zyv", ".*");
    list_.print("  . Transfering mesh files: " + files);
    list_.copy(files, directory, false);
    project.gridFile = TLFile::onOtherHost(directory + "/" + nameOf(mesh));
  }

  void carrySolutions(TLSubProject& computation, const RWCString& base) {
    for (std::size_t i = 0; i < computation.initialSolutions.size(); ++i) {
      TLInitSol& solution = *computation.initialSolutions[i];
      if (!solution.isFile()) continue;
      const RWCString directory = list_.far().path(base + "__INIT_SOL_" + std::to_string(i) + "__");
      list_.print("  . Creating initial computation subdirectory on remote host: " +
                  place(directory));
      list_.makeDirectory(directory);
      const RWCString path = solution.path();
      RWCString files = replaced(path, ".run", ".*");
      files = replaced(files, ".cgns", ".*");
      list_.print("  . Transfering result files for restart: " + files);
      list_.copy(files, directory, false);
      solution.setPath(directory + "/" + nameOf(path));
    }
  }

  void carryText(const TLProject& project, const TLFile& file, const RWCString& directory) {
    const RWCString temporary = file.path() + "tmp";
    TLTextSink sink;
    project.write(sink);
    list_.write(temporary, sink.take(), false);
    list_.print("  . Transfering temporary run file: " + temporary);
    list_.copy(temporary, directory + "/" + RWCString(file.name()), false);
    list_.remove(temporary);
  }

  void carryProcesses(std::int32_t entry, const TLFile& file) {
    list_.print("  . Transfering  <*.p4pg> file: " + file.path());
    const RWCString base(TLFile(file.withoutSuffix()).name());
    const RWCString target = list_.far().path(base + "/" + RWCString(file.name()));
    list_.copy(file.path(), target, false);
    list_.print("  . Remote <*.p4pg> file:" + target);
    list_.setValue(entry, target);
  }

  const TLProcessArguments& arguments_;
  TLCarryList list_;
};

}  // namespace

bool isMarked(const TLProcessArgument& argument) {
  return argument.hasLocalFile() == 1 && argument.localFile() != 0;
}

TLCarryList carriedArguments(const TLFarSide& far, const TLProcessArguments& spawnArguments) {
  TLCarryList list(far);
  TLProjectCarrier carrier(list);
  for (std::int32_t i = 0; i < spawnArguments.count(); ++i) {
    const TLProcessArgument& argument = *spawnArguments.at(i);
    if (!isMarked(argument)) continue;
    const RWCString value = argument.value();
    list.makeRunDirectory();
    list.message("Transfering project to " + far.host() + " OS: " + far.system() +
                     " with Login: " + far.login(),
                 true);
    list.message("Copying Argument File " + value + " to dir: " + far.directory() + " ", true);
    if (!far.login().empty() && TLFile(value).suffix() != "zyv") {
      carrier.transferProject(value, far.directory());
    }
    list.setValue(i, far.path(nameOf(value)));
    list.word("remote_transfered");
  }
  return list;
}

TLCarryList carriedUnstructured(const TLFarSide& far, const TLProcessArguments& spawnArguments) {
  return UnstructuredList(far, spawnArguments).make();
}

TLCarryList carriedSculpt(const TLFarSide& far, const TLProcessArguments& spawnArguments) {
  TLCarryList list(far);
  list.makeRunDirectory();
  if (spawnArguments.count() == 0 || !isMarked(*spawnArguments.at(0))) return list;
  const RWCString value = spawnArguments.at(0)->value();
  const RWCString directory = stripTrailingSlashes(TLFile(value).directory());
  const RWCString last = nameOf(directory);
  // What a Windows host of this process has to say goes for each far host.
  const bool backslash = hostForm().kind() == TLHostKind::win32 || list.far().win32();
  list.setValue(0, list.far().path(last + (backslash ? "\\" : "/") + nameOf(value)));
  list.tree(directory, list.far().directory(), false);
  return list;
}
