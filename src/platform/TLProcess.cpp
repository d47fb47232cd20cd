#include "platform/TLProcess.h"

#include <fcntl.h>
#include <linux/close_range.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <thread>
#include <utility>

namespace {

// Everything the child needs, laid out before the fork: between fork and exec only calls that are
// safe in a child of a threaded process are made.
struct ChildPlan {
  std::vector<char*> words;
  std::vector<std::string> environmentTexts;
  std::vector<char*> environment;
  const char* outputFile;
  const char* directory;
  bool ownSession;
  int channel;
};

ChildPlan makePlan(const std::vector<std::string>& words, const TLProcessOptions& options) {
  ChildPlan plan;
  for (const auto& word : words) plan.words.push_back(const_cast<char*>(word.c_str()));
  plan.words.push_back(nullptr);
  for (char** entry = environ; *entry != nullptr; ++entry) {
    const std::string text(*entry);
    if (!options.environment.contains(text.substr(0, text.find('=')))) {
      plan.environmentTexts.push_back(text);
    }
  }
  for (const auto& [name, value] : options.environment) {
    plan.environmentTexts.push_back(name + "=" + value);
  }
  for (auto& text : plan.environmentTexts) plan.environment.push_back(text.data());
  plan.environment.push_back(nullptr);
  plan.outputFile = options.outputFile.empty() ? "/dev/null" : options.outputFile.c_str();
  plan.directory = options.directory.empty() ? nullptr : options.directory.c_str();
  plan.ownSession = options.ownSession;
  plan.channel = options.channel;
  return plan;
}

[[noreturn]] void runChild(const ChildPlan& plan, int report) {
  if (plan.ownSession) setsid();
  const int input = open("/dev/null", O_RDONLY);
  const int output = open(plan.outputFile, O_WRONLY | O_CREAT | O_APPEND, 0600);
  if (input >= 0) dup2(input, 0);
  if (output >= 0) {
    dup2(output, 1);
    dup2(output, 2);
  }
  if (plan.channel >= 0) {
    dup2(plan.channel, 0);
    dup2(plan.channel, 1);
    close_range(3, ~0U, CLOSE_RANGE_CLOEXEC);
  }
  if (plan.directory == nullptr || chdir(plan.directory) == 0) {
    execvpe(plan.words[0], plan.words.data(), plan.environment.data());
  }
  const int error = errno;
  [[maybe_unused]] const auto written = write(report, &error, sizeof error);
  _exit(127);
}

int exitCodeOf(int status) {
  return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

}  // namespace

TLProcess::TLProcess(TLProcess&& other) noexcept
    : pid_(std::exchange(other.pid_, 0)), exitCode_(std::exchange(other.exitCode_, {})) {}

TLProcess& TLProcess::operator=(TLProcess&& other) noexcept {
  std::swap(pid_, other.pid_);
  std::swap(exitCode_, other.exitCode_);
  return *this;
}

TLProcess::~TLProcess() {
  if (pid_ > 0) terminate();
}

std::optional<TLProcess> TLProcess::start(const std::vector<std::string>& words,
                                          const TLProcessOptions& options, std::string& error) {
  const ChildPlan plan = makePlan(words, options);
  std::array<int, 2> report{};
  if (pipe2(report.data(), O_CLOEXEC) != 0) {
    error = std::strerror(errno);
    return std::nullopt;
  }
  const pid_t pid = fork();
  if (pid == 0) runChild(plan, report[1]);
  const int forkError = errno;
  close(report[1]);
  int childError = pid < 0 ? forkError : 0;
  if (pid > 0 && read(report[0], &childError, sizeof childError) == sizeof childError) {
    waitpid(pid, nullptr, 0);
  }
  close(report[0]);
  if (childError != 0) {
    error = words[0] + ": " + std::strerror(childError);
    return std::nullopt;
  }
  TLProcess process;
  process.pid_ = pid;
  return process;
}

bool TLProcess::running() {
  if (pid_ <= 0 || exitCode_) return false;
  int status = 0;
  if (waitpid(pid_, &status, WNOHANG) == 0) return true;
  exitCode_ = exitCodeOf(status);
  return false;
}

std::optional<int> TLProcess::exitCode() {
  running();
  return exitCode_;
}

void TLProcess::terminate(double graceSeconds) {
  using Clock = std::chrono::steady_clock;
  if (!running()) return;
  kill(pid_, SIGTERM);
  const auto deadline = Clock::now() + std::chrono::duration<double>(graceSeconds);
  while (running() && Clock::now() < deadline) {
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
  if (!running()) return;
  kill(pid_, SIGKILL);
  int status = 0;
  waitpid(pid_, &status, 0);
  exitCode_ = exitCodeOf(status);
}

bool processExists(int pid) {
  return pid > 0 && (kill(pid, 0) == 0 || errno == EPERM);
}

bool requestProcessEnd(int pid) {
  return pid > 0 && kill(pid, SIGTERM) == 0;
}
