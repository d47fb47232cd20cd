#pragma once

#include "session/TLTestDisplay.h"
#include "session/TkSession.h"

/// The display of a test program, made at its first use.
inline TLTestDisplay& testDisplay() {
  static TLTestDisplay display;
  return display;
}

/// The script session of a test program, made at its first use on a display of its own.
inline TkSession& testSession() {
  testDisplay();
  static TkSession* const session = [] {
    static char name[] = "tltest";
    static char option[] = "-task";
    static char value[] = "a file";
    static char* words[] = {name, option, value, nullptr};
    return new TkSession(3, words);  // lives as long as the process, as in the daemon
  }();
  return *session;
}
