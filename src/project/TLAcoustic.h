#pragma once

#include "project/TLKeptBlock.h"

/// Acoustic data of a computation ("acoustic_data"): kept as they stand; the version read decides
/// whether the computation's acoustic configuration is taken from its parameters.
class TLAcoustic : public TLKeptBlock {
 public:
  TLAcoustic();
};
