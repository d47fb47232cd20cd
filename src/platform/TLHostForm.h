#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/TLLockFile.h"
#include "platform/TLSettingsStore.h"

/// Which conventions the local host follows.
enum class TLHostKind {
  win32,  ///< "\\", ".exe" and ".bat", the registry
  posix   ///< "/", bare program names, an INI file
};

/// The programs by which the suite handles local files; each text is ready to be followed by names
/// and ends in a blank.
struct TLFileCommands {
  std::string remove;         ///< one file
  std::string removeTree;     ///< a directory with all in it
  std::string copy;           ///< One file.
  std::string move;           ///< replaces its target
  std::string makeDirectory;  ///< One level.
};

/// The one port to the host: everything that depends on it goes through the object that
/// `hostForm()` answers. Two forms exist, and both run on Linux. The win32 form speaks of paths
/// with "\\" and drive letters and of ".exe" and ".bat" programs, and translates a path only in the
/// last moment before the real file system sees it (realPath). The posix form is its natural
/// counterpart.
///
/// Operations answer by value and never throw; a path argument is in the form's own notation.
class TLHostForm {
 public:
  virtual ~TLHostForm() = default;

  /// Which of the two conventions this form follows.
  virtual TLHostKind kind() const = 0;

  /// @name Names and paths.
  /// @{
  virtual char separator() const = 0;                  ///< '\\' or '/'
  virtual std::string_view programSuffix() const = 0;  ///< ".exe" or ""
  virtual std::string_view scriptSuffix() const = 0;   ///< ".bat" or ""
  /// Every "/" as the form's own separator (win32: "\\"; posix: unchanged).
  virtual std::string toLocal(std::string_view path) const = 0;
  /// `directory` and `name` joined by exactly one separator.
  std::string join(std::string_view directory, std::string_view name) const;
  /// `path` up to and with its last separator; empty when it has none.
  std::string directoryOf(std::string_view path) const;
  /// `path` behind its last separator.
  std::string nameOf(std::string_view path) const;
  /// The path as the real file system takes it.
  virtual std::string realPath(std::string_view path) const = 0;
  /// A file name in double quotes, as it goes into a command line. The posix form masks what would
  /// keep a meaning for the shell even there, so that the name arrives as data.
  virtual std::string quoted(std::string_view name) const = 0;
  /// A word that stands bare in a command line. The posix form quotes it when it holds more than
  /// letters, digits and "._/-+,:=@%", so that it arrives as one word.
  virtual std::string bare(std::string_view word) const = 0;
  /// @}

  /// @name The installation.
  /// @{

  /// Full path of the running executable, empty when unknown.
  virtual std::string executablePath() const = 0;
  /// The per-machine settings, owned by the form.
  virtual TLSettingsStore& settings() = 0;
  /// The commands of the suite rooted at `suiteDirectory` (posix: the system's own).
  virtual TLFileCommands fileCommands(std::string_view suiteDirectory) const = 0;
  /// An environment variable of this process; none when it isn't set.
  std::optional<std::string> variable(const std::string& name) const;
  /// As above, empty when it isn't set.
  std::string variableOrEmpty(const std::string& name) const;
  /// Sets an environment variable for this process and all that it starts from now on.
  void setVariable(const std::string& name, const std::string& value);
  /// @}

  /// @name Processes.
  /// @{

  /// Runs a command line and waits for it. Standard output and error go to `outputFile`, created
  /// or emptied, unless that name is empty; a symbolic link is refused. Answers the exit code (128
  /// and the signal's number for a process that a signal ended); a start that failed answers an
  /// error code and sets `started` false.
  virtual int runRedirected(std::string_view command, std::string_view outputFile,
                            bool& started) = 0;
  /// Runs a command line by the system's command processor; answers its status, 0 for success.
  virtual int runSystem(std::string_view command) = 0;
  /// Runs `words[0]` with the others as its arguments, no shell between; waits; answers its exit
  /// code, or -1 when it can't be started.
  virtual int runWords(const std::vector<std::string>& words) = 0;
  /// @}

  /// @name Files.
  /// @{

