#pragma once

#include "project/TLKeptBlock.h"

/// Holes or slots through which a coolant enters ("injection_sector"): kept as they stand. Its kind
/// stands on the line "KIND" (or "TYPE").
class TLInjectionSector : public TLKeptBlock {
 public:
  TLInjectionSector();

  /// The kind's number; 0 without a line. Kind 3 switches the solver's cooling model on.
  std::int32_t kind() const;
  /// Replaces the number, or adds its line.
  void setKind(std::int32_t kind);
};
