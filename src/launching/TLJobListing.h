#pragma once

#include <cstdint>

#include "textio/RWCString.h"

/// One job as a listing shows it.
struct TLListedJob {
  std::int32_t number = 0;  ///< 0: not listed
  RWCString state;          ///< the queuing system's own word for its state; empty when not listed
};

/// The job `name` in a listing of the queuing system `kind` (1 SGE, 2 PBS, 3 LSF): the last one
/// that bears it. An LSF listing holds no other jobs, and its first one counts.
TLListedJob jobInListing(std::int32_t kind, const RWCString& listing, const RWCString& name);
