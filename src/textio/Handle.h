#pragma once

#include <cstddef>
#include <utility>

#include "textio/RefCounted.h"

/// Shared ownership of one record, which may be none. Making or copying a Handle counts one up;
/// assigning takes the new record before it lets the old one go, so that self-assignment is safe;
/// letting the last one go deletes the record.
template <class T>
class Handle {
 public:
  Handle() = default;
  /// None.
  Handle(std::nullptr_t) {}  // NOLINT(google-explicit-constructor)
  /// Shares `record`, which must live on the heap; null is none.
  Handle(T* record) : record_(record) { take(); }  // NOLINT(google-explicit-constructor)
  /// Shares the other's record.
  Handle(const Handle& other) : record_(other.record_) { take(); }
  /// Takes the other's record over; that one then holds none.
  Handle(Handle&& other) noexcept : record_(std::exchange(other.record_, nullptr)) {}
  /// Shares the record of a derived class.
  template <class U>
  Handle(const Handle<U>& other) : record_(other.get()) {  // NOLINT(google-explicit-constructor)
    take();
  }
  ~Handle() { release(); }

  /// Shares or takes over the other's record, then lets the former one go.
  Handle& operator=(Handle other) noexcept {
    std::swap(record_, other.record_);
    return *this;
  }

  /// The record, still shared; null for none.
  T* get() const { return record_; }
  /// The record, which must be there.
  T& operator*() const { return *record_; }
  /// Its members; it must be there.
  T* operator->() const { return record_; }
  /// True when there is a record.
  explicit operator bool() const { return record_ != nullptr; }

  /// Lets the record go and holds none.
  void reset() {
    release();
    record_ = nullptr;
  }

  /// True for the same record (not equal ones), or for none in both.
  friend bool operator==(const Handle& a, const Handle& b) { return a.record_ == b.record_; }
  /// True when there is none.
  friend bool operator==(const Handle& a, std::nullptr_t) { return a.record_ == nullptr; }

 private:
  static RefCounted& base(T* record) { return *record; }
  void take() {
    if (record_ != nullptr) ++base(record_).refCount_;
  }
  void release() {
    if (record_ != nullptr && --base(record_).refCount_ == 0) delete record_;
  }

  T* record_ = nullptr;
};

/// A new record in its first Handle.
template <class T, class... Args>
Handle<T> makeHandle(Args&&... args) {
  return Handle<T>(new T(std::forward<Args>(args)...));
}
