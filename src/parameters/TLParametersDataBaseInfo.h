#pragma once

#include <vector>

#include "textio/RWCString.h"
#include "textio/RefCounted.h"

/// What a definition file says of a parameter: the comment lines above it.
class TLParametersDataBaseInfo : public RefCounted {
 public:
  /// True when the first comment line is "OBSOLETE": the parameter is kept but never written.
  bool isObsolete() const { return !comments.empty() && comments.front() == "OBSOLETE"; }

  std::vector<RWCString> comments;  ///< Without the leading "*"; empty lines are left out.
};
