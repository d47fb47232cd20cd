#pragma once

#include <ostream>

/// The process's console, where every trace and every complaint of a reader goes: standard output
/// unless redirected. Never owned by the caller; valid for the life of the process.
std::ostream& console();

/// Sends the console to another stream for the life of this object (tests; `tlctl --json`, whose
/// standard output must hold nothing but data). `target` must outlive it. Nests.
class TLConsoleRedirect {
 public:
  /// From here on console() answers `target`.
  explicit TLConsoleRedirect(std::ostream& target);
  ~TLConsoleRedirect();
  TLConsoleRedirect(const TLConsoleRedirect&) = delete;
  TLConsoleRedirect& operator=(const TLConsoleRedirect&) = delete;

 private:
  std::ostream* previous_;
};
