#include "launching/TLCommands.h"

#include <array>
#include <memory>
#include <string>

#include "launching/TLPathText.h"
#include "session/TLScript.h"

namespace {

constexpr std::size_t kLongestHostName = 200;

struct CommandTable {
  TLFileCommands commands;
  int users = 0;
};

CommandTable& commandTable() {
  static CommandTable table;
  return table;
}

TLCopyReport& copyReport() {
  static TLCopyReport report;
  return report;
}

bool isPosix() {
  return hostForm().kind() == TLHostKind::posix;
}

RWCString withoutDomain(const RWCString& host) {
  return host.substr(0, host.find('.'));
}

bool isThisHost(const RWCString& host) {
  return withoutDomain(host) == withoutDomain(hostForm().hostName().substr(0, kLongestHostName));
}

/// A program of the installation as the first word of a command.
RWCString suiteProgram(const char* name) {
  TLHostForm& form = hostForm();
  const std::string bin = std::string(1, form.separator()) + "bin" + form.separator();
  return form.bare(form.variableOrEmpty("TALVEN_DIR") + bin + name +
                   std::string(form.scriptSuffix()));
}

// ---- words of a copy -------------------------------------------------------------------------

/// Characters that a shell would act on and that none of the masking rules knows.
bool holdsActiveCharacter(const RWCString& path) {
  return path.find_first_of("$;\"`\\<>|\n\t") != RWCString::npos;
}

/// The last "*" stays outside of the quotes.
RWCString quotedWithStar(const RWCString& path) {
  if (!path.ends_with('*')) return hostForm().quoted(path);
  return hostForm().quoted(path.substr(0, path.size() - 1)) + '*';
}

RWCString farUnixPath(const RWCString& path) {
  if (isPosix() && holdsActiveCharacter(path)) return quotedWithStar(maskForFarShell(path, true));
  return quoteWithStar(escapeForRemoteUnix(path));
}

RWCString farWin32Path(const RWCString& path) {
  RWCString name = path;
  // No name of such a host holds these, and a shell on the way would act on them.
  if (isPosix()) std::erase_if(name, [](char c) { return c == '"' || c == '\n'; });
  RWCString result = quoteWithStar(escapeForShell(name));
  toBackslashes(result);
  if (!isPosix()) return result;
  for (std::size_t i = result.find('`'); i != RWCString::npos; i = result.find('`', i + 2)) {
    result.insert(i, 1, '\\');
  }
  // The quote behind a directory's last backslash has to end the word.
  if (result.ends_with("\\\"*")) result.insert(result.size() - 2, 1, '\\');
  return result;
}

RWCString localPath(const RWCString& path) {
  return isPosix() ? quotedWithStar(path) : quoteWithStar(escapeForShell(path));
}

RWCString pathWord(const RWCString& host, const RWCString& path, const RWCString& system) {
  if (host.empty()) return localPath(path);
  return system == "UNIX" ? farUnixPath(path) : farWin32Path(path);
}

/// The local side without its drive, whose colon would read as the end of a host's name: the
/// process moves to that drive. Where there are no drives, a colon only needs a "/" before it.
RWCString withoutDrive(const RWCString& path) {
  const auto colon = path.find(':');
  if (colon == RWCString::npos) return path;
  if (isPosix()) return path.find('/') < colon ? path : "./" + path;
  hostForm().changeDirectory(path.substr(0, colon + 1));
  const auto end = path.find(':', colon + 1);
  return path.substr(colon + 1, end == RWCString::npos ? end : end - colon - 1);
}

RWCString cleaned(const RWCString& path, bool local) {
  const bool plain = local && isPosix();  // a backslash is a letter like others there
  return stripTrailingSlashes(plain ? path : collapseBackslashes(path));
}

/// Where a copy tool says how it went. Another process of the same user that copies at the moment
/// has the usual file: this one's is then its own.
class CopyOutput {
 public:
  CopyOutput()
      : lock_(hostForm().acquireLock(path("rcp.lock"))),
        file_(path(lock_ ? "rcp.out" : "rcp.out" + std::to_string(hostForm().processId()))) {}

  const RWCString& file() const { return file_; }
  /// What it says is all that tells how a copy ended: without a file to say it in, it failed.
  void keepReport() const {
    TLCopyReport& report = copyReport();
    const auto words = hostForm().readFile(file_);
    report.words = words.value_or("the copy tool could not be run");
    report.failed = !words || (!words->empty() && words->front() != '\n');
  }

 private:
  static RWCString path(const RWCString& name) {
    return hostForm().variableOrEmpty("TMP_DIR") + hostForm().separator() + name;
  }

