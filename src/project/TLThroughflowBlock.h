#pragma once

#include "project/TLKeptBlock.h"

/// Throughflow settings of a mesh block ("throughflow_parameters"): kept as they stand.
class TLThroughflowBlock : public TLKeptBlock {
 public:
  TLThroughflowBlock();
};
