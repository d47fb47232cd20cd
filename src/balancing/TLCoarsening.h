#pragma once

#include <array>
#include <cstdint>

#include "balancing/TLBlockMesh.h"

/// How a computation coarsens the mesh, and what cells and interfaces are left of it. All integer
/// arithmetic is that of 32 bits and wraps around, as two's complement does.
struct TLCoarsening {
  std::int32_t nbGridLevels = 1;                      ///< Grid levels that are summed.
  std::array<std::int32_t, 3> gridLevel = {0, 0, 0};  ///< Halvings at every level, by direction.
  std::array<std::int32_t, 3> multigrid = {1, 1, 1};  ///< Whether a direction halves by level, too.

  /// Node count (or index limit) `n` along `direction` at grid level `level`: n - 1 is halved, cut
  /// towards zero, and 1 added.
  std::int32_t coarsened(std::int32_t n, TLBlockMesh::Direction direction,
                         std::int32_t level) const;

  /// Cells of a structured block over all grid levels; a third of them for a solid block.
  std::int32_t nbCells(const TLBlockMesh::Block& block) const;

  /// True when a direction of the block has fewer than no cells at some level.
  bool hasNegativeExtent(const TLBlockMesh::Block& block) const;

  /// Size of a patch over all grid levels: products of 32 bits, summed in single precision.
  float area(const TLBlockMesh::Patch& patch) const;

  /// Nodes of a patch at level 0.
  std::int32_t nbNodes(const TLBlockMesh::Patch& patch) const;
};
