#include "launching/TLLaunchLines.h"
#include "launching/TLLaunching.h"
#include "launching/TLStarter.h"
#include "messaging/TLVirtualMachine.h"
#include "session/TLScript.h"
#include "taskengine/TLSubTask.h"

namespace {

/// The log that the tool is told to write; the last word about it counts.
RWCString viewedLog(const TLProcessArguments& arguments) {
  RWCString log = "reconstruction_script.log.view";
  for (const auto& entry : arguments.entries()) {
    if (entry->type() == "-view_log") log = entry->value();
  }
  return log;
}

void evaluateAll(std::initializer_list<RWCString> lines) {
  for (const auto& line : lines) evalScript(line);
}

}  // namespace

int TLLaunching::startProbesTool(TLSubTask& step) {
  step.children.clear();
  step.isWin32Host = hostIsWin32(step.hostName);
  const RWCString log = viewedLog(step.arguments);
  TLLaunchDraft draft = draftOf(step);
  draft.spawnArguments.assign(step.arguments);
  step.status = TLSubTask::Pending;
  evaluateAll({"after 3000", "update"});
  std::int32_t child = 0;
  const int result = localToolStarter().start(step, draft, launchSite(), child);
  if (result != 0) {
    tellScript(messageLine("NOT_RUNNING"));
    step.status = TLSubTask::FinishedKo;
    return result;
  }
  evalScript("update");  // behind what the start has told
  step.status = TLSubTask::Running;
  step.addChild(child);
  step.logFile = log;
  evaluateAll({messageLine("\"Connect to the log\""), "after 1000",
               "task_manager_init_tail \"" + scriptQuoted(log) + "\"", "update",
               "task_manager_update_tail", "update"});
  return 0;
}
