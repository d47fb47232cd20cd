#pragma once

#include "parameters/TLHexaParameters.h"

/// The settings of the unstructured flow solver with their default values, as its definition file
/// in VELSTRA_DIR lists them.
class TLHexaParametersDataBase : public TLHexaParameters {
 public:
  /// Reads "lumbrake_auto.def" for kind 1 (the automatic mode), else "lumbrake.def". A missing file
  /// ends the process, status 0, with a message. A malformed setting ends the reading; the list
  /// keeps what was read.
  explicit TLHexaParametersDataBase(std::int32_t kind);

  /// Path of the definition file.
  static RWCString definitionPath(std::int32_t kind);
};
