#pragma once

#include "project/TLKeptBlock.h"

/// Modal data of a computation ("modal_properties"): kept as they stand.
class TLModal : public TLKeptBlock {
 public:
  TLModal();
};
