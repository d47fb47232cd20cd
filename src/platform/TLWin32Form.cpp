#include <unistd.h>

#include <algorithm>
#include <string>
#include <utility>

#include "platform/TLCommandRun.h"
#include "platform/TLMemorySettings.h"
#include "platform/TLUnixHost.h"

namespace {

/// The conventions of a Windows host over the real file system of a UNIX one.
class Win32Form : public TLUnixHost {
 public:
  explicit Win32Form(TLWin32Setup setup) : setup_(std::move(setup)) {
    if (!setup_.settings) setup_.settings = std::make_shared<TLMemorySettings>();
    while (setup_.root.ends_with('/')) setup_.root.pop_back();
  }

  TLHostKind kind() const override { return TLHostKind::win32; }
  char separator() const override { return '\\'; }
  std::string_view programSuffix() const override { return ".exe"; }
  std::string_view scriptSuffix() const override { return ".bat"; }

  std::string toLocal(std::string_view path) const override {
    std::string result(path);
    std::replace(result.begin(), result.end(), '/', '\\');
    return result;
  }

  std::string realPath(std::string_view path) const override {
    std::string real(path);
    std::replace(real.begin(), real.end(), '\\', '/');
    char drive = drive_;
    const bool hasDrive = real.size() >= 2 && real[1] == ':' && isLetter(real[0]);
    if (hasDrive) {
      drive = upper(real[0]);
      real.erase(0, 2);
    }
    if (!hasDrive && !real.starts_with('/')) return real;  // relative to the working directory
    if (!real.starts_with('/')) real.insert(0, "/");
    if (underRoot(real)) return real;  // already real: names of this machine's own (TMPDIR ...)
    const std::string base = drive == 'C' ? setup_.root : setup_.root + "/" + drive + ":";
    return base + real;
  }

  std::string quoted(std::string_view name) const override { return '"' + std::string(name) + '"'; }

  std::string bare(std::string_view word) const override { return std::string(word); }

  std::string executablePath() const override {
    return setup_.executable.empty() ? fromReal(realExecutable()) : setup_.executable;
  }
  TLSettingsStore& settings() override { return *setup_.settings; }
  TLFileCommands fileCommands(std::string_view suiteDirectory) const override {
    const std::string bin = std::string(suiteDirectory) + "\\bin\\";
    return {bin + "rm.exe ", bin + "rm.exe -rf ", bin + "cp.exe ", bin + "mv.exe -f ",
            bin + "mkdir.exe "};
  }

  int runRedirected(std::string_view command, std::string_view outputFile, bool& started) override {
    const auto words = splitWin32CommandLine(std::string(command));
    const auto result = words.empty()
                            ? TLCommandResult{}
                            : runToEnd(realPath(words.front()), words,
                                       outputFile.empty() ? std::string{} : realPath(outputFile));
    started = result.started;
    return result.code;
  }

  int runSystem(std::string_view command) override {
    return runWords(splitWin32CommandLine(std::string(command)));
  }

  std::string currentDirectory() const override { return fromReal(realCurrentDirectory()); }
  bool changeDirectory(std::string_view directory) override {
    const bool onlyDrive = directory.size() == 2 && directory[1] == ':' && isLetter(directory[0]);
    if (onlyDrive) {
      drive_ = upper(directory[0]);
      return true;
    }
    return chdir(realPath(directory).c_str()) == 0;
  }

  std::string homeDirectory() const override {
    if (const auto home = variable("HOME")) return *home;
    const auto drive = variable("HOMEDRIVE");
    const auto path = variable("HOMEPATH");
    return drive && path ? *drive + *path : "C:";
  }
  std::string architecture() const override { return "win32"; }

 private:
  static bool isLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }
  static char upper(char c) { return c >= 'a' ? static_cast<char>(c - 32) : c; }

  bool underRoot(const std::string& real) const {
    return !setup_.root.empty() && (real == setup_.root || real.starts_with(setup_.root + "/"));
  }

  /// A real path in this form's notation.
  std::string fromReal(std::string real) const {
    if (underRoot(real)) real.erase(0, setup_.root.size());
    return std::string(1, drive_) + ":" + toLocal(real);
  }

  TLWin32Setup setup_;
  char drive_ = 'C';
};

}  // namespace

std::unique_ptr<TLHostForm> makeWin32Form(TLWin32Setup setup) {
  return std::make_unique<Win32Form>(std::move(setup));
}

std::unique_ptr<TLHostForm> makeWin32Form(std::string root) {
  return makeWin32Form(TLWin32Setup{std::move(root), nullptr, {}});
}
