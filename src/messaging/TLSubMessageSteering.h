#pragma once

#include "messaging/TLSteeringParameters.h"
#include "messaging/TLSubMessage.h"
#include "textio/Handle.h"

/// The values of steering parameters on their way up, from the solver and on to the interface.
/// Curves and surfaces go as a whole; of a residual only the points behind those that `known` says
/// the receiver holds. A parameter of any other kind is counted, but leaves nothing on the wire.
class TLSubMessageSteering : public TLSubMessage {
 public:
  /// Values land in the parameters of the same name in `parameters`, if that is set; otherwise a
  /// new set is made of them.
  bool unpack() override;
  /// False, with nothing written, without `parameters`.
  bool pack() const override;
  std::int32_t type() const override { return 8; }

  Handle<TLSteeringParameters> parameters;  ///< Sent or filled; null for none.
  /// What the receiver holds, by position, the value counts being last iterations; may be none.
  Handle<TLSteeringParameters> known;
};
