#pragma once

#include <vector>

#include "project/TLKeptBlock.h"

/// What a computation ("output_parameters") or a mesh block ("hexa_outputs") gives out: kept as it
/// stands.
class TLOutputs : public TLKeptBlock {
 public:
  TLOutputs();

  /// Names of the quantities ("tlquantity" blocks), in their order.
  std::vector<RWCString> quantityNames() const;
};
