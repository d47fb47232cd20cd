#pragma once

#include <string>
#include <vector>

/// Where tlctl finds the suite that it belongs to and the files of the user.
class TLToolEnvironment {
 public:
  /// Works both out and sets what is missing of HOME, TALVEN_DIR and VELSTRA_DIR for this process
  /// and those it starts. Makes the user's directories.
  TLToolEnvironment();

  /// Root of the installation, without a separator at its end.
  const std::string& suiteDirectory() const { return suiteDirectory_; }
  /// Private to the user: state files of daemons, the virtual machine's files.
  const std::string& userDirectory() const { return userDirectory_; }
  /// The daemon's program; empty when it isn't beside this one.
  std::string daemonProgram() const;
  /// Where the virtual machine looks for the programs of a task's steps: `first`, then TL_TOOLS (a
  /// list separated by colons), the suite's own and the user's PVM directories.
  std::vector<std::string> toolDirectories(const std::vector<std::string>& first) const;
  /// Has the virtual machine hand the variables on which a daemon depends to what it starts for
  /// this process.
  void exportVariables() const;

 private:
  std::string suiteDirectory_;
  std::string userDirectory_;
};
