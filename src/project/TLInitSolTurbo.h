#pragma once

#include "project/TLKeptBlock.h"

/// A turbomachinery initial solution of a grid or a condition ("initial_solution_turbo"): kept as
/// it stands.
class TLInitSolTurbo : public TLKeptBlock {
 public:
  TLInitSolTurbo();
};
