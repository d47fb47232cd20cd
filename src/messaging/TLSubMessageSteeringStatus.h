#pragma once

#include "messaging/TLSteeringParameters.h"
#include "messaging/TLSubMessage.h"
#include "textio/Handle.h"

/// What the sender already holds of a steering set: the last iteration of each series. On the
/// receiver's side `parameters` holds that number as the value count, without any points.
class TLSubMessageSteeringStatus : public TLSubMessage {
 public:
  /// Reads nothing when `parameters` is set already.
  bool unpack() override;
  /// False, with nothing written, without `parameters`.
  bool pack() const override;
  std::int32_t type() const override { return 10; }

  Handle<TLSteeringParameters> parameters;  ///< Sent, or a set made by unpack(); null for none.
};
