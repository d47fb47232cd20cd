#pragma once

class TLSubProject;

/// Old computations told for each block from what it starts: makes an initial solution of each
/// group of blocks that start alike, and points the blocks at it.
void makeInitialSolutions(TLSubProject& computation);
