#pragma once

#include <filesystem>
#include <map>
#include <optional>
#include <string>

#include "platform/TLProcess.h"

/// A PVM virtual machine of one host for one test program: a `pvmd` of its own with private
/// PVM_TMP and PVM_VMID, so that it neither sees nor disturbs any other. Starting waits until it
/// accepts tasks; the end takes the `pvmd`, the tasks that it still knows and the directory along.
///
/// Its variables are set in this process, too, which can therefore enrol (PvmPeer). Only one should
/// live at a time: a process belongs to one virtual machine for good. Throws std::runtime_error
/// when it can't be started.
class VirtualMachine {
 public:
  VirtualMachine();
  ~VirtualMachine();
  VirtualMachine(const VirtualMachine&) = delete;
  VirtualMachine& operator=(const VirtualMachine&) = delete;

  /// The one that all tests of this program share: started by the first call, ended at exit.
  static VirtualMachine& shared();

  /// A directory of this virtual machine's own, removed with it. The `pvmd` keeps its files below.
  const std::filesystem::path& directory() const { return directory_; }
  /// What this host is called in the virtual machine's table.
  const std::string& hostName() const { return hostName_; }
  int pid() const { return daemon_.pid(); }
  /// What a process needs in its environment to join.
  const std::map<std::string, std::string>& environment() const { return environment_; }

  /// Lets a spawn find `program` under a plain name.
  void addProgram(const std::string& name, const std::filesystem::path& program) const;
  /// All that tasks without a catch-out, and the `pvmd` itself, have printed.
  std::string log() const;
  /// Ends the `pvmd` as a crash would.
  void kill();

 private:
  void start();
  std::filesystem::path programs() const { return directory_ / "programs"; }

  std::filesystem::path directory_;
  std::string hostName_;
  std::map<std::string, std::string> environment_;
  TLProcess daemon_;
};
