#pragma once

#include "project/TLKeptBlock.h"

/// Block dependent settings of a mesh block ("block_dependent"): kept as they stand.
class TLBlockDependent : public TLKeptBlock {
 public:
  TLBlockDependent();
};
