#pragma once

#include <stdlib.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string>
#include <thread>

#include "platform/TLProcess.h"

/// An X server without a screen, up for the life of this object and named by DISPLAY.
class TLTestDisplay {
 public:
  TLTestDisplay() {
    std::string directory = (std::filesystem::temp_directory_path() / "tl-display-XXXXXX").string();
    if (::mkdtemp(directory.data()) == nullptr) return;
    directory_ = directory;
    TLProcessOptions options;
    options.outputFile = directory_ + "/display";
    std::string error;
    server_ = TLProcess::start(
        {"Xvfb", "-displayfd", "1", "-screen", "0", "1280x800x24", "-nolisten", "tcp", "-noreset"},
        options, error);
    if (!server_) return;
    name_ = awaitName(options.outputFile);
    if (!name_.empty()) ::setenv("DISPLAY", name_.c_str(), 1);
  }
  ~TLTestDisplay() {
    server_.reset();
    if (!directory_.empty()) std::filesystem::remove_all(directory_);
  }
  TLTestDisplay(const TLTestDisplay&) = delete;
  TLTestDisplay& operator=(const TLTestDisplay&) = delete;

  int pid() const { return server_ ? server_->pid() : 0; }
  /// As ":7"; empty when no server came up.
  const std::string& name() const { return name_; }

 private:
  /// The server writes its number as a line of digits once it listens; other lines are warnings.
  static std::string awaitName(const std::string& file) {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(60);
    while (std::chrono::steady_clock::now() < deadline) {
      std::ifstream in(file);
      for (std::string line; std::getline(in, line);) {
        const bool digits = line.find_first_not_of("0123456789") == std::string::npos;
        if (!line.empty() && digits && !in.eof()) return ":" + line;
      }
      std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return {};
  }

  std::string directory_;
  std::string name_;
  std::optional<TLProcess> server_;
};
