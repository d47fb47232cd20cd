#pragma once

#include "platform/TTempDir.h"

/// An installation's definition files for a test, small ones, in a directory of their own, with
/// VELSTRA_DIR pointing there. They define lengths in metres and millimetres, an inlet (id 28), a
/// wall (id 10) and an outlet (id 27), and a handful of parameters.
class Definitions {
 public:
  Definitions();

  const std::string& directory() const { return files_.path(); }
  /// Replaces one file, by its name in the directory.
  void write(const std::string& name, const std::string& text) const { files_.write(name, text); }

 private:
  TTempDir files_;
  TVariable variable_;
};
