#pragma once

#include "project/TLKeptBlock.h"

/// The plan of an uncertainty study (block of the same name): kept as it stands. A manager belongs
/// to one computation, which it names on its line "COMPUTATION_NAME".
class TLNonDeterministicComputationManager : public TLKeptBlock {
 public:
  TLNonDeterministicComputationManager();

  /// Name of the computation it belongs to; empty when it names none.
  RWCString computationName() const;
};
