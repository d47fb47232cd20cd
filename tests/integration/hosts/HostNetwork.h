#pragma once

#include <sys/wait.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <set>
#include <string>

/// The hosts alpha (this one), beta and gamma of the script "network", under which the test program
/// runs. All users are root unless a login says "guest".
class HostNetwork {
 public:
  /// The disk of a host, its /mnt, also while nothing else of it can be reached.
  static std::filesystem::path disk(const std::string& host) { return folder() / host / "disk"; }
  /// Lets the shells and the virtual machine of a host find `program` under a plain name.
  static void addProgram(const std::string& host, const std::string& name,
                         const std::filesystem::path& program) {
    const std::filesystem::path place = disk(host) / "programs" / name;
    std::filesystem::remove(place);
    std::filesystem::create_symlink(program, place);
  }
  static void cut(const std::string& host) { order("cut", host); }
  static void heal(const std::string& host) { order("heal", host); }
  static void crash(const std::string& host) { order("crash", host); }

  /// Names in a directory, hidden ones too, each with a blank behind it.
  static std::string names(const std::filesystem::path& directory) {
    std::set<std::string> found;
    for (const auto& entry : std::filesystem::directory_iterator(directory)) {
      found.insert(entry.path().filename());
    }
    std::string text;
    for (const auto& name : found) text += name + ' ';
    return text;
  }

  struct Result {
    int code = -1;
    std::string output;  ///< both outputs
  };
  static Result run(const std::string& command) {
    Result result;
    std::FILE* pipe = popen(("exec 2>&1; " + command).c_str(), "r");
    if (pipe == nullptr) return result;
    std::array<char, 4096> buffer{};
    while (const std::size_t size = fread(buffer.data(), 1, buffer.size(), pipe)) {
      result.output.append(buffer.data(), size);
    }
    const int status = pclose(pipe);
    result.code = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return result;
  }
  static Result on(const std::string& host, const std::string& command) {
    return run("ssh -q " + host + " '" + command + "'");
  }

 private:
  static std::filesystem::path folder() {
    const char* network = std::getenv("NETWORK");
    return network == nullptr ? "/nonexistent" : network;
  }
  static void order(const std::string& what, const std::string& host) {
    std::ofstream(folder() / "orders") << what + ' ' + host + '\n' << std::flush;
    std::ifstream done(folder() / "done");
    std::string line;
    std::getline(done, line);
  }
};
