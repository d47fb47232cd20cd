#pragma once

#include "project/TLKeptBlock.h"

/// From what a group of blocks starts ("initial_solution"): kept as it stands but for its kind, its
/// file and the group's name. Writes the version that it read.
class TLInitSol : public TLKeptBlock {
 public:
  TLInitSol();

  /// "const", "turbo" or "file", in the spelling of the file; "unknown" without a line.
  RWCString kind() const;
  /// Replaces the kind, or adds its line.
  void setKind(std::string_view kind);
  /// True when the kind is "file", in any case.
  bool isFile() const;

  /// Run or solution file from which the blocks start; "unknown" without a line.
  RWCString path() const;
  /// Replaces the path, or adds its line.
  void setPath(std::string_view path);

  /// Group of blocks that starts from this; "unknown" without a line.
  RWCString groupName() const;
  /// Replaces the name, or adds its line.
  void setGroupName(std::string_view name);

  /// Adds a value line in the form of this block: `key` in capitals, then `value`.
  void addLine(std::string_view key, std::string_view value);

  /// Takes the running number off the body: the computation writes it anew.
  void dropIndex();
};
