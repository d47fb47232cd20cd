#pragma once

#include <cstdint>

#include "parameters/TLBCDataBase.h"

/// The definitions of the solver that a project is for, loaded when they are first asked for and
/// again when a project of another solver asks.
class TLSolverDefinitions {
 public:
  /// Conditions for a project type and solver mode. Ends the process when their file is missing.
  static TLBCDataBase& conditions(std::int32_t projectType, std::int32_t solverMode);
};
