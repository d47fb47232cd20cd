#pragma once

#include "project/TLKeptBlock.h"

/// A profile of a physical entry over time, space or frequency ("time_profile_entry",
/// "space_profile_entry", "frequency_profile_entry"): kept as it stands, with all the digits it was
/// given.
class TLProfile : public TLKeptBlock {
 public:
  TLProfile();
};
