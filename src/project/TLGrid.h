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
  explicit TLGrid(std::int32_t projectType) : projectType(projectType) {}

  /// Reads the block's lines behind its opening line. 0 with a complaint on the console on failure.
  int read(TLTextSource& source);
  void write(TLTextSink& sink) const;

  /// A block by its number; blocks, faces and patches are counted from 1, as connections count
  /// them. Null outside the grid.
  TLBlock* block(std::int32_t number) const;
  TLFace* face(std::int32_t block, std::int32_t face) const;
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

  static constexpr char kVersionFailure[] = " wrong grid header: cannot determine grid version";

  double version = 1.0;
  std::int32_t projectType;  ///< a TLProjectType; "mesh type" for the balancing
  double gridUnit = 1.0;
  std::int32_t gridLevelI = 1;
  std::int32_t gridLevelJ = 1;
  std::int32_t gridLevelK = 1;
  std::int32_t gridToolVersion = 0;
  std::int32_t showKM5message = 0;
  std::vector<Handle<TLBlock>> blocks;
  std::vector<Handle<TLInitSolTurbo>> initialSolutionTurbos;
  std::vector<Handle<TLFNMB>> connections;
  std::vector<Handle<TLBCParameters>> controlSurfaces;
  std::vector<Handle<TLTopologicalBlade>> blades;
  std::vector<Handle<TLMeridionnalPatch>> meridionalPatches;
  std::vector<Handle<TLMeridionnalPatch>> meridionalPatchesPS;
  std::vector<Handle<TLMeridionnalPatch>> meridionalPatchesSS;
};
