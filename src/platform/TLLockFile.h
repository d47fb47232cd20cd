#pragma once

/// A held lock file. Destroying it releases the lock and removes the file; the death of the process
/// releases it as well.
class TLLockFile {
 public:
  virtual ~TLLockFile() = default;
};
