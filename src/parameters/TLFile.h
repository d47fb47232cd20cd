#pragma once

#include <string_view>

#include "textio/RWCString.h"

/// A path, taken apart once when it is assigned. Both "/" and "\\" separate its parts. The path is
/// kept in the notation of the local host (the win32 form has "\\" where a file says "/").
class TLFile {
 public:
  /// The file that stands for none.
  TLFile() = default;
  /// Takes `path` apart; a path without a separator has no directory.
  explicit TLFile(std::string_view path);
  /// A path on another host, kept in that host's notation.
  static TLFile onOtherHost(std::string_view path);

  /// The whole path.
  const RWCString& path() const { return path_; }
  /// Up to and with the last separator; empty when there is none.
  const RWCString& directory() const { return directory_; }
  /// Behind the last separator.
  std::string_view name() const { return std::string_view(path_).substr(directory_.size()); }
  /// What follows the last point of the name, case kept; empty without one.
  const RWCString& suffix() const { return suffix_; }
  /// The whole path without its suffix and the point before it.
  RWCString withoutSuffix() const;

  /// True when the path stands for no file: it holds "unknown" or "undefined".
  bool isUnknown() const;
  /// True when a file or directory of this path can be read.
  bool exists() const;

 private:
  void split();

  RWCString path_ = "/usr/unknown";
  RWCString directory_ = "/usr/";
  RWCString suffix_;
};
