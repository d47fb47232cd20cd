#pragma once

#include <unistd.h>

#include <utility>

/// An open file descriptor of which this object is the only owner.
class TLFileDescriptor {
 public:
  /// Takes `descriptor` over; -1 for none.
  explicit TLFileDescriptor(int descriptor = -1) : descriptor_(descriptor) {}
  TLFileDescriptor(TLFileDescriptor&& other) noexcept : descriptor_(std::exchange(other.descriptor_, -1)) {}
  TLFileDescriptor& operator=(TLFileDescriptor&& other) noexcept {
    std::swap(descriptor_, other.descriptor_);
    return *this;
  }
  ~TLFileDescriptor() { close(); }

  bool open() const { return descriptor_ >= 0; }
  int get() const { return descriptor_; }
  /// Closes it; false when the system reports an error (a late write failure).
  bool close() {
    if (descriptor_ < 0) return true;
    return ::close(std::exchange(descriptor_, -1)) == 0;
  }

 private:
  int descriptor_;
};
