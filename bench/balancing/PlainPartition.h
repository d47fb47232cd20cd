#pragma once

#include <cstdint>
#include <ostream>
#include <string>
#include <vector>

#include "balancing/TLBlockMesh.h"
#include "balancing/TLCoarsening.h"

/// The partitioning in its simplest form: linear lists, every sum added up at each question. What
/// it traces and answers is what the real one must trace and answer, to the last bit. Far too slow
/// for large meshes.
class PlainPartition {
 public:
  PlainPartition(const TLBlockMesh& mesh, const TLCoarsening& coarsening, int nbProcessors,
                 float tolerance, int adjustProcessors, std::ostream& out);

  int partition();
  int removeEmptyProcessors();
  void reset();
  /// Partitions until no processor is empty.
  void distribute();

  int owner(int block) const { return owners[block - 1]; }
  float load(int p) const;
  float coupling(int block, int p) const;
  double cut(int a, int b) const;
  int freeNeighbours(int p, std::vector<float>& scores, std::vector<int>& ids) const;
  int assign(int block, int p);
  int unassign(int block);
  bool allAssigned() const;
  void evaluate();
  float efficiency() const;
  void report();

  struct Link {
    int id;
    float weight;
  };
  int nbBlocks = 0;
  int nbProcessors = 0;
  int adjusted = 0;
  int passes = 0;
  float recordTolerance;
  float totalLoad = 0, averageLoad = 0, maximumLoad = 0, tolerance = 0;
  float globalCost = 1e20F, loadCost = 1e20F;
  std::string warnings;
  std::vector<float> blockLoads, sortedLoads;
  std::vector<int> sortedIds, owners;
  std::vector<std::vector<Link>> blocks;
  std::vector<std::vector<int>> processors;

 private:
  void addEdge(int from, int to, double weight);
  float edge(int block, int other) const;
  void faceEdges(const TLBlockMesh& mesh);
  void fullNonMatchingEdges(const TLBlockMesh& mesh);
  void adjustToLargest();
  void onePass(const std::vector<int>& order);
  bool farBlock(int p);
  int firstFree() const;

  TLCoarsening coarsening_;
  std::ostream& out_;
};
