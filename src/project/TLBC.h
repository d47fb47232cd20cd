#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "parameters/TLBCParameters.h"
#include "project/TLInitSolTurbo.h"
#include "project/TLInjectionSector.h"
#include "textio/Handle.h"
#include "textio/RWCString.h"
#include "textio/RefCounted.h"
#include "textio/TLTextSink.h"
#include "textio/TLTextSource.h"

/// One patch of a block's face with the condition that is applied there ("boundary_condition").
/// It points at a condition record of its computation by index, or carries an own one. Records of
/// this class are by far the most frequent ones of a run file.
class TLBC : public RefCounted {
 public:
  explicit TLBC(std::int32_t projectType) : projectType(projectType) {}

  /// Reads the block's lines behind its opening line. 0 with a complaint on the console on failure.
  int read(TLTextSource& source);
  void write(TLTextSink& sink) const;

  /// Name of a control surface. Asking for one past the end fills the gap, with
  /// "No_Force_and_Torque" as element 0 and "UNDEFINED" as the others.
  const RWCString& controlSurfaceName(std::size_t index);
  void setControlSurfaceName(std::size_t index, RWCString name);

  /// Gives a condition without names those that its kind and its first control surface tell. Done
  /// at the end of a read, and again by whoever links `parameters` later; once named it does
  /// nothing.
  void settleControlSurfaceNames();

  /// Sets the patch's extent, with which the condition has a patch.
  void setIndices(const std::array<std::int32_t, 4>& extent);
  /// Patches of this condition: 0 as long as no extent was read or set, else 1. A condition
  /// without a patch isn't written.
  std::int32_t patchCount() const { return patchCount_; }

  /// True when the patch is one side of a connection of patches: "CON", "NMB", "PER" or "PERNM".
  bool isConnection() const;
  /// Number, from 1, of the block, face or patch at the other side of a connection; 0 for none.
  std::int32_t connectedBlock() const { return connectionInfo[0]; }
  std::int32_t connectedFace() const { return connectionInfo[1]; }
  std::int32_t connectedPatch() const { return connectionInfo[2]; }

  static constexpr char kVersionFailure[] = " wrong bc header: cannot determine bc version";

  double version = 4.0;
  RWCString name;
  RWCString type;       ///< short word: "SOL", "INL", "OUT", "CON", "NMB", "PER", "PERNM", "ROT"
  RWCString condition;  ///< read, never written
  RWCString lagrangianGroupName;
  RWCString couplingName;
  Handle<TLBCParameters> parameters;  ///< of the computation's list; while reading: own
  Handle<TLInitSolTurbo> initialSolutionTurbo;
  Handle<TLInjectionSector> injectionSector;
  std::vector<std::int32_t> controlSurfaces;
  std::vector<RWCString> controlSurfaceNames;
  std::int32_t projectType;
  std::int32_t bcParametersIndex = -1;           ///< into the computation's list, from 0; -1: none
  std::array<std::int32_t, 4> indices{};         ///< uMin uMax wMin wMax on the face
  std::array<std::int32_t, 3> bcIndices{};       ///< block, face, patch of this condition
  std::array<std::int32_t, 6> connectionInfo{};  ///< block, face, patch (from 1), orientation
  std::int32_t couplingType = 0;
  std::int32_t deformationType = 0;
  std::int32_t modalStructureIndex = 0;

 private:
  friend struct TLBCFormat;
  bool hasSolidParameters() const;
  void writeControlSurfaces(TLTextSink& sink) const;

  std::int32_t patchCount_ = 0;
};
