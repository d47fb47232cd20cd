#include "tool/TLDaemonRunner.h"

#include <fmt/format.h>

#include <cstdio>
#include <utility>

#include "messaging/TLVirtualMachine.h"
#include "platform/TLHostForm.h"
#include "taskengine/TLProcessArguments.h"
#include "tool/TLDaemonClient.h"
#include "tool/TLDaemonFinder.h"
#include "tool/TLTaskFile.h"

TLDaemonRunner::TLDaemonRunner(const TLToolEnvironment& environment, std::vector<std::string> tools)
    : environment_(environment), tools_(std::move(tools)), machine_(environment.userDirectory()) {}

bool TLDaemonRunner::readTask(const std::string& taskFile) {
  taskFile_ = fullPath(taskFile);
  TLTaskFile file(taskFile_);
  if (file.read()) {
    run_ = file.run();
    if (!file.checkJobScripts(false)) fmt::print(stderr, "{}", file.report().text());
    return true;
  }
  fmt::print(stderr, "{}", file.report().text());
  return false;
}

bool TLDaemonRunner::start() {
  return startMachine() && startDisplay() && spawnDaemon();
}

bool TLDaemonRunner::startMachine() {
  std::string error;
  if (!machine_.running()) {
    std::vector<std::string> directories = tools_;
    directories.push_back(fullPath(hostForm().directoryOf(taskFile_)));
    if (!machine_.start(environment_.toolDirectories(directories), error)) {
      fmt::print(stderr, "tlctl: {}\n", error);
      return false;
    }
  }
  if (TLDaemonClient::enrol()) return true;
  fmt::print(stderr,
             "tlctl: cannot join the virtual machine of PVM_TMP={}: is it this user's? End it with "
             "\"halt\" in the program pvm, then try again\n",
             std::getenv("PVM_TMP"));
  return false;
}

bool TLDaemonRunner::startDisplay() {
  if (TLDisplayServer::present()) return true;
  std::string error;
  if (display_.start(environment_.userDirectory(), error)) return true;
  fmt::print(stderr, "tlctl: {}\n", error);
  return false;
}

bool TLDaemonRunner::spawnDaemon() {
  const std::string program = environment_.daemonProgram();
  if (program.empty()) {
    fmt::print(stderr, "tlctl: there is no tltaskmgr beside {}: install the two together\n",
               hostForm().executablePath());
    return false;
  }
  environment_.exportVariables();
  TLProcessArguments arguments;
  arguments.append(makeHandle<TLProcessArgument>("-task", taskFile_));
  arguments.append(makeHandle<TLProcessArgument>("-taskmanager", "none"));
  if (TL_virtual_machine_spawn(ownHostName(), program, arguments, tid_) == 0) return true;
  fmt::print(stderr, "tlctl: cannot start the daemon: {}\n", TL_virtual_machine_last_spawn());
  return false;
}

void TLDaemonRunner::stop() {
  display_.stop();
  if (!TLDaemonFinder(environment_.userDirectory()).live().empty()) return;
  TL_virtual_machine_await_sent();
  machine_.stop();
}
