#pragma once

#include "project/TLKeptBlock.h"

/// A performance curve of a project ("performance_curve"): kept as it stands.
class TLPerformanceCurve : public TLKeptBlock {
 public:
  TLPerformanceCurve();
};