  /// True when a file or directory of this name exists and may be read.
  virtual bool canRead(std::string_view path) const = 0;
  /// True when the name itself is a symbolic link, wherever that leads.
  virtual bool isLink(std::string_view path) const = 0;
  /// True when an existing file can be opened for reading and writing; else `error` is the errno.
  virtual bool canWrite(std::string_view path, int& error) const = 0;
  /// All bytes of a file; none when it can't be opened or read.
  virtual std::optional<std::string> readFile(std::string_view path) const = 0;
  /// The last `longest` bytes of a file, or all of a shorter one. None for what is no regular file.
  virtual std::optional<std::string> readEnd(std::string_view path, std::size_t longest) const = 0;
  /// True when a directory of this name exists, links followed.
  virtual bool isDirectory(std::string_view path) const = 0;
  /// Bytes of a file, links followed; 0 for what is no regular file.
  virtual std::uint64_t fileSize(std::string_view path) const = 0;
  /// Puts `text` in the place of a file: written beside it, synced, renamed over it with the mode
  /// and owner of the old one. On failure the old file stands untouched, nothing is left beside
  /// it, and the answer is the errno (0 for success). An existing file that can't be written is
  /// refused. What is no regular file (a pipe, a terminal) is written to as it is.
  virtual int replaceFile(std::string_view path, std::string_view text) = 0;
  /// Makes one directory; false when it can't be made, also since it is there already.
  virtual bool makeDirectory(std::string_view path) = 0;
  /// As makeDirectory, for this user alone. One that is there already stays as it is.
  virtual bool makePrivateDirectory(std::string_view path) = 0;
  /// True when files can be made in `directory`, which must exist; the empty name is the working
  /// directory.
  virtual bool canMakeFilesIn(std::string_view directory) const = 0;
  /// All names in a directory, "." and ".." included, appended to `names`; nothing when there is
  /// no such directory.
  virtual void listDirectory(std::string_view directory, std::vector<std::string>& names) const = 0;
  /// Working directory of this process; empty when it can't be told.
  virtual std::string currentDirectory() const = 0;
  /// Makes it the working directory of this process; false when that isn't possible.
  virtual bool changeDirectory(std::string_view directory) = 0;
  /// Takes the exclusive lock file `path` without waiting. Null when another process holds it.
  virtual std::unique_ptr<TLLockFile> acquireLock(std::string_view path) = 0;
  /// @}

  /// @name The user and the machine.
  /// @{

  /// The user's own directory, without a separator at its end.
  virtual std::string homeDirectory() const = 0;
  /// The virtual machine's word for this host's architecture ("LINUX64"; win32: "win32").
  virtual std::string architecture() const = 0;
  /// Name of this machine on the network, as the system tells it; empty when it can't.
  virtual std::string hostName() const = 0;
  /// The runtime's pseudo-random number, 0 to 32767 in both forms.
  virtual int randomNumber() = 0;
  /// Number of this process on this host.
  virtual int processId() const = 0;
  /// How many processes of this machine the system has ended for want of memory since it was
  /// started; 0 where it doesn't tell.
  virtual std::int64_t memoryKills() const = 0;
  /// @}
};

/// The form of this process; the posix one unless set.
TLHostForm& hostForm();

/// Makes `kind` the form of this process.
void setHostForm(TLHostKind kind);

/// Puts a form of the caller's own (a test's, a fault-injecting one) in place and answers the
/// former one.
std::unique_ptr<TLHostForm> exchangeHostForm(std::unique_ptr<TLHostForm> form);

/// A form for a UNIX host, this one.
std::unique_ptr<TLHostForm> makePosixForm();

/// What a win32 form takes from elsewhere when it doesn't run on such a host.
struct TLWin32Setup {
  /// The real directory that stands for the drive "C:" and for paths without a drive that begin
  /// with "\\"; empty means "/". Another drive is the directory of its name in it ("D:").
  std::string root;
  /// The settings; null for an empty TLMemorySettings.
  std::shared_ptr<TLSettingsStore> settings;
  /// What executablePath answers; empty for the real path in the form's notation.
  std::string executable;
};

/// A form that speaks as on a Windows host, with what it can't ask such a host for.
std::unique_ptr<TLHostForm> makeWin32Form(TLWin32Setup setup);
/// The same with only its drives' directory told.
std::unique_ptr<TLHostForm> makeWin32Form(std::string root = {});
