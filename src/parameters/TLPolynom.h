#pragma once

#include <vector>

#include "project/TLKeptBlock.h"

/// A polynomial law (block "polynom_entry"). A block that was read is kept as it stands; only its
/// line of coefficients is looked at and replaced.
class TLPolynom : public TLKeptBlock {
 public:
  TLPolynom();

  /// Coefficients from the lowest power on; empty when the block has no line of them.
  std::vector<double> coefficients() const;
  /// Replaces the line of coefficients, or adds it.
  void setCoefficients(const std::vector<double>& coefficients);
};
