#pragma once

#include <string_view>
#include <vector>

#include "parameters/TLUnits.h"
#include "textio/Handle.h"

/// The units of all kinds of quantities, from "velstra.uni" in VELSTRA_DIR: one object for the
/// process, empty until started.
class TLUnitsDataBase : public RefCounted {
 public:
  /// The object of the process, made on first use.
  static TLUnitsDataBase& instance();

  /// Reads the file, replacing what is held. 1 on success, 0 when it can't be opened or holds a
  /// malformed line. Without VELSTRA_DIR or without the file a message, and the process ends,
  /// status 0.
  int start();
  /// Reads the lines of a units file.
  int read(TLTextSource& source);

  /// The units of a quantity, its name compared token by token; null when unknown.
  Handle<TLUnits> find(std::string_view name) const;

  std::vector<Handle<TLUnits>> records;   ///< In the order of the file.
  std::vector<RWCString> defaultSystems;  ///< Names of the systems of units to choose from.
  RWCString newProjectDefaultSystem;      ///< The one of a new project.
};
