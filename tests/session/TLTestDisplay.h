#pragma once

#include <stdlib.h>

#include <fstream>
#include <optional>
#include <string>

#include "integration/Waiting.h"
#include "platform/TLProcess.h"
#include "platform/TTempDir.h"

/// An X server without a screen, up for the life of this object and named by DISPLAY.
class TLTestDisplay {
 public:
  TLTestDisplay() {
    TLProcessOptions options;
    options.outputFile = directory_.file("display");
    std::string error;
    server_ = TLProcess::start(
        {"Xvfb", "-displayfd", "1", "-screen", "0", "1280x800x24", "-nolisten", "tcp", "-noreset"},
        options, error);
    if (!server_) return;
    name_ = awaitName(options.outputFile);
    if (!name_.empty()) ::setenv("DISPLAY", name_.c_str(), 1);
  }
  TLTestDisplay(const TLTestDisplay&) = delete;
  TLTestDisplay& operator=(const TLTestDisplay&) = delete;

  int pid() const { return server_ ? server_->pid() : 0; }
  /// As ":7"; empty when no server came up.
  const std::string& name() const { return name_; }

 private:
  /// The server writes its number as a line of digits once it listens; other lines are warnings.
  static std::string awaitName(const std::string& file) {
    std::string name;
    waitUntil(
        [&] {
          std::ifstream in(file);
          for (std::string line; name.empty() && std::getline(in, line);) {
            const bool digits = line.find_first_not_of("0123456789") == std::string::npos;
            if (!line.empty() && digits && !in.eof()) name = ":" + line;
          }
          return !name.empty();
        },
        60);
    return name;
  }

  TTempDir directory_;
  std::string name_;
  std::optional<TLProcess> server_;
};
