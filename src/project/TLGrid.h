#pragma once

#include <cstdint>
#include <vector>

#include "parameters/TLBCParameters.h"
#include "project/TLBlock.h"
#include "project/TLFNMB.h"
#include "project/TLInitSolTurbo.h"
#include "project/TLMeridionnalPatch.h"
#include "project/TLTopologicalBlade.h"
#include "textio/Handle.h"
#include "textio/RefCounted.h"
#include "textio/TLTextSink.h"
#include "textio/TLTextSource.h"

/// The mesh as the task manager sees it ("grid_bc"): not its cells, which stay in the mesh files,
/// but the blocks with their sizes, faces and settings, and how they are connected.
class TLGrid : public RefCounted {
 public:
  /// An empty grid for a project of this type (a TLProjectType).
  explicit TLGrid(std::int32_t projectType) : projectType(projectType) {}

  /// Reads the block's lines behind its opening line. 0 with a complaint on the console on failure.
  int read(TLTextSource& source);
  /// The lines of the block, without its opening and closing one.
  void write(TLTextSink& sink) const;

  /// A block by its number; blocks, faces and patches are counted from 1, as connections count
  /// them. Null outside the grid.
  TLBlock* block(std::int32_t number) const;
  /// Face number `face` of a block, in the order of the file; null outside the grid.
  TLFace* face(std::int32_t block, std::int32_t face) const;
  /// Patch number `patch` of a face, which is its condition of that number; null outside the grid.
  TLBC* patch(std::int32_t block, std::int32_t face, std::int32_t patch) const;

  /// Moves the records that conditions brought along (old files) to the end of the computation's
  /// `list`, since conditions are written with an index only.
  void moveParametersTo(std::vector<Handle<TLBCParameters>>& list);

  /// Points each condition at its record in the computation's `list`, by index, and settles what
  /// depends on it. Indices outside the list stay without.
  void linkParameters(const std::vector<Handle<TLBCParameters>>& list);

  /// Calls `visit(TLBC&)` for every condition, in the order of the file.
  template <class Visit>
  void forEachCondition(Visit visit) const {
    for (const auto& block : blocks) {
      for (const auto& face : block->faces) {
        for (const auto& condition : face->conditions) visit(*condition);
      }
    }
  }

  /// Printed when the grid's version line holds no number.
  static constexpr char kVersionFailure[] = " wrong grid header: cannot determine grid version";

  double version = 1.0;                 ///< As read; 1.0 is what is written.
  std::int32_t projectType;             ///< a TLProjectType; "mesh type" for the balancing
  double gridUnit = 1.0;                ///< Unit of the mesh's coordinates. Carried.
  std::int32_t gridLevelI = 1;          ///< Grid levels of the mesh along I.
  std::int32_t gridLevelJ = 1;          ///< Grid levels along J.
  std::int32_t gridLevelK = 1;          ///< Grid levels along K.
  std::int32_t gridToolVersion = 0;     ///< Version of the mesh tool ("ZYVGRIDVERSION").
  std::int32_t showKM5message = 0;      ///< Carried for the interface.
  std::vector<Handle<TLBlock>> blocks;  ///< Block number n is element n - 1.
  /// Carried, as are the blades and patches.
  std::vector<Handle<TLInitSolTurbo>> initialSolutionTurbos;
  /// The full non-matching ones; matching ones are conditions.
  std::vector<Handle<TLFNMB>> connections;
  /// Surfaces over which forces are summed up.
  std::vector<Handle<TLBCParameters>> controlSurfaces;
  std::vector<Handle<TLTopologicalBlade>> blades;               ///< Where the mesh's blades lie.
  std::vector<Handle<TLMeridionnalPatch>> meridionalPatches;    ///< Patches of the meridional view.
  std::vector<Handle<TLMeridionnalPatch>> meridionalPatchesPS;  ///< Those of the pressure side.
  std::vector<Handle<TLMeridionnalPatch>> meridionalPatchesSS;  ///< Those of the suction side.
};
