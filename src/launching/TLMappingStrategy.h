#pragma once

#include "textio/RWCString.h"

/// Knows under which name a directory of this host is seen on another one.
class TLMappingStrategy {
 public:
  virtual ~TLMappingStrategy() = default;

  /// `result` becomes the name of `path` on `hostName`, or `path` itself; true when a mapping was
  /// found.
  virtual bool mapPath(const RWCString& path, const RWCString& hostName, RWCString& result) = 0;
};

/// The one strategy of the process: unless another is set, a TLRemPathMapping with files named
/// "remote paths.txt", made at first use.
TLMappingStrategy& gMappingStrategy();

/// Sets another one. Not owned, must outlive its use; null for the usual one.
void setMappingStrategy(TLMappingStrategy* strategy);
