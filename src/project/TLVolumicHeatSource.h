#pragma once

#include "project/TLKeptBlock.h"

/// A volumic heat source of a mesh block ("spherical_heat_source", "cylindrical_heat_source",
/// "brick_heat_source", "domain_heat_source"): kept as it stands.
class TLVolumicHeatSource : public TLKeptBlock {
 public:
  TLVolumicHeatSource();

  /// Makes this a sphere from the values of an older file: heat in W/m3, centre and radius in m.
  void setSphere(double heat, const double (&center)[3], double radius);
};
