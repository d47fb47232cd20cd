#pragma once

#include <optional>

#include "textio/RWCString.h"

/// The run file of this host while files of the same names are fetched: saved beside under its
/// name and "tmp", and put back behind.
class TLKeptRunFile {
 public:
  /// Saves `path`, when there is such a file.
  explicit TLKeptRunFile(const RWCString& path);

  /// False when the file is there and could not be saved: nothing may come in its place.
  bool safe() const { return safe_; }
  /// Puts it back. Empty, or a sentence that says where it is left.
  RWCString restore();

 private:
  bool stands(const RWCString& path) const;

  RWCString path_;
  RWCString copy_;
  std::optional<RWCString> bytes_;
  bool safe_ = true;
};
