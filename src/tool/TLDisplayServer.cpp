#include "tool/TLDisplayServer.h"

#include <fmt/format.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <fstream>
#include <thread>

#include "platform/TLHostForm.h"
#include "platform/TLProcess.h"

namespace {

constexpr auto kStartTime = std::chrono::seconds(20);
constexpr auto kLook = std::chrono::milliseconds(10);

// Xvfb announces its display number on a descriptor; a file that the shell opens for it serves,
// since the server must outlive this process and may not hold one of its pipes.
std::string firstWord(const std::string& path) {
  std::ifstream file(path);
  std::string word;
  if (!(file >> word) || file.peek() != '\n') return {};
  return word;
}

}  // namespace

bool TLDisplayServer::present() {
  const char* display = std::getenv("DISPLAY");
  return display != nullptr && *display != '\0';
}

bool TLDisplayServer::start(const std::string& privateDirectory, std::string& error) {
  const std::string announce =
      fmt::format("{}/display.{}", privateDirectory, hostForm().processId());
  TLProcessOptions options;
  options.ownSession = true;
  const std::string line =
      "exec Xvfb -displayfd 3 -terminate -screen 0 1280x800x24 -nolisten tcp 3>" +
      hostForm().quoted(announce);
  auto server = TLProcess::start({"/bin/sh", "-c", line}, options, error);
  if (!server) return false;
  const auto deadline = std::chrono::steady_clock::now() + kStartTime;
  std::string number;
  while (number.empty() && server->running() && std::chrono::steady_clock::now() < deadline) {
    std::this_thread::sleep_for(kLook);
    number = firstWord(announce);
  }
  unlink(announce.c_str());
  if (number.empty()) {
    error = "cannot start Xvfb for the daemon's window: install the package xvfb, or set DISPLAY";
    return false;
  }
  setenv("DISPLAY", (":" + number).c_str(), 1);
  pid_ = server->pid();
  server->detach();
  return true;
}

void TLDisplayServer::stop() {
  if (pid_ > 0) requestProcessEnd(pid_);
  pid_ = 0;
}
