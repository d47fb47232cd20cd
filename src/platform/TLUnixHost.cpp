#include "platform/TLUnixHost.h"

#include <dirent.h>
#include <fcntl.h>
#include <limits.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <string_view>

#include "platform/TLCommandRun.h"
#include "platform/TLFileDescriptor.h"
#include "platform/TLUnixLockFile.h"

namespace {

constexpr int kLargestRandom = 32767;
constexpr mode_t kNewFile = 0666;
constexpr mode_t kNewDirectory = 0777;
constexpr mode_t kPrivateDirectory = 0700;

int writeAll(int file, std::string_view text) {
  while (!text.empty()) {
    const ssize_t written = ::write(file, text.data(), text.size());
    if (written < 0) {
      if (errno == EINTR) continue;
      return errno;
    }
    text.remove_prefix(static_cast<std::size_t>(written));
  }
  return 0;
}

/// The file behind `path`, links followed, so that a link stays a link; `path` itself when there
/// is none yet.
std::string behindLinks(const std::string& path) {
  std::array<char, PATH_MAX> resolved{};
  if (realpath(path.c_str(), resolved.data()) == nullptr) return path;
  return resolved.data();
}

/// A name in the directory of `path` that no other process forms.
std::string temporaryBeside(const std::string& path) {
  static unsigned counter = 0;
  const auto slash = path.rfind('/');
  const std::string directory = slash == std::string::npos ? "" : path.substr(0, slash + 1);
  return directory + ".tl" + std::to_string(getpid()) + "_" + std::to_string(++counter) + ".tmp";
}

int writeThrough(const std::string& path, std::string_view text) {
  TLFileDescriptor file(::open(path.c_str(), O_WRONLY | O_TRUNC | O_CLOEXEC));
  if (!file.open()) return errno;
  const int error = writeAll(file.get(), text);
  if (error != 0) return error;
  return file.close() ? 0 : errno;
}

/// Fills the new file and gives it the mode and owner of `old`, when there is one. A foreign owner
/// that this user may not give stays this user.
int fillTemporary(TLFileDescriptor& file, std::string_view text, const struct stat* old) {
  int error = writeAll(file.get(), text);
  if (error != 0) return error;
  if (old != nullptr) {
    if (fchown(file.get(), old->st_uid, old->st_gid) != 0 && errno != EPERM) return errno;
    if (fchmod(file.get(), old->st_mode & 07777) != 0) return errno;
  }
  if (fsync(file.get()) != 0) return errno;
  return file.close() ? 0 : errno;
}

int replaceRegular(const std::string& path, std::string_view text, const struct stat* old) {
  const std::string temporary = temporaryBeside(path);
  unlink(temporary.c_str());  // left by an earlier process of the same number
  TLFileDescriptor file(
      ::open(temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, kNewFile));
  if (!file.open()) return errno;
  int error = fillTemporary(file, text, old);
  if (error == 0 && rename(temporary.c_str(), path.c_str()) != 0) error = errno;
  if (error != 0) unlink(temporary.c_str());
  return error;
}

}  // namespace

int TLUnixHost::runWords(const std::vector<std::string>& words) {
  if (words.empty()) return -1;
  const auto result = runToEnd(realPath(words.front()), words, {});
  return result.started ? result.code : -1;
}

bool TLUnixHost::canRead(std::string_view path) const {
  return TLFileDescriptor(::open(realPath(path).c_str(), O_RDONLY | O_CLOEXEC)).open();
}

bool TLUnixHost::isLink(std::string_view path) const {
  struct stat about {};
  return lstat(realPath(path).c_str(), &about) == 0 && S_ISLNK(about.st_mode);
}

bool TLUnixHost::canMakeFilesIn(std::string_view directory) const {
  return ::access(directory.empty() ? "." : realPath(directory).c_str(), W_OK | X_OK) == 0;
}

bool TLUnixHost::canWrite(std::string_view path, int& error) const {
  const TLFileDescriptor file(::open(realPath(path).c_str(), O_RDWR | O_CLOEXEC));
  error = file.open() ? 0 : errno;
  return file.open();
}

std::optional<std::string> TLUnixHost::readFile(std::string_view path) const {
  const TLFileDescriptor file(::open(realPath(path).c_str(), O_RDONLY | O_CLOEXEC));
  struct stat about {};
  if (!file.open() || fstat(file.get(), &about) != 0 || S_ISDIR(about.st_mode)) return std::nullopt;
  std::string text;
  std::size_t filled = 0;
  // One byte more than the size tells the end of a file of known size in the second read.
  text.resize(static_cast<std::size_t>(about.st_size) + 1);
  while (true) {
    if (filled == text.size()) text.resize(text.size() * 2);
    const ssize_t count = ::read(file.get(), text.data() + filled, text.size() - filled);
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return std::nullopt;
    if (count == 0) break;
    filled += static_cast<std::size_t>(count);
  }
  text.resize(filled);
  return text;
}

