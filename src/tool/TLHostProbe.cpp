#include "tool/TLHostProbe.h"

#include <fmt/format.h>

#include <chrono>
#include <filesystem>
#include <optional>
#include <thread>

#include "platform/TLHostForm.h"
#include "platform/TLProcess.h"

namespace {

/// A directory of this process's own, gone with it.
class OutputDirectory {
 public:
  OutputDirectory() {
    std::error_code ignored;
    path_ = std::filesystem::temp_directory_path(ignored) /
            fmt::format("tlctl_hosts_{}", hostForm().processId());
    hostForm().makePrivateDirectory(path_.string());
  }
  ~OutputDirectory() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  OutputDirectory(const OutputDirectory&) = delete;
  OutputDirectory& operator=(const OutputDirectory&) = delete;
  std::string file(std::size_t number) const { return (path_ / std::to_string(number)).string(); }

 private:
  std::filesystem::path path_;
};

std::string remoteShell() {
  const std::string own = hostForm().variableOrEmpty("TALVEN_DIR") + "/bin/tlrsh";
  return hostForm().canRead(own) ? own : "tlrsh";
}

std::string firstLine(const std::string& file) {
  const std::string text = hostForm().readFile(file).value_or("");
  return text.substr(0, text.find_first_of("\r\n"));
}

/// One host being asked.
struct Question {
  std::optional<TLProcess> process;
  std::string output;
};

Question ask(const TLProbedHost& host, const std::string& output, std::string& failure) {
  std::vector<std::string> words = {remoteShell(), "-n"};
  if (!host.login.empty()) words.insert(words.end(), {"-l", host.login});
  words.insert(words.end(), {host.host, "true"});
  TLProcessOptions options;
  options.outputFile = output;
  return {TLProcess::start(words, options, failure), output};
}

std::string answerOf(Question& question) {
  const auto code = question.process->exitCode();
  if (!code) return "no answer in time";
  if (*code == 0) return {};
  const std::string words = firstLine(question.output);
  return words.empty() ? fmt::format("the remote shell ended with {}", *code) : words;
}

}  // namespace

void probeHosts(std::vector<TLProbedHost>& hosts, double seconds) {
  using Clock = std::chrono::steady_clock;
  const OutputDirectory outputs;
  std::vector<Question> questions;
  for (std::size_t i = 0; i < hosts.size(); ++i) {
    questions.push_back(ask(hosts[i], outputs.file(i), hosts[i].failure));
  }
  const auto end = Clock::now() + std::chrono::duration<double>(seconds);
  const auto anyRuns = [&] {
    for (auto& question : questions) {
      if (question.process && question.process->running()) return true;
    }
    return false;
  };
  while (anyRuns() && Clock::now() < end) {
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
  for (std::size_t i = 0; i < hosts.size(); ++i) {
    if (questions[i].process) hosts[i].failure = answerOf(questions[i]);
    if (questions[i].process) questions[i].process->terminate(0.1);
  }
}
