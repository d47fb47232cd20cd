#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

/// How a background process is started.
struct TLProcessOptions {
  std::string outputFile;  ///< standard output and error, appended; empty: dropped
  std::map<std::string, std::string> environment;  ///< set on top of this process's own
  std::string directory;                           ///< working directory; empty: this process's
  bool ownSession = false;  ///< true: a session of its own, out of reach of the terminal's signals
  /// A descriptor of this process that becomes its standard input and output, in the place of
  /// `outputFile`; it then inherits no other but the standard error, which is dropped. -1: none.
  int channel = -1;
};

/// A process started in the background. Unless detached it is ended (SIGTERM, after a grace time
/// SIGKILL) and waited for when this object goes.
class TLProcess {
 public:
  TLProcess() = default;
  /// Takes the process over; `other` then holds none.
  TLProcess(TLProcess&& other) noexcept;
  /// Exchanges the processes; the former one ends with `other`.
  TLProcess& operator=(TLProcess&& other) noexcept;
  TLProcess(const TLProcess&) = delete;
  TLProcess& operator=(const TLProcess&) = delete;
  ~TLProcess();

  /// Starts `words[0]`, looked up on PATH, with the other words as its arguments. None when it
  /// can't be started; `error` then says why.
  static std::optional<TLProcess> start(const std::vector<std::string>& words,
                                        const TLProcessOptions& options, std::string& error);

  /// Process identifier; 0 when this object holds no process.
  int pid() const { return pid_; }
  /// True while it has not ended. Collects its status when it has.
  bool running();
  /// Exit status, 128 and the signal when one killed it; none while it runs.
  std::optional<int> exitCode();
  /// Asks it to end, waits at most `graceSeconds`, then kills it.
  void terminate(double graceSeconds = 5.0);
  /// Leaves it to itself from now on.
  void detach() { pid_ = 0; }

 private:
  int pid_ = 0;
  std::optional<int> exitCode_;
};

/// True when a process of that identifier exists on this host.
bool processExists(int pid);
/// Sends the request to end (SIGTERM); false when there is no such process or it isn't ours.
bool requestProcessEnd(int pid);
