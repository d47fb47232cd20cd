#pragma once

#include "project/TLKeptBlock.h"

/// The link of a computation to ANSYS ("ansys_properties"): kept as it stands.
class TLAnsys : public TLKeptBlock {
 public:
  TLAnsys();
};
