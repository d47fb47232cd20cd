#pragma once

#include "messaging/TLSubMessage.h"

/// One 64-bit real.
class TLSubMessageReal : public TLSubMessage {
 public:
  TLSubMessageReal() = default;
  /// An item to be sent.
  explicit TLSubMessageReal(double initial) : value(initial) {}

  bool unpack() override;
  bool pack() const override;
  std::int32_t type() const override { return 3; }

  double value = 0;  ///< What is sent, or was received.
};
