#include "launching/TLLaunching.h"

#include "launching/TLHostTransfer.h"
#include "launching/TLJobQueue.h"
#include "launching/TLTransfer.h"
#include "messaging/TLVirtualMachine.h"
#include "platform/TLHostForm.h"
#include "taskengine/TLSubTask.h"

int TLLaunching::retrieveResults(TLSubTask& step) {
  return transfer().retrieveResults(step);
}
int TLLaunching::retrieveHexa_(TLSubTask& step) {
  return transfer().retrieveHexa_(step);
}
void TLLaunching::removeRemoteDir(TLSubTask& step) {
  transfer().removeRemoteDir(step);
}
int TLLaunching::removeRemoteResults(TLSubTask& step) {
  return transfer().removeRemoteResults(step);
}

int TLLaunching::stopSubTask(TLSubTask& step) {
  step.status = TLSubTask::Stopped;
  if (step.isQueued()) {
    jobQueue().deleteJobs(step);
    return 1;
  }
  for (auto child = step.children.rbegin(); child != step.children.rend(); ++child) {
    TL_virtual_machine_kill(*child);
  }
  return 1;
}

TLLaunching& launching() {
  static TLLaunching instance;
  return instance;
}

void installLaunching() {
  setLauncher(&launching());
  setTransfer(&hostTransfer());
}

TLLaunchSite launchSite() {
  TLHostForm& form = hostForm();
  TLLaunchSite site;
  site.localHostName = ownHostName();
  site.tid = std::to_string(TL_virtual_machine_mytid());
  site.suiteDirectory = form.variableOrEmpty("TALVEN_DIR");
  site.separator = form.separator();
  site.canRead = [&form](const RWCString& path) { return form.canRead(path); };
  return site;
}

TLLaunchDraft draftOf(const TLSubTask& step) {
  TLLaunchDraft draft;
  draft.name = step.name;
  draft.executable = step.executable;
  draft.hostName = step.hostName;
  draft.remoteLogin = step.remoteLogin;
  draft.win32 = step.isWin32Host != 0;
  draft.loadBalancing = step.loadBalancing;
  draft.arguments.assign(step.arguments);
  draft.precision = step.userSolverPrecision;
  return draft;
}
