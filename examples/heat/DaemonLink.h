#pragma once

#include <optional>
#include <string>
#include <vector>

/// A tool's side of the task daemon: everything that a program needs in order to be followed,
/// written against PVM and the format in docs/messages.md alone, so that it can be copied into a
/// tool of any origin. Without a daemon (a tool started by hand) all sends go nowhere.
class DaemonLink {
 public:
  /// Finds the daemon: the task behind "-parendId" on the command line, else whoever spawned this
  /// process.
  DaemonLink(int argc, char** argv);
  ~DaemonLink();
  DaemonLink(const DaemonLink&) = delete;
  DaemonLink& operator=(const DaemonLink&) = delete;

  bool present() const { return daemon_ > 0; }

  /// @name What a tool tells.
  /// @{
  void started();                      ///< code 4: a solver is up
  void text(const std::string& line);  ///< code 7: for the user's eyes
  /// Code 5: an orderly end. Waits until the daemon has taken note.
  void finished(const std::vector<std::string>& lines);
  /// Code 8: why this tool is about to die. Waits a moment for the daemon to have it.
  void failing(const std::string& reason);
  /// @}

  /// Code of the next message from the daemon, none when nothing waits. Its contents can be read
  /// by the pvm_upk calls until the next call.
  std::optional<int> nextMessage();

  /// Waits at most `seconds` for a message of `code`, which nextMessage then finds.
  void waitFor(int code, int seconds) const;

  /// @name One message, piece by piece: begin with the number of sub-messages, add them, send.
  /// @{
  void begin(int subMessages) const;
  void addInteger(int value) const;
  void addText(const std::string& text) const;
  void send(int code) const;
  /// @}

 private:
  void waitForEcho() const;

  int daemon_ = 0;
};

/// The parts of a path behind the run file that a task's steps share: "/run/heat.run" with ".mesh"
/// gives "/run/heat.mesh".
std::string besideRunFile(const std::string& runFile, const std::string& extension);
/// The first word of the command line that ends in ".run"; empty when there is none.
std::string runFileArgument(int argc, char** argv);
/// The number behind `option`, or `otherwise`.
double numberArgument(int argc, char** argv, const std::string& option, double otherwise);
/// True when `option` stands on the command line.
bool hasArgument(int argc, char** argv, const std::string& option);
