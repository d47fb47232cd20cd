#pragma once

#include "project/TLKeptBlock.h"

/// Blade-to-blade inputs of a computation ("solver_B2B_parameters"): kept as they stand.
class TLB2BParameters : public TLKeptBlock {
 public:
  TLB2BParameters();
};
