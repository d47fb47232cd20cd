#include "integration/TestDaemon.h"

#include <stdlib.h>

#include <algorithm>
#include <fstream>
#include <sstream>

#include "integration/VirtualMachine.h"
#include "integration/Waiting.h"
#include "platform/TTempDir.h"
#include "session/TLTestDisplay.h"

namespace fs = std::filesystem;

namespace {

void link(const fs::path& target, const fs::path& place) {
  fs::create_directories(place.parent_path());
  fs::create_directory_symlink(target, place);
}

TLTestDisplay& display() {
  static TLTestDisplay server;
  return server;
}

}  // namespace

TestDaemon::TestDaemon(const std::string& task, const TestDaemonOptions& options) {
  static int count = 0;
  display();
  directory_ = VirtualMachine::shared().directory() / ("daemon" + std::to_string(++count));
  fs::create_directories(home());
  install(options);
  exportEnvironment(options);
  std::ofstream(directory_ / "task.tsk") << task;

  PvmPeer::tid();
  std::vector<std::string> words = options.words;
  if (words.empty()) words = {"-task", (directory_ / "task.tsk").string(), "-parendId", "1"};
  tid_ = PvmPeer::spawn(options.name, words);
}

TestDaemon::~TestDaemon() {
  const int process = PvmPeer::processOf(tid_);
  if (tid_ > 0 && alive()) PvmPeer::kill(tid_);
  PvmPeer::waitGone(tid_);
  if (process > 0) waitUntil([process] { return !processExists(process); });
  std::error_code ignored;
  fs::remove_all(directory_, ignored);
}

void TestDaemon::install(const TestDaemonOptions& options) {
  const fs::path root = directory_ / "mire71";
  const fs::path program = root / "bin" / options.name;
  fs::create_directories(program.parent_path());
  fs::copy_file(TL_TEST_DAEMON, program);
  fs::create_symlink(TL_TEST_COMPANION, program.parent_path() / "tlhostwatch");
  VirtualMachine::shared().addProgram(options.name, program);
  if (!options.definitions.empty()) fs::copy(options.definitions, program.parent_path());
  for (const char* tool : {"tlrsh", "tlrcp"}) {
    fs::create_symlink(fs::path(TL_TEST_SHARE) / "bin" / tool, program.parent_path() / tool);
  }

  const fs::path system = root / "_tcl" / "_system";
  link(TL_TEST_TCL_SCRIPTS, system / "tcl8.4");
  link(TL_TEST_TK_SCRIPTS, system / "tk8.4");
  link(TL_TEST_TIX_SCRIPTS, system / "tix8.4");
  link(TL_TEST_BLT_SCRIPTS, system / "blt2.4");
  const fs::path layer = root / "_tcl" / "_taskManager";
  fs::create_directories(layer);
  std::ofstream(layer / "taskDaemon.tcl")
      << contentsOf(fs::path(TL_TEST_LAYER) / "taskDaemon.tcl") << options.script << '\n';

  std::ofstream(directory_ / "settings.ini") << "[Software\\TALVEN International\\mire71]\n"
                                             << "TALVEN_DIR = " << root.string() << '\n';
}

void TestDaemon::exportEnvironment(const TestDaemonOptions& options) {
  std::vector<std::pair<std::string, std::string>> variables = {
      {"TL_TEST_DIR", directory_.string()},
      {"TALVEN_SETTINGS", (directory_ / "settings.ini").string()},
      {"TL_SETTINGS_DIR", directory_.string()},
      {"HOME", home().string()},
      {"TMP_DIR", (directory_ / "tmp/").string()},
      {"ASAN_OPTIONS", "detect_leaks=0"},
  };
  fs::create_directories(directory_ / "tmp");
  variables.insert(variables.end(), options.environment.begin(), options.environment.end());
  std::string names = "DISPLAY";
  for (const auto& [name, value] : variables) {
    setenv(name.c_str(), value.c_str(), 1);
    names += ":" + name;
  }
  setenv("PVM_EXPORT", names.c_str(), 1);
}

std::string TestDaemon::ask(const std::string& script, double seconds) {
  std::ofstream(directory_ / "question.new") << script;
  fs::rename(directory_ / "question.new", directory_ / "question");
  const fs::path answer = directory_ / "answer";
  if (!waitUntil([&] { return fs::exists(answer) || !alive(); }, seconds)) return "TIMEOUT";
  if (!fs::exists(answer)) return "GONE";
  const std::string text = contentsOf(answer);
  fs::remove(answer);
  return text.starts_with("0 ") ? text.substr(2) : "ERROR " + text;
}

std::vector<std::string> TestDaemon::upcalls() const {
  std::istringstream text(contentsOf(directory_ / "upcalls"));
  std::vector<std::string> lines;
  for (std::string line; std::getline(text, line);) lines.push_back(line);
  return lines;
}

int TestDaemon::upcallCount(const std::string& call) const {
  const auto lines = upcalls();
  return static_cast<int>(std::count(lines.begin(), lines.end(), call));
}

bool TestDaemon::waitUpcall(const std::string& call, double seconds) const {
  return waitUntil([&] { return upcallCount(call) > 0; }, seconds);
}

std::vector<std::int32_t> TestDaemon::poll(double seconds) const {
  std::vector<std::int32_t> statuses;
  if (!PvmPeer::send(tid_, 1)) return statuses;
  const auto answer = PvmPeer::receive(tid_, 1, seconds);
  if (!answer) return statuses;
  for (const auto& value : answer->values()) {
    if (const auto* status = std::get_if<std::int32_t>(&value)) statuses.push_back(*status);
  }
  return statuses;
}

bool TestDaemon::waitStatuses(const std::vector<std::int32_t>& expected, double seconds) const {
  return waitUntil([&] { return poll(seconds) == expected; }, seconds);
}

std::string TestDaemon::step(const std::string& name, const std::string& executable,
                             const std::string& lines, const std::string& host) {
  return stepText(name, executable, host.empty() ? VirtualMachine::shared().hostName() : host,
                  lines);
}

std::string TestDaemon::task(const std::string& steps, const std::string& lines) {
  return "TL_BEGIN task\n  NAME test task\n" + lines + steps + "TL_END task\n";
}
