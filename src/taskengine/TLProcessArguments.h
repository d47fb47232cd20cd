#pragma once

#include <cstdint>
#include <vector>

#include "taskengine/TLProcessArgument.h"
#include "textio/Handle.h"

/// A command line as a list of arguments: this process's own, or the one that a tool is to be
/// started with. The pairs let an option be found by its word and its value be replaced without
/// parsing anything again.
///
/// Copying makes new copies of the entries; entries themselves are shared by Handle.
class TLProcessArguments : public RefCounted {
 public:
  TLProcessArguments() = default;
  /// Parses `argc` words, the program's name included: a word without "-" in front becomes a value
  /// with empty type; one with "-" a type, with the next word as its value unless that has a "-",
  /// too.
  TLProcessArguments(int argc, const char* const* argv);
  /// As assign().
  TLProcessArguments(const TLProcessArguments& other) : RefCounted(other) { assign(other); }
  /// As assign().
  TLProcessArguments& operator=(const TLProcessArguments& other) {
    assign(other);
    return *this;
  }

  /// Replaces the list by new copies of the entries of `other`.
  void assign(const TLProcessArguments& other);

  /// The first entry whose type is exactly `type` sets `value`, answer 1; otherwise 0 and `value`
  /// stays.
  int find(const RWCString& type, RWCString& value) const;

  /// Entries, not words.
  std::int32_t count() const { return static_cast<std::int32_t>(entries_.size()); }
  /// `i` must be below count().
  const Handle<TLProcessArgument>& at(std::int32_t i) const { return entries_[i]; }
  /// Shares an entry, which must not be null.
  void append(const Handle<TLProcessArgument>& argument) { entries_.push_back(argument); }
  /// Adds a new entry.
  void append(const RWCString& type, const RWCString& value) {
    entries_.push_back(makeHandle<TLProcessArgument>(type, value));
  }
  /// Drops all entries; shared ones live on.
  void clear() { entries_.clear(); }

  /// The list itself, to be changed freely.
  std::vector<Handle<TLProcessArgument>>& entries() { return entries_; }
  /// The list, in the order of the command line.
  const std::vector<Handle<TLProcessArgument>>& entries() const { return entries_; }

  /// Empties the list and reads the lines behind "TL_BEGIN process_arguments", its end included.
  /// 1 or 0; the entries before a faulty one are kept.
  int read(TLTextSource& stream);
  /// Writes one block per entry, without the lines around the list.
  void write(TLTextSink& stream) const;

 private:
  std::vector<Handle<TLProcessArgument>> entries_;
};
