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
  virtual int read(TLTextSource& source) = 0;
  void write(TLTextSink& sink) const;

  static constexpr char kVersionFailure[] = " wrong header: cannot determine version.";

  double version = 1.0;
  RWCString blockName = "unknown";
  std::vector<std::int32_t> indices;  ///< as many as the file gives
};

/// Closes under "leading_edge", "trailing_edge" or "topological_edge", however it was opened.
class TLTopologicalEdge : public TLTopologicalPlace {
 public:
  int read(TLTextSource& source) override;
};

class TLTopologicalPatch : public TLTopologicalPlace {
 public:
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
  void write(TLTextSink& sink) const;

  static constexpr char kVersionFailure[] =
      " wrong face header: cannot determine topological_blade version";

  double version = 1.0;
  RWCString name = "unknown";
  RWCString groupName = "unknown";
  std::vector<Handle<TLTopologicalEdge>> leadingEdges;
  std::vector<Handle<TLTopologicalEdge>> trailingEdges;
  Handle<TLBladeTransitionParameters> transitionParameters;  ///< null for none
  std::vector<Handle<TLTopologicalPatch>> patches;
};
