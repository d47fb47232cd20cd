#pragma once

#include <cstdint>
#include <vector>

/// A mesh as the partitioning sees it: blocks with their sizes, and the patches by which they are
/// connected. Blocks are numbered from 1. Everything holds what the project's files say, unchecked.
struct TLBlockMesh {
  /// A direction of a block's index space.
  enum Direction : std::uint8_t { I = 0, J = 1, K = 2 };

  struct Block {
    std::int32_t nodes[3] = {9, 9, 9};  ///< Node counts along I, J, K (structured meshes).
    std::int32_t nbCells = 0;           ///< Stored number of cells (unstructured meshes).
    bool solid = false;
  };

  /// A patch on a block's face: its index limits, from 1, along two directions of the block.
  struct Patch {
    Direction u = I;
    Direction w = J;
    std::int32_t uMin = 1;
    std::int32_t uMax = 1;
    std::int32_t wMin = 1;
    std::int32_t wMax = 1;
  };

  /// A patch of `block` that lies against `neighbour`. Both ends of a connection have one.
  struct Connection {
    std::int32_t block = 0;
    std::int32_t neighbour = 0;
    Patch patch;
  };

  /// One patch of a full non-matching connection.
  struct Side {
    std::int32_t block = 0;
    Patch patch;
  };

  /// Two groups of patches that lie against each other without matching.
  struct FullNonMatching {
    std::vector<Side> left;
    std::vector<Side> right;
  };

  bool unstructured = false;
  std::vector<Block> blocks;
  std::vector<Connection> connections;  ///< In the order of block, face and patch.
  std::vector<FullNonMatching> fullNonMatching;

  std::int32_t nbBlocks() const { return static_cast<std::int32_t>(blocks.size()); }
};
