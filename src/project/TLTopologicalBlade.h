#pragma once

#include <cstdint>
#include <vector>

#include "project/TLKeptBlock.h"
#include "textio/Handle.h"
#include "textio/RWCString.h"
#include "textio/RefCounted.h"
#include "textio/TLTextSink.h"
#include "textio/TLTextSource.h"

/// A place on a block that belongs to a blade: an edge ("leading_edge", "trailing_edge") or a patch
/// ("topological_patch").
class TLTopologicalPlace : public RefCounted {
 public:
  /// Reads the block's lines behind its opening line. 0 with a complaint on the console on failure.
  virtual int read(TLTextSource& source) = 0;
  /// The lines of the block, without its opening and closing one.
  void write(TLTextSink& sink) const;

  /// Printed when the version line holds no number.
  static constexpr char kVersionFailure[] = " wrong header: cannot determine version.";

  double version = 1.0;               ///< As read; 1.0 is what is written.
  RWCString blockName = "unknown";    ///< The mesh block on which the place is.
  std::vector<std::int32_t> indices;  ///< as many as the file gives
};

/// Closes under "leading_edge", "trailing_edge" or "topological_edge", however it was opened.
class TLTopologicalEdge : public TLTopologicalPlace {
 public:
  /// As in TLTopologicalPlace.
  int read(TLTextSource& source) override;
};

/// A patch of a block that is part of the blade's surface.
class TLTopologicalPatch : public TLTopologicalPlace {
 public:
  /// As in TLTopologicalPlace.
  int read(TLTextSource& source) override;
};

/// Transition settings of a blade ("BladeTransitionParameters"): kept as they stand.
class TLBladeTransitionParameters : public TLKeptBlock {
 public:
  TLBladeTransitionParameters();
};

/// A blade of the mesh: its edges, its patches, its transition settings
/// ("blade_definition").
class TLTopologicalBlade : public RefCounted {
 public:
  /// Reads the block's lines behind its opening line. 0 with a complaint on the console on failure.
  int read(TLTextSource& source);
  /// The lines of the block, without its opening and closing one.
  void write(TLTextSink& sink) const;

  /// Printed when the blade's version line holds no number.
  static constexpr char kVersionFailure[] =
      " wrong face header: cannot determine topological_blade version";

  double version = 1.0;             ///< As read; 1.0 is what is written.
  RWCString name = "unknown";       ///< Of the blade; "unknown" as long as no line tells it.
  RWCString groupName = "unknown";  ///< Of the row of blades; "unknown" likewise.
  /// One per block that the edge runs through.
  std::vector<Handle<TLTopologicalEdge>> leadingEdges;
  std::vector<Handle<TLTopologicalEdge>> trailingEdges;      ///< Likewise.
  Handle<TLBladeTransitionParameters> transitionParameters;  ///< null for none
  std::vector<Handle<TLTopologicalPatch>> patches;           ///< The blade's surface.
};
