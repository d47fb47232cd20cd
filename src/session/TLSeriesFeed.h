#pragma once

#include <cstdint>
#include <map>

#include "textio/RWCString.h"

class TLSteeringParameter;
class TLTask;

/// Hands the residual histories of the running step to a script that wants to draw them: one that
/// has set the variable "tl_series_wanted". Points go into the array "tl_series", an element per
/// parameter: the position of the first point, then x and y in turn. A script takes a series by
/// reading and unsetting its element; what it leaves there grows by the points that follow.
/// Position 0 begins a history anew.
class TLSeriesFeed {
 public:
  /// To be called after a cycle.
  void update(const TLTask& task);

 private:
  static constexpr std::int32_t kMostPointsAtOnce = 5000;

  void feed(const TLSteeringParameter& parameter);

  std::int32_t step_ = -1;                   ///< whose series are in `given_`
  std::map<RWCString, std::int32_t> given_;  ///< points handed over so far
};
