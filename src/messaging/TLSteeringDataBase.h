#pragma once

#include <cstdint>
#include <vector>

#include "messaging/TLSteeringParameter.h"

/// The kinds of steering parameters that a solver knows, from its definition file: one object for
/// the process, empty until loaded.
class TLSteeringDataBase {
 public:
  /// The object of the process, made on first use.
  static TLSteeringDataBase& instance();

  /// Loads the definition file for a project type (its code) and solver mode from VELSTRA_DIR,
  /// replacing both lists. Without VELSTRA_DIR a line on the console, and the lists stay. For a
  /// combination that has no file the lists stay, silently. A missing file ends the process, status
  /// 0, with a message. A malformed record ends the loading; the lists keep what was read.
  void load(std::int32_t projectType, std::int32_t solverMode);
  /// Reads the lines of a definition file. 1, or 0 on a malformed record.
  int read(TLTextSource& source);

  /// A new parameter of the kind `typeOpsel`, with copies of the settings that the interface has
  /// for it; null when the database lacks the kind or the settings.
  Handle<TLSteeringParameter> makeParameter(std::int32_t typeOpsel) const;

  /// The kinds that the solver reports.
  std::vector<Handle<TLSteeringParameter>> solverParameters;
  /// The same kinds with the settings that the user has.
  std::vector<Handle<TLSteeringParameter>> interfaceParameters;
};
