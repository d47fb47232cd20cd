#pragma once

#include "project/TLKeptBlock.h"

/// Species and reactions of a computation ("chemistry_parameters"): kept as they stand.
class TLChemistryParameters : public TLKeptBlock {
 public:
  TLChemistryParameters();
};
