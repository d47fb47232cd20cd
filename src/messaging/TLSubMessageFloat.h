#pragma once

#include "messaging/TLSubMessage.h"

/// One 32-bit real.
class TLSubMessageFloat : public TLSubMessage {
 public:
  TLSubMessageFloat() = default;
  /// An item to be sent.
  explicit TLSubMessageFloat(float initial) : value(initial) {}

  bool unpack() override;
  bool pack() const override;
  std::int32_t type() const override { return 2; }

  float value = 0;  ///< What is sent, or was received.
};
