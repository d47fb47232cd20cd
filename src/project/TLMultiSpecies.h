#pragma once

#include "project/TLKeptBlock.h"

/// The multi-species files of a fluid ("multispecies_properties"): kept as they stand.
class TLMultiSpecies : public TLKeptBlock {
 public:
  TLMultiSpecies();
};
