#include <pwd.h>
#include <sys/utsname.h>
#include <unistd.h>

#include <cstdlib>
#include <string>

#include "platform/TLCommandRun.h"
#include "platform/TLIniSettings.h"
#include "platform/TLUnixHost.h"

namespace {

constexpr int kNotExecutable = 126;  // the shell's codes for a command that it can't start
constexpr int kNotFound = 127;

/// The conventions of a UNIX host.
class PosixForm : public TLUnixHost {
 public:
  TLHostKind kind() const override { return TLHostKind::posix; }
  char separator() const override { return '/'; }
  std::string_view programSuffix() const override { return ""; }
  std::string_view scriptSuffix() const override { return ""; }
  std::string toLocal(std::string_view path) const override { return std::string(path); }
  std::string realPath(std::string_view path) const override { return std::string(path); }

  // Between double quotes only these four keep a meaning for a shell.
  std::string quoted(std::string_view name) const override {
    std::string result = "\"";
    for (const char c : name) {
      if (c == '$' || c == '`' || c == '"' || c == '\\') result += '\\';
      result += c;
    }
    return result + '"';
  }

  std::string bare(std::string_view word) const override {
    return word.empty() || isPlain(word) ? std::string(word) : quoted(word);
  }

  std::string executablePath() const override { return realExecutable(); }
  TLSettingsStore& settings() override { return settings_; }
  TLFileCommands fileCommands(std::string_view /*suiteDirectory*/) const override {
    return {"rm ", "rm -rf ", "cp ", "mv -f ", "mkdir "};
  }

  int runRedirected(std::string_view command, std::string_view outputFile, bool& started) override {
    const auto result =
        runToEnd("/bin/sh", {"sh", "-c", std::string(command)}, std::string(outputFile));
    started = result.started && !(isShellRefusal(result.code) && !programExists(command));
    return result.code;
  }

  int runSystem(std::string_view command) override {
    const auto result = runToEnd("/bin/sh", {"sh", "-c", std::string(command)}, {});
    return result.started ? result.code : -1;
  }

  std::string currentDirectory() const override { return realCurrentDirectory(); }
  bool changeDirectory(std::string_view directory) override {
    return chdir(std::string(directory).c_str()) == 0;
  }

  std::string homeDirectory() const override {
    const std::string home = variableOrEmpty("HOME");
    if (!home.empty()) return home;
    const passwd* user = getpwuid(getuid());
    return user == nullptr ? "/" : user->pw_dir;
  }

  std::string architecture() const override {
    const std::string named = variableOrEmpty("PVM_ARCH");
    if (!named.empty()) return named;
    struct utsname system {};
    uname(&system);
    const bool wide = sizeof(void*) > 4;
    std::string name = system.sysname;
    for (char& c : name) {
      if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 32);
    }
    return wide ? name + "64" : name;
  }

 private:
  static bool isPlain(std::string_view word) {
    return word.find_first_not_of(
               "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789._/-+,:=@%") ==
           std::string_view::npos;
  }

  static bool isShellRefusal(int code) { return code == kNotExecutable || code == kNotFound; }

  /// True when the first word of a command names a program that can be started; also when the
  /// word is more than a plain name, about which only the shell knows.
  bool programExists(std::string_view command) const {
    const std::string_view word = command.substr(0, command.find(' '));
    if (!isPlain(word)) return true;
    if (word.find('/') != std::string_view::npos) return isProgram(std::string(word));
    std::string_view rest = std::getenv("PATH") == nullptr ? "" : std::getenv("PATH");
    while (!rest.empty()) {
      const auto end = rest.find(':');
      if (isProgram(std::string(rest.substr(0, end)) + "/" + std::string(word))) return true;
      rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
    }
    return false;
  }

  static bool isProgram(const std::string& path) { return access(path.c_str(), X_OK) == 0; }

  /// $TALVEN_SETTINGS; else the first of the user's, the one beside the installation's root, and
  /// the machine's that exists.
  std::string locateSettings() const {
    const std::string named = variableOrEmpty("TALVEN_SETTINGS");
    if (!named.empty()) return named;
    const std::string root = parent(parent(executablePath()));
    for (const auto& candidate :
         {homeDirectory() + "/.talven/settings.ini", parent(root) + "/settings.ini",
          std::string("/etc/talven/settings.ini")}) {
      if (canRead(candidate)) return candidate;
    }
    return {};
  }

  static std::string parent(const std::string& path) {
    const auto slash = path.rfind('/');
    return slash == std::string::npos ? std::string{} : path.substr(0, slash);
  }

  TLIniSettings settings_{[this] { return locateSettings(); }};
};

}  // namespace

std::unique_ptr<TLHostForm> makePosixForm() {
  return std::make_unique<PosixForm>();
}
