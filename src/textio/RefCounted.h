#pragma once

#include <cstdint>

/// Base of all records. A record lives on the heap (or is embedded in its owner) and is held by
/// Handles, which raise and lower `refCount`; the last Handle destroys it. The count is not atomic:
/// records are read, changed and written on one thread. Copying a record's fields never copies its
/// count.
class RefCounted {
 public:
  RefCounted() = default;
  /// A copy starts with no Handle.
  RefCounted(const RefCounted& /*other*/) {}
  /// Leaves the count as it is: the Handles are those of this record.
  RefCounted& operator=(const RefCounted& /*other*/) { return *this; }
  virtual ~RefCounted() = default;

  /// Number of Handles that hold this record.
  std::int32_t refCount() const { return refCount_; }

 private:
  template <class>
  friend class Handle;
  std::int32_t refCount_ = 0;
};
