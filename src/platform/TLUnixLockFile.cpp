#include "platform/TLUnixLockFile.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

#include <cerrno>
#include <utility>

namespace {

constexpr mode_t kMode = 0666;
constexpr int kMostTries = 100;  // each lost to a holder that released in between

bool takeRecordLock(int file) {
  struct flock lock {};
  lock.l_type = F_WRLCK;
  lock.l_whence = SEEK_SET;
#ifdef F_OFD_SETLK
  // Bound to the open file, not to the process: another descriptor of this process on the same
  // file, opened and closed, does not drop it. Excludes classic record locks all the same.
  return fcntl(file, F_OFD_SETLK, &lock) == 0;
#else
  return fcntl(file, F_SETLK, &lock) == 0;
#endif
}

/// True when `path` still names the file behind the descriptor.
bool stillNamed(int file, const std::string& path) {
  struct stat opened {};
  struct stat named {};
  return fstat(file, &opened) == 0 && stat(path.c_str(), &named) == 0 &&
         opened.st_dev == named.st_dev && opened.st_ino == named.st_ino;
}

TLFileDescriptor openLockFile(const std::string& path) {
  TLFileDescriptor made(::open(path.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, kMode));
  if (made.open() || errno != EEXIST) return made;
  return TLFileDescriptor(::open(path.c_str(), O_RDWR | O_CLOEXEC));
}

}  // namespace

std::unique_ptr<TLLockFile> TLUnixLockFile::acquire(const std::string& path) {
  for (int i = 0; i < kMostTries; ++i) {
    TLFileDescriptor file = openLockFile(path);
    if (!file.open()) {
      if (errno == ENOENT || errno == EEXIST) {
        if (errno == ENOENT && i > 0) return nullptr;  // no such directory
        continue;                                      // gone between the two opens
      }
      return nullptr;
    }
    if (flock(file.get(), LOCK_EX | LOCK_NB) != 0 || !takeRecordLock(file.get())) return nullptr;
    if (!stillNamed(file.get(), path)) continue;  // its holder removed it before we got the lock
    if (ftruncate(file.get(), 0) != 0) return nullptr;
    return std::make_unique<TLUnixLockFile>(path, std::move(file));
  }
  return nullptr;
}

TLUnixLockFile::TLUnixLockFile(std::string path, TLFileDescriptor file)
    : path_(std::move(path)), file_(std::move(file)) {}

// Removed while still held: nobody can take the file over and then lose it.
TLUnixLockFile::~TLUnixLockFile() {
  if (stillNamed(file_.get(), path_)) unlink(path_.c_str());
}
