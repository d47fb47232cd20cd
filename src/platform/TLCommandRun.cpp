#include "platform/TLCommandRun.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>

#include <cerrno>

#include "platform/TLFileDescriptor.h"

extern char** environ;

namespace {

class SpawnActions {
 public:
  SpawnActions() { posix_spawn_file_actions_init(&actions_); }
  SpawnActions(const SpawnActions&) = delete;
  SpawnActions& operator=(const SpawnActions&) = delete;
  ~SpawnActions() { posix_spawn_file_actions_destroy(&actions_); }
  void redirect(int from, int to) { posix_spawn_file_actions_adddup2(&actions_, from, to); }
  const posix_spawn_file_actions_t* get() const { return &actions_; }

 private:
  posix_spawn_file_actions_t actions_;
};

TLCommandResult waitFor(pid_t process) {
  int status = 0;
  while (waitpid(process, &status, 0) < 0) {
    if (errno != EINTR) return {true, errno};
  }
  return {true, WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status)};
}

}  // namespace

TLCommandResult runToEnd(const std::string& program, const std::vector<std::string>& words,
                         const std::string& outputFile) {
  std::vector<char*> arguments;
  for (const auto& word : words) arguments.push_back(const_cast<char*>(word.c_str()));
  arguments.push_back(nullptr);

  SpawnActions actions;
  TLFileDescriptor output;
  if (!outputFile.empty()) {
    output = TLFileDescriptor(::open(outputFile.c_str(),
                                     O_RDWR | O_CREAT | O_TRUNC | O_NOFOLLOW | O_CLOEXEC,
                                     static_cast<mode_t>(0666)));
    if (!output.open()) return {false, errno};
    actions.redirect(output.get(), STDOUT_FILENO);
    actions.redirect(output.get(), STDERR_FILENO);
  }
  pid_t process = 0;
  const int error =
      posix_spawnp(&process, program.c_str(), actions.get(), nullptr, arguments.data(), environ);
  if (error != 0) return {false, error};
  return waitFor(process);
}

std::vector<std::string> splitWin32CommandLine(const std::string& line) {
  std::vector<std::string> words;
  std::string word;
  bool inWord = false;
  bool quoted = false;
  for (std::size_t i = 0; i < line.size(); ++i) {
    const char c = line[i];
    if (!quoted && (c == ' ' || c == '\t')) {
      if (inWord) words.push_back(std::exchange(word, {}));
      inWord = false;
      continue;
    }
    inWord = true;
    if (c == '"') {
      quoted = !quoted;
    } else if (c == '\\') {
      std::size_t end = i;
      while (end < line.size() && line[end] == '\\') ++end;
      const std::size_t count = end - i;
      const bool beforeQuote = end < line.size() && line[end] == '"';
      word.append(beforeQuote ? count / 2 : count, '\\');
      i = end - 1;
      if (beforeQuote && count % 2 == 1) {
        word += '"';
        ++i;
      }
    } else {
      word += c;
    }
  }
  if (inWord) words.push_back(word);
  return words;
}
