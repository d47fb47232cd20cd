#include "session/TLTaskManager.h"

#include <array>
#include <cstdlib>
#include <string>
#include <string_view>

#include "launching/TLCommands.h"
#include "messaging/TLVirtualMachine.h"
#include "parameters/TLFile.h"
#include "platform/TLConsole.h"
#include "platform/TLHostForm.h"
#include "session/TLRunRecorder.h"
#include "session/TkSession.h"
#include "taskengine/TLCurrentTask.h"
#include "taskengine/TLTask.h"
#include "taskengine/TLTaskGlobals.h"

namespace {

struct RunMode {
  std::string_view process;
  const char* script;
};
constexpr std::array<RunMode, 7> kRunModes = {{
    {"tltaskmgr", "taskDaemon.tcl"},
    {"tltaskmgr.exe", "taskDaemon.tcl"},
    {"tltaskmgrx86_64", "taskDaemon.tcl"},
    {"tltaskmgrx86_64.exe", "taskDaemon.tcl"},
    {"sorvit", "sorvit.tcl"},
    {"velstraTurbo", "velstraturbo.tcl"},
    {"kelMark", "kelmark.tcl"},
}};

/// `path` as one word of a command line. A plain name goes in as it is.
std::string asWord(const std::string& path) {
  constexpr std::string_view kPlain =
      "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789._/-+,:=@%\\";
  const bool plain = path.find_first_not_of(kPlain) == std::string::npos;
  return plain || hostForm().kind() == TLHostKind::win32 ? path : hostForm().quoted(path);
}

}  // namespace

void sourceScriptFor(const RWCString& name) {
  const char* root = std::getenv("TCL_PATH");
  if (root == nullptr) {
    console() << "TCL_PATH is not defined. Can not continue. \n";
    std::exit(0);
  }
  RWCString path = RWCString(root) + "/_taskManager/";
  for (const RunMode& mode : kRunModes) {
    if (mode.process == name) path += mode.script;
  }
  sourceFile(hostForm().realPath(TLFile(path).path()));
}

std::FILE* openCatchout() {
  const char* directory = std::getenv("TMP_DIR");
  if (directory == nullptr) {
    console() << "**** TLLoadBalancing::createParallelRunFile, Check TMP_DIR env. variable \n";
    return nullptr;
  }
  const TLFile file(RWCString(directory) + "/taskfile_catchout" +
                    std::to_string(hostForm().processId()));
  std::FILE* stream = std::fopen(hostForm().realPath(file.path()).c_str(), "w");
  if (stream == nullptr) return nullptr;
  std::setvbuf(stream, nullptr, _IOLBF, BUFSIZ);  // others read it while it grows
  gCatchoutFileName = file.path();
  TL_virtual_machine_catchout(stream);
  return stream;
}

void endTaskManager() {
  if (gCurrentTask != nullptr) runRecorder().end(*gCurrentTask);
  if (!gCatchoutFileName.empty()) {
    if (gCatchoutFile != nullptr) std::fclose(gCatchoutFile);
    gCatchoutFile = nullptr;
    const RWCString name = hostForm().toLocal(asWord(gCatchoutFileName));
    hostForm().runSystem(fileCommandTable().remove + " " + name);
  }
  exitThroughScript();
}
