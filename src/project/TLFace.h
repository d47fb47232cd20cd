#pragma once

#include <cstdint>
#include <vector>

#include "project/TLBC.h"
#include "textio/Handle.h"
#include "textio/RefCounted.h"
#include "textio/TLTextSink.h"
#include "textio/TLTextSource.h"

/// The six sides of a structured block, numbered so that each pair shares its directions: on the K
/// sides (0, 1) a patch has u in I and w in J, on the J sides (2, 3) u in I and w in K, on the I
/// sides (4, 5) u in J and w in K.
namespace TLFaceSide {
inline constexpr std::int32_t kmin = 0;  ///< Word "KMIN": the face at K = 1.
inline constexpr std::int32_t kmax = 1;  ///< Word "KMAX": the face at the last K.
inline constexpr std::int32_t jmin = 2;  ///< Word "JMIN".
inline constexpr std::int32_t jmax = 3;  ///< Word "JMAX".
inline constexpr std::int32_t imin = 4;  ///< Word "IMIN".
inline constexpr std::int32_t imax = 5;  ///< Word "IMAX".
}  // namespace TLFaceSide

/// One face of a block with its conditions ("face").
class TLFace : public RefCounted {
 public:
  /// A face without conditions, for a project of this type (a TLProjectType).
  explicit TLFace(std::int32_t projectType) : projectType(projectType) {}

  /// Reads the block's lines behind its opening line. 0 with a complaint on the console on failure.
  int read(TLTextSource& source);
  /// Conditions without a patch are left out.
  void write(TLTextSink& sink) const;

  /// Directions (0 I, 1 J, 2 K) in which a patch of this face has its u and w indices.
  int uDirection() const { return type >= TLFaceSide::imin ? 1 : 0; }
  /// As uDirection(), for the w indices.
  int wDirection() const { return type >= TLFaceSide::jmin ? 2 : 1; }

  /// Printed when the face's version line holds no number.
  static constexpr char kVersionFailure[] = " wrong face header: cannot determine face version";

  double version = 1.0;                  ///< As read; 1.0 is what is written.
  std::int32_t projectType;              ///< A TLProjectType, passed on to the conditions.
  std::int32_t type = TLFaceSide::kmin;  ///< a TLFaceSide
  std::int32_t index = 0;  ///< Of the face in its block. Carried: its place in the list counts.
  std::vector<Handle<TLBC>> conditions;  ///< Patch number n is element n - 1.
};
