#pragma once

#include <memory>
#include <string>

#include "platform/TLFileDescriptor.h"
#include "platform/TLLockFile.h"

/// A lock file on a UNIX system: made exclusively and empty, and kept open under flock and under a
/// record lock, since other tools of the suite use either. A file that stands there while nobody
/// holds it was left by a process that died, and is taken over.
class TLUnixLockFile : public TLLockFile {
 public:
  /// Null when another holder, of this process or of another, has the file, or when it can't be
  /// made. Never waits.
  static std::unique_ptr<TLLockFile> acquire(const std::string& path);

  /// Takes over a lock that acquire() has got; the file is removed with this object.
  TLUnixLockFile(std::string path, TLFileDescriptor file);
  ~TLUnixLockFile() override;

 private:
  std::string path_;
  TLFileDescriptor file_;
};
