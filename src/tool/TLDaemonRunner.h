#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "taskengine/TLRunState.h"
#include "tool/TLDisplayServer.h"
#include "tool/TLToolEnvironment.h"
#include "tool/TLVirtualMachineStarter.h"

/// Brings up what a daemon needs (virtual machine, display) and starts it on a task file.
class TLDaemonRunner {
 public:
  /// `tools`: directories in which the programs of the steps are looked up before any others.
  TLDaemonRunner(const TLToolEnvironment& environment, std::vector<std::string> tools);

  /// Reads the task file for the names of its steps, through the daemon's own reader. False, with
  /// everything said on standard error, when the daemon would refuse it.
  bool readTask(const std::string& taskFile);

  /// Starts machine, display and daemon. False, with the reason said on standard error.
  bool start();

  /// Ends what start() brought up: the display, and the machine when no other daemon is in it.
  void stop();

  /// Task identifier of the daemon; 0 before start().
  std::int32_t tid() const { return tid_; }
  /// Full path of the file that readTask() took.
  const std::string& taskFile() const { return taskFile_; }
  /// The run before its start: what the task file says of it.
  const TLRunState& run() const { return run_; }

 private:
  bool startMachine();
  bool startDisplay();
  bool spawnDaemon();

  const TLToolEnvironment& environment_;
  std::vector<std::string> tools_;
  TLVirtualMachineStarter machine_;
  TLDisplayServer display_;
  std::string taskFile_;
  TLRunState run_;
  std::int32_t tid_ = 0;
};
