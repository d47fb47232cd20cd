#pragma once

#include "balancing/TLBlockMesh.h"

class TLBlock;
class TLGrid;

/// Sizes and kind of one block.
TLBlockMesh::Block blockOf(const TLBlock& block);

/// The blocks and connections of a project's grid, in one pass over it. A patch that a full
/// non-matching connection names and the grid doesn't have is taken as a single node.
TLBlockMesh blockMeshOf(const TLGrid& grid);
