#pragma once

#include "project/TLKeptBlock.h"

/// An uncertain entry of a computation with its data ("UncertaintyEntry"): kept as it stands.
class TLUncertaintyEntry : public TLKeptBlock {
 public:
  TLUncertaintyEntry();
};
