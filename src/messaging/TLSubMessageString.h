#pragma once

#include <utility>

#include "messaging/TLSubMessage.h"
#include "textio/RWCString.h"

/// One text.
class TLSubMessageString : public TLSubMessage {
 public:
  TLSubMessageString() = default;
  /// An item to be sent.
  explicit TLSubMessageString(RWCString initial) : text(std::move(initial)) {}

  bool unpack() override;
  bool pack() const override;
  std::int32_t type() const override { return 7; }

  RWCString text = "none";  ///< What is sent, or was received; bytes without an encoding.
};
