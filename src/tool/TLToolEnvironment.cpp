#include "tool/TLToolEnvironment.h"

#include <cstdlib>
#include <sstream>

#include "platform/TLHostForm.h"

namespace {

// What a daemon's start-up reads, and what its tools may need to run at all.
constexpr const char* kExported[] = {
    "DISPLAY",      "XAUTHORITY",      "HOME",         "PATH",          "LD_LIBRARY_PATH",
    "LANG",         "LC_ALL",          "TMP_DIR",      "PVM_ROOT",      "PVM_TMP",
    "PVM_VMID",     "PVM_ALLOW_ROOT",  "PVM_RSH",      "TL_TOOLS",      "TCL_PATH",
    "TL_UPDATE_MS", "TALVEN_SETTINGS", "ASAN_OPTIONS", "UBSAN_OPTIONS", "LSAN_OPTIONS"};

std::string environment(const char* name) {
  const char* value = std::getenv(name);
  return value == nullptr ? std::string() : std::string(value);
}

std::string withoutLastSeparator(std::string path) {
  while (path.size() > 1 && path.back() == hostForm().separator()) path.pop_back();
  return path;
}

std::string parentOf(const std::string& path) {
  return withoutLastSeparator(hostForm().directoryOf(withoutLastSeparator(path)));
}

}  // namespace

TLToolEnvironment::TLToolEnvironment() {
  suiteDirectory_ = parentOf(parentOf(hostForm().executablePath()));
  const std::string home =
      environment("HOME").empty() ? hostForm().homeDirectory() : environment("HOME");
  setenv("HOME", home.c_str(), 0);
  setenv("TALVEN_DIR", suiteDirectory_.c_str(), 0);
  setenv("VELSTRA_DIR", (suiteDirectory_ + "/bin").c_str(), 0);
  const std::string talven = hostForm().join(home, ".talven");
  hostForm().makeDirectory(talven);
  userDirectory_ = hostForm().join(talven, "pvm");
  hostForm().makeDirectory(userDirectory_);
}

std::string TLToolEnvironment::daemonProgram() const {
  const std::string program = hostForm().join(parentOf(hostForm().executablePath()), "tltaskmgr");
  return hostForm().canRead(program) ? program : std::string();
}

std::vector<std::string> TLToolEnvironment::toolDirectories(
    const std::vector<std::string>& first) const {
  std::vector<std::string> directories = first;
  std::istringstream listed(environment("TL_TOOLS"));
  for (std::string directory; std::getline(listed, directory, ':');) {
    if (!directory.empty()) directories.push_back(directory);
  }
  directories.push_back(suiteDirectory_ + "/bin");
  directories.push_back(suiteDirectory_ + "/examples/bin");
  directories.push_back(environment("HOME") + "/pvm3/bin/LINUX64");
  return directories;
}

void TLToolEnvironment::exportVariables() const {
  std::string names = environment("PVM_EXPORT");
  for (const char* name : kExported) {
    if (std::getenv(name) == nullptr) continue;
    if (!names.empty()) names += ':';
    names += name;
  }
  setenv("PVM_EXPORT", names.c_str(), 1);
}
