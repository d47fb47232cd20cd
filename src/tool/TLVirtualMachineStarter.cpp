#include "tool/TLVirtualMachineStarter.h"

#include <fmt/format.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <thread>
#include <utility>

#include "platform/TLHostForm.h"
#include "platform/TLProcess.h"

namespace {

constexpr auto kStartTime = std::chrono::seconds(20);
constexpr auto kLook = std::chrono::milliseconds(5);
// PVM 3.4.6 reads a line of its host file into a buffer of 512 bytes and takes the rest of a
// longer one for host names.
constexpr std::size_t kLongestHostLine = 500;
constexpr const char* kDebianPvmRoot = "/usr/lib/pvm3";

std::string environment(const char* name) {
  const char* value = std::getenv(name);
  return value == nullptr ? std::string() : std::string(value);
}

bool answersAt(const std::string& socketPath) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  if (socketPath.empty() || socketPath.size() >= sizeof address.sun_path) return false;
  std::memcpy(address.sun_path, socketPath.c_str(), socketPath.size());
  const int descriptor = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  if (descriptor < 0) return false;
  const bool answers =
      connect(descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
  close(descriptor);
  return answers;
}

}  // namespace

TLVirtualMachineStarter::TLVirtualMachineStarter(std::string userDirectory)
    : userDirectory_(std::move(userDirectory)) {
  if (environment("PVM_ROOT").empty()) setenv("PVM_ROOT", kDebianPvmRoot, 1);
  if (environment("PVM_TMP").empty()) setenv("PVM_TMP", userDirectory_.c_str(), 1);
  if (geteuid() == 0) setenv("PVM_ALLOW_ROOT", "1", 0);
}

std::string TLVirtualMachineStarter::addressFile() const {
  const std::string machine = environment("PVM_VMID");
  return fmt::format("{}/pvmd.{}{}", environment("PVM_TMP"), getuid(),
                     machine.empty() ? "" : "." + machine);
}

bool TLVirtualMachineStarter::running() const {
  std::ifstream file(addressFile());
  std::string address;
  if (!std::getline(file, address)) return false;
  if (address.empty() || address.front() != '/') return true;  // a network address: let PVM see
  if (answersAt(address)) return true;
  unlink(addressFile().c_str());
  unlink(address.c_str());
  return false;
}

bool TLVirtualMachineStarter::writeHostFile(const std::string& path,
                                            const std::vector<std::string>& toolDirectories,
                                            std::string& error) const {
  std::string line = "* ep=";
  for (const auto& directory : toolDirectories) {
    if (directory.find_first_of(" \t:#\n") != std::string::npos) continue;
    if (line.size() + directory.size() + 1 > kLongestHostLine) break;
    if (line.back() != '=') line += ':';
    line += directory;
  }
  const int code = hostForm().replaceFile(path, line + "\nlocalhost\n");
  if (code != 0) error = fmt::format("cannot write {}: {}", path, std::strerror(code));
  return code == 0;
}

bool TLVirtualMachineStarter::start(const std::vector<std::string>& toolDirectories,
                                    std::string& error) {
  const std::string hostFile = userDirectory_ + "/virtual-machine.hosts";
  if (!writeHostFile(hostFile, toolDirectories, error)) return false;
  TLProcessOptions options;
  options.ownSession = true;
  options.outputFile = userDirectory_ + "/virtual-machine.log";
  const std::string program = environment("PVM_ROOT") + "/lib/pvmd";
  auto daemon = TLProcess::start({program, hostFile}, options, error);
  if (!daemon) {
    error += ": is the package pvm installed, and PVM_ROOT right?";
    return false;
  }
  const auto deadline = std::chrono::steady_clock::now() + kStartTime;
  while (!running() && daemon->running() && std::chrono::steady_clock::now() < deadline) {
    std::this_thread::sleep_for(kLook);
  }
  if (!running()) {
    error = fmt::format("the virtual machine did not come up: see {}", options.outputFile);
    return false;
  }
  pid_ = daemon->pid();
  daemon->detach();
  return true;
}

void TLVirtualMachineStarter::stop() {
  if (pid_ > 0) requestProcessEnd(pid_);
  pid_ = 0;
}
