#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "balancing/TLBlockMesh.h"
#include "balancing/TLCoarsening.h"

/// One end of an edge of the graph.
struct TLPartitionLink {
  std::int32_t id = 0;  ///< The block at the other end, from 1.
  float weight = 0.0F;  ///< Size of the common interface.
};

/// A mesh as a weighted graph: a vertex for each block, weighing its cells, and an edge for each
/// pair of connected blocks, weighing their common interface. Both ends of an edge hold the same
/// weight; an edge of a block to itself stands once in its list. Built in one pass over the
/// connections, and never changed.
class TLPartitionGraph {
 public:
  TLPartitionGraph() = default;

  /// Builds the graph, and traces the full non-matching connections on the console. A connection
  /// to a block that doesn't exist is told there, and left out.
  TLPartitionGraph(const TLBlockMesh& mesh, const TLCoarsening& coarsening);

  /// Numbers of blocks run from 1 to this.
  std::int32_t nbBlocks() const { return static_cast<std::int32_t>(loads_.size()); }
  /// Weight of a block, from 1.
  float load(std::int32_t block) const { return loads_[static_cast<std::size_t>(block - 1)]; }
  /// Weights of all blocks in cells; block number n is element n - 1.
  const std::vector<float>& loads() const { return loads_; }
  /// The links of a block, from 1, by ascending number of the other block.
  std::span<const TLPartitionLink> links(std::int32_t block) const {
    const auto at = static_cast<std::size_t>(block - 1);
    return {links_.data() + first_[at], first_[at + 1] - first_[at]};
  }
  /// Number of links before those of `block`, which may be the number of blocks plus 1.
  std::size_t firstLink(std::int32_t block) const {
    return first_[static_cast<std::size_t>(block - 1)];
  }
  /// Weight of the edge between two blocks as the list of `block` holds it; 0 when there is none.
  float weight(std::int32_t block, std::int32_t other) const;

  /// True when an edge weighs less than nothing.
  bool hasNegativeLink() const;

 private:
  struct Face;
  struct Addition;
  std::vector<Face> facesOf(const TLBlockMesh& mesh, const TLCoarsening& coarsening) const;
  std::vector<Addition> fullNonMatchingOf(const TLBlockMesh& mesh,
                                          const TLCoarsening& coarsening) const;
  void addHub(const TLBlockMesh::FullNonMatching& connection, double weight,
              std::vector<Addition>& additions) const;
  void linkFaces(const std::vector<Face>& faces);
  void linkFullNonMatching(std::vector<Addition> additions);
  bool exists(std::int32_t block) const { return block >= 1 && block <= nbBlocks(); }

  std::vector<float> loads_;
  std::vector<std::size_t> first_;
  std::vector<TLPartitionLink> links_;
};
