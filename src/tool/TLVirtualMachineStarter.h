#pragma once

#include <string>
#include <vector>

/// The virtual machine that tlctl and its daemons meet in: PVM's daemon of this user on this host,
/// told apart by PVM_TMP and PVM_VMID. Found when one runs, started as a process of its own when
/// none does.
class TLVirtualMachineStarter {
 public:
  /// `userDirectory` (private to the user) is PVM_TMP where the environment names none; it also
  /// takes the host file and log of a machine that is started here.
  explicit TLVirtualMachineStarter(std::string userDirectory);

  /// True when a PVM daemon answers at its socket. A socket file that nobody serves is removed.
  bool running() const;

  /// Starts a machine of this host alone, whose tools are looked up in `toolDirectories`, in order.
  /// False when that fails; `error` then says why and what to do.
  bool start(const std::vector<std::string>& toolDirectories, std::string& error);

  /// Ends the machine that start() made, and all that still runs in it.
  void stop();
  /// True from a start() that went well until stop().
  bool startedHere() const { return pid_ > 0; }

 private:
  std::string addressFile() const;
  bool writeHostFile(const std::string& path, const std::vector<std::string>& toolDirectories,
                     std::string& error) const;

  std::string userDirectory_;
  int pid_ = 0;
};
