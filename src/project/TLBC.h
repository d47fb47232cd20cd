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
  /// A condition without a patch, for a project of this type (a TLProjectType).
  explicit TLBC(std::int32_t projectType) : projectType(projectType) {}

  /// Reads the block's lines behind its opening line. 0 with a complaint on the console on failure.
  int read(TLTextSource& source);
  /// The lines of the block, without its opening and closing one. Which of them stand depends on
  /// `type`; without a type its line is left out, since it could not be read again.
  void write(TLTextSink& sink) const;

  /// Name of a control surface. Asking for one past the end fills the gap, with
  /// "No_Force_and_Torque" as element 0 and "UNDEFINED" as the others.
  const RWCString& controlSurfaceName(std::size_t index);
  /// Replaces a control surface's name; a gap up to `index` is filled as in asking.
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
  /// As connectedBlock(), for the face.
  std::int32_t connectedFace() const { return connectionInfo[1]; }
  /// As connectedBlock(), for the patch.
  std::int32_t connectedPatch() const { return connectionInfo[2]; }

  /// Printed when the condition's version line holds no number.
  static constexpr char kVersionFailure[] = " wrong bc header: cannot determine bc version";

  double version = 4.0;  ///< As read; 4.0 is what is written.
  RWCString name;        ///< The patch's name in the mesh.
  RWCString type;        ///< short word: "SOL", "INL", "OUT", "CON", "NMB", "PER", "PERNM", "ROT"
  RWCString condition;   ///< read, never written
  RWCString lagrangianGroupName;      ///< Group of the patch in a particle computation. Carried.
  RWCString couplingName;             ///< Name of the patch in a coupled computation. Carried.
  Handle<TLBCParameters> parameters;  ///< of the computation's list; while reading: own
  Handle<TLInitSolTurbo> initialSolutionTurbo;  ///< Written for "INL" and "ROT"; null: none.
  Handle<TLInjectionSector> injectionSector;    ///< Null: none.
  std::vector<std::int32_t> controlSurfaces;   ///< Numbers of surfaces, one a line; old files only.
  std::vector<RWCString> controlSurfaceNames;  ///< Surfaces in whose sums this patch counts.
  std::int32_t projectType;                    ///< A TLProjectType.
  std::int32_t bcParametersIndex = -1;         ///< into the computation's list, from 0; -1: none
  std::array<std::int32_t, 4> indices{};       ///< uMin uMax wMin wMax on the face
  std::array<std::int32_t, 3> bcIndices{};     ///< block, face, patch of this condition
  std::array<std::int32_t, 6> connectionInfo{};  ///< block, face, patch (from 1), orientation
  std::int32_t couplingType = 0;  ///< 0: not coupled; 2: a surface whose motion or heat is coupled.
  std::int32_t deformationType = 0;  ///< Carried.
  /// Of the structure in modal data; written for "SOL" only.
  std::int32_t modalStructureIndex = 0;

 private:
  friend struct TLBCFormat;
  bool hasSolidParameters() const;
  void writeControlSurfaces(TLTextSink& sink) const;

  std::int32_t patchCount_ = 0;
};
