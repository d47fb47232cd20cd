#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

/// What a generated run file holds. The defaults give a small structured mesh.
struct RunFileOptions {
  /// Blocks of the lattice in the three directions.
  std::array<int, 3> blocks{2, 2, 2};
  /// Nodes of a block in the three directions; with `sizeSpread` above 0 the blocks' sizes differ
  /// by up to that many nodes, in a pattern that depends on the seed only.
  std::array<int, 3> nodes{17, 17, 17};
  int sizeSpread = 0;
  /// Patches of each face, cut along its first direction.
  int patchesPerFace = 1;
  /// Full non-matching connections, each between two neighbours of the lattice's first direction.
  int fullNonMatching = 0;
  /// Condition records of the computation that the boundary patches point at.
  int conditionRecords = 3;
  /// An unstructured (HEXA) project: each block with hexa parameters, fluid, partitions and mesh
  /// quality.
  bool unstructured = false;
  /// Unstructured: processors of the run, dealt out to the blocks in turn.
  int processors = 4;
  /// Unstructured: further hexa parameters of each block, which nothing reads.
  int furtherParameters = 20;
  /// Lines that stand in the "computation" block ahead of everything else, each with its new line.
  std::string computationLines;
  /// The lines of the "solver_parameters" block; empty for no such block.
  std::string solverParameters;
  /// Paths in the file.
  std::string gridFile = "/usr/unknown";
  std::uint32_t seed = 1;
};

/// Makes run files of any size. The sections of the mesh are made in short and put out by its own
/// records: that those write what they should is seen on the run files of the project's tests.
class RunFileGenerator {
 public:
  explicit RunFileGenerator(RunFileOptions options) : options_(std::move(options)) {}

  /// A whole run file.
  std::string runFile() const;
  /// The lines of the block "grid_bc".
  std::string grid() const;

  int blockCount() const { return options_.blocks[0] * options_.blocks[1] * options_.blocks[2]; }
  /// Nodes of a block (number from 1) in the three directions. Neighbours agree on the nodes they
  /// share, as those of a lattice do.
  std::array<int, 3> nodesOf(int block) const;
  /// The block at the other side of a face (0 to 5: KMIN KMAX JMIN JMAX IMIN IMAX), from 1; 0 for
  /// none.
  int neighbour(int block, int face) const;

 private:
  std::array<int, 3> placeOf(int block) const;
  void appendBlock(std::string& out, int block) const;
  void appendHexaSections(std::string& out, int block) const;
  void appendCondition(std::string& out, int block, int face, int patch) const;
  void appendConnections(std::string& out) const;

  RunFileOptions options_;
};
