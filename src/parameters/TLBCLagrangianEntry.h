#pragma once

#include "project/TLKeptBlock.h"

/// What a boundary condition does to particles (block "lagrangian_physical_entry"): kept as it
/// stands.
class TLBCLagrangianEntry : public TLKeptBlock {
 public:
  TLBCLagrangianEntry();

  /// The entry's name; empty when the block has none.
  RWCString name() const;

  RWCString shortWord;  ///< "INL" or "SOL" after the kind of the condition; empty for others
};
