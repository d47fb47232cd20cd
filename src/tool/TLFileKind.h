#pragma once

#include <string_view>

/// The kinds of text files of the suite, told apart by what is in them.
enum class TLFileKind {
  unknown,
  task,
  project,  ///< project and run files
  mesh,
  steering,                ///< the settings and values of a solver run
  units,                   ///< "velstra.uni"
  conditions,              ///< "velstra_bc.def", "lumbrake_bc.def" and the like
  structuredParameters,    ///< "velstra.def"
  unstructuredParameters,  ///< "lumbrake.def" and the like
  steeringDefinitions      ///< "velstra_steering.def" and the like
};

/// The kind of a file with this text.
TLFileKind kindOfText(std::string_view text);

/// "project file", "task file" ...
std::string_view nameOfKind(TLFileKind kind);
