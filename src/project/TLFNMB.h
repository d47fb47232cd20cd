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
  explicit TLFNMB(std::int32_t projectType) : projectType(projectType) {}

  /// Reads the block's lines behind its opening line. 0 with a complaint on the console on failure.
  int read(TLTextSource& source);
  void write(TLTextSink& sink) const;

  static constexpr char kVersionFailure[] = " TLFNMB: wrong bc header: cannot determine bc version";

  double version = 2.0;  ///< written as it was read
  std::int32_t projectType;
  RWCString name = "unknown";
  std::int32_t projectionType = 0;
  std::int32_t searchType = 0;
  std::int32_t side = 0;
  double tolerance = 0.000001;
  double maximumProjectionDistance = 1000000.0;
  double minimumProjectionDistance = 1000000.0;
  std::int32_t normalsSmoothingSteps = 0;
  std::int32_t triangulatedSide = 0;
  std::int32_t rsConnection = 0;
  std::int32_t isPeriodic = 0;
  std::vector<Handle<TLFNMBPatches>> leftPatches;
  std::vector<Handle<TLFNMBPatches>> rightPatches;
};
