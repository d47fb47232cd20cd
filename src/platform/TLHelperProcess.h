#pragma once

#include <optional>
#include <string>
#include <vector>

#include "platform/TLFileDescriptor.h"
#include "platform/TLProcess.h"

/// A program that runs beside this process and is spoken to in lines of text, each without its line
/// end: what is sent comes to its standard input, what it prints is received here. It inherits no
/// other descriptor of this process. It is ended with this object; a helper that should not outlive
/// a killed process says so itself (endWithParent).
class TLHelperProcess {
 public:
  /// Starts `words[0]` with the other words as its arguments. None when that fails; `error` then
  /// says why.
  static std::optional<TLHelperProcess> start(const std::vector<std::string>& words,
                                              std::string& error);

  /// False when the helper is gone, or doesn't read what it was sent.
  bool send(const std::string& line);
  /// The next line, waited for at most `seconds`; none when there was none in time. Of a helper
  /// that is gone the lines that it still wrote come first.
  std::optional<std::string> receive(double seconds);
  /// True once it has closed its side, as it does when it ends.
  bool gone() const { return gone_; }

 private:
  TLHelperProcess(TLProcess process, TLFileDescriptor channel)
      : process_(std::move(process)), channel_(std::move(channel)) {}
  std::optional<std::string> takeLine();
  void readMore();

  TLProcess process_;
  TLFileDescriptor channel_;
  std::string read_;  ///< received, not yet handed out
  bool gone_ = false;
};

/// Has the system end this process when the one that started it ends, however it does. False when
/// that has happened already.
bool endWithParent();
