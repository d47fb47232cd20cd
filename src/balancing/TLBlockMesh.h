#pragma once

#include <cstdint>
#include <vector>

/// A mesh as the partitioning sees it: blocks with their sizes, and the patches by which they are
/// connected. Blocks are numbered from 1. Everything holds what the project's files say, unchecked.
struct TLBlockMesh {
  /// A direction of a block's index space.
  enum Direction : std::uint8_t { I = 0, J = 1, K = 2 };

  /// Size and kind of a block, all that its weight is computed from.
  struct Block {
    std::int32_t nodes[3] = {9, 9, 9};  ///< Node counts along I, J, K (structured meshes).
    std::int32_t nbCells = 0;           ///< Stored number of cells (unstructured meshes).
    bool solid = false;                 ///< A solid block weighs a third of its cells.
  };

  /// A patch on a block's face: its index limits, from 1, along two directions of the block.
  struct Patch {
    Direction u = I;        ///< Direction of the first pair of limits.
    Direction w = J;        ///< Direction of the second, other than `u`.
    std::int32_t uMin = 1;  ///< Limits are node numbers on the finest grid.
    std::int32_t uMax = 1;  ///< Below `uMin` makes a negative interface.
    std::int32_t wMin = 1;  ///< As `uMin`, along `w`.
    std::int32_t wMax = 1;  ///< As `uMax`, along `w`.
  };

  /// A patch of `block` that lies against `neighbour`. Both ends of a connection have one.
  struct Connection {
    std::int32_t block = 0;      ///< Number of the block that has the patch.
    std::int32_t neighbour = 0;  ///< Number of the block at the other side.
    Patch patch;                 ///< As `block` numbers its nodes.
  };

  /// One patch of a full non-matching connection.
  struct Side {
    std::int32_t block = 0;  ///< Number of the block that has the patch.
    Patch patch;             ///< As `block` numbers its nodes.
  };

  /// Two groups of patches that lie against each other without matching.
  struct FullNonMatching {
    std::vector<Side> left;   ///< The block of its first patch is the hub of the edges.
    std::vector<Side> right;  ///< A connection with an empty side is left out.
  };

  bool unstructured = false;  ///< Weights are stored cell numbers, not computed from nodes.
  std::vector<Block> blocks;  ///< Block number n is element n - 1.
  std::vector<Connection> connections;           ///< In the order of block, face and patch.
  std::vector<FullNonMatching> fullNonMatching;  ///< In the order of the file.

  /// Numbers of blocks run from 1 to this.
  std::int32_t nbBlocks() const { return static_cast<std::int32_t>(blocks.size()); }
};
