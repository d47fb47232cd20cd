#pragma once

#include "messaging/TLSubMessageArray.h"

/// An array of 64-bit reals.
class TLSubMessageRealPtr : public TLSubMessageArray<double> {
 public:
  std::int32_t type() const override { return 6; }
};
