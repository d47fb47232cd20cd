#include "integration/VirtualMachine.h"

#include <signal.h>
#include <stdlib.h>
#include <unistd.h>

#include <fstream>
#include <stdexcept>
#include <vector>

#include "integration/Waiting.h"
#include "platform/TTempDir.h"

namespace fs = std::filesystem;

namespace {

std::string ownHost() {
  char name[256] = {};
  gethostname(name, sizeof name - 1);
  return name;
}

// Processes of this user whose environment names `tmp` as their PVM_TMP.
std::vector<int> processesOf(const fs::path& tmp) {
  std::vector<int> found;
  const std::string mark = "PVM_TMP=" + tmp.string() + '\0';
  for (const auto& entry : fs::directory_iterator("/proc")) {
    const int pid = atoi(entry.path().filename().c_str());
    if (pid > 0 && pid != getpid() &&
        contentsOf(entry.path() / "environ").find(mark) != std::string::npos) {
      found.push_back(pid);
    }
  }
  return found;
}

}  // namespace

VirtualMachine::VirtualMachine() : hostName_(ownHost()) {
  std::string pattern = (fs::temp_directory_path() / "tlvmXXXXXX").string();
  if (mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("no directory for a pvmd");
  directory_ = pattern;
  environment_ = {{"PVM_TMP", directory_.string()},
                  {"PVM_VMID", directory_.filename().string()},
                  {"PVM_ROOT", "/usr/lib/pvm3"},
                  {"PVM_ALLOW_ROOT", "1"}};
  for (const auto& [name, value] : environment_) setenv(name.c_str(), value.c_str(), 1);
  for (const char* name : {"PVMSOCK", "PVMEPID", "PVMTMASK", "PVM_ARCH", "PVM_EXPORT"}) {
    unsetenv(name);
  }
  start();
}

VirtualMachine::~VirtualMachine() {
  // At its end it asks its tasks to end, this process among them when it has enrolled.
  const auto former = signal(SIGTERM, SIG_IGN);
  daemon_.terminate();
  for (const int pid : processesOf(directory_)) ::kill(pid, SIGKILL);
  std::error_code ignored;
  fs::remove_all(directory_, ignored);
  signal(SIGTERM, former);
}

VirtualMachine& VirtualMachine::shared() {
  static VirtualMachine machine;
  return machine;
}

void VirtualMachine::start() {
  fs::create_directory(programs());
  const fs::path hosts = directory_ / "hosts";
  std::ofstream(hosts) << hostName_ << " ep=" << programs().string() << '\n';

  TLProcessOptions options;
  options.outputFile = (directory_ / "pvmd.out").string();
  options.environment = environment_;
  options.ownSession = true;
  std::string error;
  auto process = TLProcess::start({"/usr/lib/pvm3/lib/pvmd", hosts.string()}, options, error);
  if (!process) throw std::runtime_error("pvmd: " + error);
  daemon_ = std::move(*process);
  // It prints the name of its socket once it listens.
  waitUntil([&] {
    return contentsOf(options.outputFile).find('\n') != std::string::npos || !daemon_.running();
  });
  if (!daemon_.running()) throw std::runtime_error("pvmd ended: " + log());
}

void VirtualMachine::addProgram(const std::string& name, const fs::path& program) const {
  std::error_code ignored;
  fs::remove(programs() / name, ignored);
  fs::create_symlink(fs::absolute(program), programs() / name);
}

std::string VirtualMachine::log() const {
  std::string text;
  for (const auto& entry : fs::directory_iterator(directory_)) {
    if (entry.path().filename().string().starts_with("pvml.")) text += contentsOf(entry.path());
  }
  return text;
}

void VirtualMachine::kill() {
  ::kill(daemon_.pid(), SIGKILL);
  waitUntil([&] { return !daemon_.running(); });
}
