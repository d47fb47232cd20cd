#pragma once

#include <vector>

#include "textio/RWCString.h"

class TLSubTask;

/// The far side of a transfer: the host of a step, the user there, and the directory of the run.
/// The kind of that host decides over its commands, whatever this one is.
class TLFarSide {
 public:
  /// As a step has it.
  explicit TLFarSide(const TLSubTask& step);
  /// `directory` is that of the run, as `directoryName` forms it.
  TLFarSide(RWCString host, RWCString login, bool win32, RWCString directory);

  /// As the virtual machine's table has it.
  const RWCString& host() const { return host_; }
  /// Empty: the same user.
  const RWCString& login() const { return login_; }
  /// Kind of that host.
  bool win32() const { return win32_; }
  /// The directory of the run; of a UNIX host with its separator at the end, of a Windows host
  /// without. Empty when there is none.
  const RWCString& directory() const { return directory_; }
  /// "host", or "host.login".
  RWCString spec() const;
  /// "WIN32" or "UNIX".
  const char* system() const { return win32_ ? "WIN32" : "UNIX"; }
  /// A name in the directory of the run: nothing stands between the two.
  RWCString path(const RWCString& name) const { return directory_ + name; }

  /// @name Commands. Paths come as they are, and stand in them so that the far shell takes them for
  /// nothing else.
  /// @{

  /// Makes a directory; on a UNIX host with those around it.
  RWCString makeDirectory(const RWCString& path) const;
  /// Removes a file; one that isn't there is no fault.
  RWCString removeFile(const RWCString& path) const;
  /// The two commands that remove the directory of the run after a retrieval.
  std::vector<RWCString> removal() const;
  /// Those that remove it after a start that failed.
  std::vector<RWCString> discard() const;
  /// @}

  /// The name of a run's directory below `root`.
  static RWCString directoryName(const RWCString& root, bool win32, const RWCString& number);

  /// Exit code of a command by which the suite's remote shell refuses a directory that belongs to
  /// somebody else.
  static constexpr int kRefused = 73;

 private:
  RWCString word(const RWCString& path, const char* pattern = "") const;

  RWCString host_;
  RWCString login_;
  RWCString directory_;
  bool win32_;
};
