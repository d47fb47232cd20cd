/// @file
/// The process of the task manager. The name under which it is started chooses its script; under
/// one of its own names it is the daemon of one task, which the script's timer then drives.

#include <algorithm>
#include <array>
#include <cstdlib>
#include <iostream>
#include <string_view>

#include "launching/TLCommands.h"
#include "launching/TLLaunching.h"
#include "messaging/TLMessageCodes.h"
#include "messaging/TLProcessMessage.h"
#include "messaging/TLVirtualMachine.h"
#include "parameters/TLFile.h"
#include "platform/TLConsole.h"
#include "platform/TLHostForm.h"
#include "session/TLEnvironmentVariables.h"
#include "session/TLRunRecorder.h"
#include "session/TLTaskCommands.h"
#include "session/TLTaskManager.h"
#include "session/TkSession.h"
#include "taskengine/TLCurrentTask.h"
#include "taskengine/TLProcessArguments.h"
#include "taskengine/TLTaskChildren.h"
#include "taskengine/TLTaskGlobals.h"

namespace {

constexpr const char* kVersion = "7.1";
constexpr const char* kBuildDate = "Mar  7 2018";

constexpr std::array<std::string_view, 4> kDaemonNames = {"tltaskmgr.exe", "tltaskmgr",
                                                          "tltaskmgrx86_64", "tltaskmgrx86_64.exe"};

TkSession* gTaskSession = nullptr;

void printBanner() {
  console() << "\n\n  <***>   taskManager " << kVersion << "  -  " << kBuildDate << "   <***> \n\n"
            << std::flush;
}

/// Tells the parents why there will be no task, and ends the process.
[[noreturn]] void refuseStart(std::int32_t code, const RWCString& text) {
  TLProcessMessage message;
  message.tag = code;
  message.addString("Task Daemon: " + text);
  gCurrentTask->sendToParentsOffset(message);
  std::exit(0);
}

/// Reads the task that the arguments name into the current task.
void readTask(const TLProcessArguments& arguments) {
  RWCString value;
  if (arguments.find("-task", value) == 0) {
    refuseStart(TL_MSG_NO_TASK_FILE, "no task file specified as input");
  }
  const RWCString path = TLFile(value).path();
  if (!hostForm().canRead(path)) refuseStart(TL_MSG_CANNOT_OPEN, "cannot open " + value);
  if (gCurrentTask->readFile(path) == 0) {
    refuseStart(TL_MSG_WRONG_FORMAT, value + " : wrong format");
  }
  gTaskFileName = path;
}

void loadSteering(TLTask& task) {
  for (const auto& step : task.subTasks) {
    for (const auto& argument : step->arguments.entries()) {
      if (argument->type() == "-steering") step->loadSteering(argument->value());
    }
  }
}

/// Makes, reads and starts the task of the daemon.
void startTask(const TLProcessArguments& arguments) {
  setCurrentTask(new TLTaskChildren);
  readTask(arguments);
  loadSteering(*gCurrentTask);
  gCatchoutFile = openCatchout();
  TL_virtual_machine_watch_ends();
  gCurrentTask->start();
  const char* directory = std::getenv("TL_PVM_USER_DIR");
  runRecorder().begin(*gCurrentTask, directory == nullptr ? "" : directory);
}

}  // namespace

int main(int argc, char** argv) {
  printBanner();
  setCurrentTask(nullptr);
  TLEnvironmentVariables::initWin32(argc, argv);
  initFileCommands();
  installLaunching();
  TL_virtual_machine_use_companions(companionProgram());
  gTaskSession = new TkSession(argc, argv);  // lives as long as the process
  registerTaskCommands();
  setTaskManagerEnd(endTaskManager);

  const TLProcessArguments arguments(argc, argv);
  const RWCString program = arguments.count() > 0 ? arguments.at(0)->value() : RWCString();
  const RWCString name(TLFile(program).name());
  sourceScriptFor(name);
  if (std::find(kDaemonNames.begin(), kDaemonNames.end(), name) != kDaemonNames.end()) {
    startTask(arguments);
  }
  for (;;) {
    console().flush();
    gTaskSession->oneEvent();
  }
}
