#pragma once

#include <cstdint>
#include <vector>

#include "project/TLFNMBPatches.h"
#include "textio/Handle.h"
#include "textio/RWCString.h"
#include "textio/RefCounted.h"
#include "textio/TLTextSink.h"
#include "textio/TLTextSource.h"

/// A full non-matching connection between two groups of patches ("fnmb_connection").
class TLFNMB : public RefCounted {
 public:
  /// A connection without patches, for a project of this type (a TLProjectType).
  explicit TLFNMB(std::int32_t projectType) : projectType(projectType) {}

  /// Reads the block's lines behind its opening line. 0 with a complaint on the console on failure.
  int read(TLTextSource& source);
  /// The lines of the block, without its opening and closing one.
  void write(TLTextSink& sink) const;

  /// Printed when the version line holds no number.
  static constexpr char kVersionFailure[] = " TLFNMB: wrong bc header: cannot determine bc version";

  double version = 2.0;             ///< written as it was read
  std::int32_t projectType;         ///< A TLProjectType, passed on to the patches.
  RWCString name = "unknown";       ///< One word; "unknown" as long as no line tells it.
  std::int32_t projectionType = 0;  ///< A code of the solver, as are the next two.
  std::int32_t searchType = 0;      ///< How the patches facing each other are found.
  std::int32_t side = 0;            ///< Which side is projected on the other.
  double tolerance = 0.000001;      ///< Of the projection. Carried.
  double maximumProjectionDistance = 1000000.0;  ///< Farther points aren't projected.
  double minimumProjectionDistance = 1000000.0;  ///< The default, equal to the maximum, is meant.
  /// Passes by which the surface normals are smoothed; 0: none.
  std::int32_t normalsSmoothingSteps = 0;
  std::int32_t triangulatedSide = 0;  ///< A code of the solver.
  std::int32_t rsConnection = 0;      ///< 1: between a rotor and a stator.
  std::int32_t isPeriodic = 0;        ///< 1: the sides lie one period apart.
  /// An empty side leaves the connection out of the balance.
  std::vector<Handle<TLFNMBPatches>> leftPatches;
  std::vector<Handle<TLFNMBPatches>> rightPatches;  ///< Likewise.
};
