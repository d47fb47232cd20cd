#pragma once

#include "messaging/TLSubMessageArray.h"

/// An array of 32-bit integers.
class TLSubMessageIntegerPtr : public TLSubMessageArray<std::int32_t> {
 public:
  std::int32_t type() const override { return 4; }
};
