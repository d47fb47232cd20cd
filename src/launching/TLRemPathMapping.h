#pragma once

#include <fstream>
#include <optional>
#include <vector>

#include "launching/TLMappingStrategy.h"

/// Maps paths by small text files in the directories above a computation. Each line of such a file
/// names a host and, behind one blank, the prefix under which that host sees the directory of the
/// file. The file nearest to the root that names the host decides.
///
/// docs/path-mapping.md tells the format. What is tried and found is logged in TMP_DIR.
class TLRemPathMapping : public TLMappingStrategy {
 public:
  /// With `log`, empties and opens the log; one that can't be opened is done without.
  explicit TLRemPathMapping(RWCString mapFileName, bool log = true);

  bool mapPath(const RWCString& path, const RWCString& hostName, RWCString& result) override;

  /// @name Paths as lists of components.
  /// @{

  /// The first "/" or "\\" of a path; "/" for a path without either.
  static char separatorOf(const RWCString& path);
  /// The components between separators, empty ones kept; two separators at the start belong to the
  /// first component, which then goes up to the next one ("\\\\host\\share" is one).
  static std::vector<RWCString> split(const RWCString& path, char separator);
  /// `count` components from `start` on, with separators between them.
  static RWCString join(const std::vector<RWCString>& components, std::size_t start,
                        std::size_t count, char separator);
  /// @}

 private:
  std::optional<RWCString> prefixIn(const RWCString& file, const RWCString& hostName);

  RWCString mapFileName_;
  std::ofstream logStream_;
  std::int32_t logEnabled_;
};
