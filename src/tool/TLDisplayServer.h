#pragma once

#include <string>

/// The display of a daemon that is started where there is none: an Xvfb that ends by itself when
/// its last client goes, so that it lives as long as the daemon and no longer.
class TLDisplayServer {
 public:
  /// True when this process has a display to pass on (DISPLAY is set).
  static bool present();

  /// Starts Xvfb on a free display number and sets DISPLAY for this process and what it starts.
  /// `privateDirectory` takes a file for a moment. False when it fails; `error` then says why and
  /// what to do.
  bool start(const std::string& privateDirectory, std::string& error);

  /// Ends the server if it still runs.
  void stop();

 private:
  int pid_ = 0;
};
