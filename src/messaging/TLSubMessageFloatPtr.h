#pragma once

#include "messaging/TLSubMessageArray.h"

/// An array of 32-bit reals.
class TLSubMessageFloatPtr : public TLSubMessageArray<float> {
 public:
  std::int32_t type() const override { return 5; }
};
