#pragma once

#include <span>
#include <string_view>

#include "textio/RWCString.h"

class TLSubProject;

/// One step that brings a computation of an older file up to date. Steps change the model in
/// memory, skip what is absent, and never fail.
struct TLComputationConversion {
  std::string_view name;  ///< A literal that says what the step is for.
  /// True when the computation, as it was read, needs the step.
  bool (*isDue)(const TLSubProject& computation);
  /// Changes the computation in place.
  void (*run)(TLSubProject& computation);
};

/// The steps, in the order in which they run after a computation was read.
std::span<const TLComputationConversion> computationConversions();

/// Runs the steps that are due.
void convertComputation(TLSubProject& computation);

/// Name of a patch in messages, by its position from 1: " B1 F2 P3".
RWCString patchName(int block, int face, int patch);
