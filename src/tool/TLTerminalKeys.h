#pragma once

#include <termios.h>

/// Keys of the terminal as they are pressed, without an echo, while this object lives. Without a
/// terminal, or in the background, there are none.
class TLTerminalKeys {
 public:
  TLTerminalKeys();
  ~TLTerminalKeys();
  TLTerminalKeys(const TLTerminalKeys&) = delete;
  TLTerminalKeys& operator=(const TLTerminalKeys&) = delete;

  /// The next key, 0 for none.
  char next();
  /// True when keys can come at all.
  bool present() const { return active_; }

 private:
  void enter();

  termios before_{};
  bool active_ = false;
};
