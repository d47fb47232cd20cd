#pragma once

#include "project/TLKeptBlock.h"

/// Harmonic data, a disturber or an inner perturbation of a mesh block ("harmonic_data",
/// "harmonic_disturber", "harmonic_inner_perturbation"): kept as they stand.
class TLHarmonicData : public TLKeptBlock {
 public:
  TLHarmonicData();
};
