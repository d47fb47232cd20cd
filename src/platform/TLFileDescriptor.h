#pragma once

#include <unistd.h>

#include <utility>

/// An open file descriptor of which this object is the only owner.
class TLFileDescriptor {
 public:
  /// Takes `descriptor` over; -1 for none.
  explicit TLFileDescriptor(int descriptor = -1) : descriptor_(descriptor) {}
  /// Takes the other's descriptor over; that one then holds none.
  TLFileDescriptor(TLFileDescriptor&& other) noexcept
      : descriptor_(std::exchange(other.descriptor_, -1)) {}
  /// Exchanges the descriptors; the former one is closed with `other`.
  TLFileDescriptor& operator=(TLFileDescriptor&& other) noexcept {
    std::swap(descriptor_, other.descriptor_);
    return *this;
  }
  ~TLFileDescriptor() { close(); }

  /// True while there is a descriptor.
  bool open() const { return descriptor_ >= 0; }
  /// The descriptor for system calls, still owned here; -1 for none.
  int get() const { return descriptor_; }
  /// Closes it; false when the system reports an error (a late write failure).
  bool close() {
    if (descriptor_ < 0) return true;
    return ::close(std::exchange(descriptor_, -1)) == 0;
  }

 private:
  int descriptor_;
};