  std::unique_ptr<TLLockFile> lock_;
  RWCString file_;
};

void runCopy(const char* options, const RWCString& srcHost, const RWCString& srcPath,
             const RWCString& dstHost, const RWCString& dstPath, const RWCString& system,
             const CopyOutput& output) {
  RWCString source = cleaned(srcPath, srcHost.empty());
  RWCString target = cleaned(dstPath, dstHost.empty());
  RWCString& local = srcHost.empty() ? source : target;
  local = withoutDrive(local);
  if (isPosix() && local.starts_with('-')) local.insert(0, "./");  // no option
  RWCString command = suiteProgram("tlrcp") + options;
  if (!srcHost.empty()) command += hostForm().bare(srcHost) + ":";
  command += pathWord(srcHost, source, system) + " ";
  if (!dstHost.empty()) command += hostForm().bare(dstHost) + ":";
  command += pathWord(dstHost, target, system) + " ";
  runRedirected(stripTrailingSlashes(command), output.file());
  output.keepReport();
}

// ---- local files -----------------------------------------------------------------------------

/// A name as a word of a local file command: one that a program would take for an option gets its
/// directory in front.
RWCString fileWord(const RWCString& path) {
  if (isPosix() && path.starts_with('-')) return hostForm().quoted("./" + path);
  return hostForm().quoted(path);
}

int runFileCommand(const RWCString& line) {
  return hostForm().runSystem(hostForm().toLocal(line));
}

}  // namespace

void initFileCommands() {
  if (commandTable().users++ > 0) return;
  commandTable().commands = hostForm().fileCommands(hostForm().variableOrEmpty("TALVEN_DIR"));
}

const TLFileCommands& fileCommandTable() {
  return commandTable().commands;
}

int runRedirected(const RWCString& command, const RWCString& outputFile) {
  bool started = false;
  const int code = hostForm().runRedirected(command, outputFile, started);
  if (!started) showError("Warning: the execution of the command:" + command + " failed");
  return code;
}

int remoteExec(const RWCString& host, const RWCString& command, const RWCString& login,
               const RWCString& outputFile) {
  if (isThisHost(host)) return runRedirected(command, outputFile);
  TLHostForm& form = hostForm();
  RWCString line = suiteProgram("tlrsh") + " ";
  if (!login.empty()) line += "-l " + form.bare(login) + " ";
  line += form.bare(host) + " " + form.quoted(command);
  return runRedirected(line, outputFile);
}

bool readsWin32Words(const RWCString& host, bool win32) {
  return win32 && !(isPosix() && isThisHost(host));
}

RWCString wordForRemoteExec(const RWCString& host, const RWCString& path, bool win32) {
  return wordForHost(path, readsWin32Words(host, win32));
}

int remoteCopy(const RWCString& srcHost, const RWCString& srcPath, const RWCString& dstHost,
               const RWCString& dstPath, const RWCString& system) {
  initFileCommands();
  const CopyOutput output;
  runCopy(" -b ", srcHost, srcPath, dstHost, dstPath, system, output);
  if (hostForm().canRead(output.file())) {
    runRedirected(fileCommandTable().remove + hostForm().bare(output.file()), {});
  }
  return copyReport().failed ? 1 : 0;
}

const TLCopyReport& lastCopyReport() {
  return copyReport();
}

int remoteCopyTree(const RWCString& srcHost, const RWCString& srcPath, const RWCString& dstHost,
                   const RWCString& dstPath, const RWCString& system) {
  runCopy(" -b -r ", srcHost, srcPath, dstHost, dstPath, system, CopyOutput());
  return 1;
}

void copyLocal(const RWCString& src, const RWCString& dst) {
  initFileCommands();
  RWCString target = stripTrailingSlashes(dst);
  if (!isPosix() && target.ends_with(':')) target += "\\\\";
  runFileCommand(fileCommandTable().copy + fileWord(stripTrailingSlashes(src)) + " " +
                 fileWord(target));
}

void moveLocal(const RWCString& src, const RWCString& dst) {
  initFileCommands();
  runFileCommand(fileCommandTable().move + fileWord(stripTrailingSlashes(src)) + " " +
                 fileWord(stripTrailingSlashes(dst)));
}

void listDirectory(const RWCString& dir, std::vector<RWCString>& names) {
  hostForm().listDirectory(dir, names);
}

const char* currentDirectory() {
  static std::array<char, 1026> buffer;
  buffer.fill('\0');
  const std::string directory = hostForm().currentDirectory();
  directory.copy(buffer.data(), buffer.size() - 1);
  return buffer.data();
}
