#pragma once

#include "messaging/TLSteeringParameters.h"
#include "messaging/TLSubMessage.h"
#include "textio/Handle.h"

/// The user's settings on their way down to the solver: a whole steering set without its values.
class TLSubMessageNewSteering : public TLSubMessage {
 public:
  TLSubMessageNewSteering() = default;
  /// Takes the two iterations from the series of the parameter "output iteration", if there is one.
  explicit TLSubMessageNewSteering(const Handle<TLSteeringParameters>& set);

  /// Makes a new set; it keeps what could be read when the answer is false.
  bool unpack() override;
  /// False, with nothing written, without `parameters`.
  bool pack() const override;
  std::int32_t type() const override { return 9; }

  Handle<TLSteeringParameters> parameters;  ///< Shared with whoever made it; null for none.
  std::int32_t firstOutputIteration = -1;   ///< first one with output; -1: none
  std::int32_t lastOutputIteration = -1;    ///< last one of the series; -1: none
};
