#pragma once

#include "textio/RWCString.h"

class TLSubProject;

/// What a computation's fluid and injection sectors mean for its solver parameters and for the
/// names that are written.
class TLFluidSettings {
 public:
  /// The name that stands behind FLUID_NAME: that of the first fluid, or the computation's own
  /// without one; for a condensable gas with tables the name of their directory; "Perfect Gas" for
  /// "unknown".
  static RWCString writtenName(const TLSubProject& computation);
  /// The type that stands behind FLUID_TYPE: "Perfect Gas" when the name is "unknown".
  static RWCString writtenType(const TLSubProject& computation);

  /// Brings the solver parameters in line with the kind of the fluid.
  static void apply(const TLSubProject& computation);

  /// Forces the cooling model of the solver on when a sector of kind 3 is there.
  static void applyInjection(const TLSubProject& computation);
};