std::optional<std::string> TLUnixHost::readEnd(std::string_view path, std::size_t longest) const {
  // Without waiting: a pipe's other end may be nobody's.
  const TLFileDescriptor file(::open(realPath(path).c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
  struct stat about {};
  if (!file.open() || fstat(file.get(), &about) != 0 || !S_ISREG(about.st_mode)) {
    return std::nullopt;
  }
  const auto size = static_cast<std::size_t>(about.st_size);
  std::string text(std::min(size, longest), '\0');
  const auto count =
      ::pread(file.get(), text.data(), text.size(), static_cast<off_t>(size - text.size()));
  if (count < 0) return std::nullopt;
  text.resize(static_cast<std::size_t>(count));
  return text;
}

bool TLUnixHost::isDirectory(std::string_view path) const {
  struct stat about {};
  return stat(realPath(path).c_str(), &about) == 0 && S_ISDIR(about.st_mode);
}

std::uint64_t TLUnixHost::fileSize(std::string_view path) const {
  struct stat about {};
  const bool regular = stat(realPath(path).c_str(), &about) == 0 && S_ISREG(about.st_mode);
  return regular ? static_cast<std::uint64_t>(about.st_size) : 0;
}

int TLUnixHost::replaceFile(std::string_view path, std::string_view text) {
  const std::string target = behindLinks(realPath(path));
  struct stat old {};
  if (stat(target.c_str(), &old) != 0) {
    return errno == ENOENT ? replaceRegular(target, text, nullptr) : errno;
  }
  if (S_ISDIR(old.st_mode)) return EISDIR;
  if (!S_ISREG(old.st_mode)) return writeThrough(target, text);
  if (faccessat(AT_FDCWD, target.c_str(), W_OK, AT_EACCESS) != 0) return errno;
  return replaceRegular(target, text, &old);
}

bool TLUnixHost::makeDirectory(std::string_view path) {
  return mkdir(realPath(path).c_str(), kNewDirectory) == 0;
}

bool TLUnixHost::makePrivateDirectory(std::string_view path) {
  return mkdir(realPath(path).c_str(), kPrivateDirectory) == 0;
}

void TLUnixHost::listDirectory(std::string_view directory, std::vector<std::string>& names) const {
  const std::unique_ptr<DIR, int (*)(DIR*)> open(opendir(realPath(directory).c_str()), &closedir);
  if (!open) return;
  while (const dirent* entry = readdir(open.get())) names.emplace_back(entry->d_name);
}

std::unique_ptr<TLLockFile> TLUnixHost::acquireLock(std::string_view path) {
  return TLUnixLockFile::acquire(realPath(path));
}

std::string TLUnixHost::hostName() const {
  std::array<char, HOST_NAME_MAX + 1> name{};
  if (gethostname(name.data(), name.size() - 1) != 0) return {};
  return name.data();
}

int TLUnixHost::randomNumber() {
  return std::uniform_int_distribution<int>(0, kLargestRandom)(generator_);
}

std::int64_t TLUnixHost::memoryKills() const {
  // Read in one go: this is done at each start of a step.
  constexpr std::string_view kName = "\noom_kill ";
  std::array<char, 16384> counters{};
  const TLFileDescriptor file(::open("/proc/vmstat", O_RDONLY | O_CLOEXEC));
  const ssize_t size = file.open() ? ::read(file.get(), counters.data(), counters.size() - 1) : 0;
  const std::string_view text(counters.data(),
                              static_cast<std::size_t>(std::max<ssize_t>(size, 0)));
  const auto found = text.find(kName);
  return found == std::string_view::npos ? 0 : std::atoll(text.data() + found + kName.size());
}

int TLUnixHost::processId() const {
  return static_cast<int>(getpid());
}

std::string TLUnixHost::realExecutable() {
  std::array<char, PATH_MAX> path{};
  const ssize_t length = readlink("/proc/self/exe", path.data(), path.size() - 1);
  return length <= 0 ? std::string{} : std::string(path.data(), static_cast<std::size_t>(length));
}

std::string TLUnixHost::realCurrentDirectory() {
  std::array<char, PATH_MAX> path{};
  return getcwd(path.data(), path.size()) == nullptr ? std::string{} : path.data();
}
