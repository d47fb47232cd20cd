#pragma once

#include "project/TLKeptBlock.h"

/// The distribution of an uncertain value ("NonDeterministicData"): kept as it stands, with all the
/// digits it was given.
class TLNonDeterministicData : public TLKeptBlock {
 public:
  TLNonDeterministicData();
};
