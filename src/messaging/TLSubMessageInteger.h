#pragma once

#include "messaging/TLSubMessage.h"

/// One 32-bit integer.
class TLSubMessageInteger : public TLSubMessage {
 public:
  TLSubMessageInteger() = default;
  /// An item to be sent.
  explicit TLSubMessageInteger(std::int32_t initial) : value(initial) {}

  bool unpack() override;
  bool pack() const override;
  std::int32_t type() const override { return 1; }

  std::int32_t value = 0;  ///< What is sent, or was received.
};
