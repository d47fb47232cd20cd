#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "integration/PvmPeer.h"
#include "support/TaskText.h"

/// How a daemon is started in a test.
struct TestDaemonOptions {
  std::string name = "tltaskmgr";  ///< the name under which the program is started
  /// Its own words; none: "-task" with a file that holds the task's text.
  std::vector<std::string> words = {};
  /// Evaluated at the end of the script layer.
  std::string script = {};
  /// A directory whose files go into the installation's "bin": the solvers' definitions.
  std::filesystem::path definitions = {};
  /// Further variables of its environment.
  std::vector<std::pair<std::string, std::string>> environment = {};
};

/// A real daemon in the shared virtual machine of the test program, with a display, an installation
/// and a home of its own, and with a script layer that notes every call (layer/taskDaemon.tcl).
/// This process is its parent, the first interface. At the end of the object it is gone.
class TestDaemon {
 public:
  /// Starts it on a task file of the text `task`. Doesn't wait for anything.
  explicit TestDaemon(const std::string& task, const TestDaemonOptions& options = {});
  ~TestDaemon();
  TestDaemon(const TestDaemon&) = delete;
  TestDaemon& operator=(const TestDaemon&) = delete;

  std::int32_t tid() const { return tid_; }
  bool alive() const { return PvmPeer::alive(tid_); }
  bool waitGone(double seconds = 30.0) const { return PvmPeer::waitGone(tid_, seconds); }

  /// Of its own, removed with this object: its task file is "task.tsk" in it.
  const std::filesystem::path& directory() const { return directory_; }
  std::filesystem::path home() const { return directory_ / "home"; }

  /// What the script answers to `script`, in its event loop; "ERROR " and the error's text when it
  /// fails, "TIMEOUT" when no answer came.
  std::string ask(const std::string& script, double seconds = 30.0);

  /// The calls of the program noted so far, as Tcl lists.
  std::vector<std::string> upcalls() const;
  /// True as soon as `call` is among them.
  bool waitUpcall(const std::string& call, double seconds = 30.0) const;
  /// How often `call` is among them.
  int upcallCount(const std::string& call) const;

  /// The statuses by a poll (message 1); empty when no answer came.
  std::vector<std::int32_t> poll(double seconds = 30.0) const;
  /// Polls until the statuses are `expected`.
  bool waitStatuses(const std::vector<std::int32_t>& expected, double seconds = 30.0) const;

  /// Text of a step of a task file, on this host without another. `lines` are further lines of it.
  static std::string step(const std::string& name, const std::string& executable,
                          const std::string& lines = {}, const std::string& host = {});
  static std::string task(const std::string& steps, const std::string& lines = {});

 private:
  void install(const TestDaemonOptions& options);
  void exportEnvironment(const TestDaemonOptions& options);

  std::filesystem::path directory_;
  std::int32_t tid_ = 0;
};
