#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "balancing/TLBlockMesh.h"
#include "balancing/TLCoarsening.h"
#include "balancing/TLDistribution.h"
#include "balancing/TLPartitionGraph.h"
#include "textio/RWCString.h"

class TLLoadBalancing;
class TLTextSink;

/// Distributes the blocks of a mesh over processors: one group of connected blocks per processor
/// is grown from the heaviest free block, with a load limit that rises pass by pass until every
/// block has a place. A local object of one balancing. Blocks and processors count from 1. What it
/// does is traced on the console.
///
/// Weights, loads, couplings and limits are held in single precision, and the order of additions
/// is part of the result: the same mesh gives the same distribution and the same trace, to the
/// last bit.
///
/// The loop ends for every mesh. Each pass is finite: a kept block is one free block less, and the
/// search for a far block only goes forward. As long as blocks are free, each pass raises the
/// tolerance by 0.01, and as soon as the limit is above what all blocks with a positive weight
/// weigh together, every pass keeps at least one block and drops none. Without negative weights
/// that is so when the tolerance has reached the number of processors, after some 100 passes for
/// each of them. The tolerance itself stops growing at 262144, where 0.01 is less than half of its
/// last bit. A mesh that isn't done then (more processors than that, or weights that overflowed
/// into negative ones and nearly cancel) gets as many passes more as it has blocks, and is then
/// given up with a line on the console. Meshes with nothing to distribute by are refused likewise:
/// see refusal().
class TLPartition {
 public:
  /// Builds the graph of `mesh`, which isn't kept. `tolerance` is the overload allowed at first.
  /// With `adjustProcessors` 1 the number of processors is lowered to what the mesh is good for.
  TLPartition(const TLBlockMesh& mesh, const TLCoarsening& coarsening, std::int32_t nbProcessors,
              float tolerance, std::int32_t adjustProcessors);
  /// The same for the mesh and the processors of `loadBalancing`, without blocks when that has no
  /// mesh. Comes with the record, which stands above the graph.
  TLPartition(const TLLoadBalancing& loadBalancing, std::int32_t adjustProcessors);
  TLPartition(const TLPartition&) = delete;
  TLPartition& operator=(const TLPartition&) = delete;
  ~TLPartition() = default;

  /// @name Distributing
  /// @{

  /// Distributes all blocks anew and reports. Answers 0.
  int partition();
  /// Drops the processors that got no load, and answers how many. The blocks are not renumbered:
  /// the caller resets and partitions again.
  std::int32_t removeEmptyProcessors();
  /// Frees all blocks, with the present number of processors.
  void reset();
  /// The three of them until no processor is empty. False when the mesh was refused or given up.
  bool distribute();
  /// Why `partition` distributes nothing, in a line; empty when it does.
  const RWCString& refusal() const { return refusal_; }
  /// @}

  /// @name The distribution
  /// Numbers out of range answer 0.
  /// @{

  /// Processor of a block; 0: free.
  std::int32_t owner(std::int32_t block) const;
  /// The owners of all blocks, by block.
  std::vector<std::int32_t> owners() const;
  /// Sum of the weights (cells) of a processor's blocks.
  float load(std::int32_t processor) const;
  /// Sum of the edges (sizes of interfaces) from a block to a processor's blocks.
  float coupling(std::int32_t block, std::int32_t processor) const;
  /// Sum of the edges between all pairs of a block of one and of the other processor.
  double cut(std::int32_t processorA, std::int32_t processorB) const;
  /// The free blocks coupled to a processor, as many as the result says at the front of `ids`, the
  /// most strongly coupled first; `scores` holds the couplings. Both get an element per block.
  std::int32_t freeNeighbours(std::int32_t processor, std::vector<float>& scores,
                              std::vector<std::int32_t>& ids) const;
  /// True when `block` is on `processor`; false for a number out of range, too.
  bool isIn(std::int32_t block, std::int32_t processor) const;
  /// True when no block is free; true without blocks.
  bool allAssigned() const { return distribution_.nbFree() == 0; }
  /// 1, or 0 with a line on the console when the block has an owner or a number is out of range.
  int assign(std::int32_t block, std::int32_t processor);
  /// 1, or 0 with a line on the console when the block has no owner.
  int unassign(std::int32_t block);
  /// @}

  /// @name Measures
  /// @{

  /// Computes the cost of the distribution: balance costs, links kept inside a processor earn.
  void evaluate();
  /// Average load divided by the largest.
  float efficiency() const;
  /// Prints the distribution on the console.
  void report() const;
  /// Weight of all blocks together, in cells.
  float totalLoad() const { return totalLoad_; }
  /// totalLoad() over the number of processors.
  float averageLoad() const { return averageLoad_; }
  /// What a processor may take at the present tolerance.
  float maximumLoad() const { return maximumLoad_; }
  /// Overload allowed at present, as a part of the average load.
  float tolerance() const { return tolerance_; }
  /// What evaluate() found; 1e20 before.
  float globalCost() const { return cost_.global; }
  /// Part of the cost for communication. Never computed: stays 1e20.
  float commCost() const { return cost_.comm; }
  /// Mean absolute deviation of the loads from their average, from evaluate(); 1e20 before.
  float loadCost() const { return cost_.load; }
  /// @}

  /// Those that are distributed over; at most as many as were asked for.
  std::int32_t nbProcessors() const { return nbProcessors_; }
  /// 0 for an empty mesh, with which all operations do nothing.
  std::int32_t nbBlocks() const { return graph_.nbBlocks(); }
  /// 1 when the number of processors was changed, for the reasons in warnings().
  std::int32_t adjusted() const { return adjusted_; }
  /// 1 once partition() has run.
  std::int32_t partitioned() const { return partitioned_; }
  /// Texts of all adjustments of the number of processors.
  const RWCString& warnings() const { return warnings_; }
  /// One pass of the last partition: its limits, and what became of the free blocks in it.
  struct Pass {
    float tolerance = 0.0F;       ///< Overload allowed, as a part of the average.
    float maximumLoad = 0.0F;     ///< In cells.
    std::int32_t freeBefore = 0;  ///< Free blocks at its start.
    std::int32_t freeAfter = 0;   ///< Free blocks at its end.
  };
  /// The passes of the last partition, without those in the middle when there are very many.
  const std::vector<Pass>& passes() const { return passes_; }
  /// Passes that the last partition took.
  std::int32_t nbPasses() const { return nbPasses_; }
  /// Blocks of a processor in the order of their assignment; none for a number out of range.
  std::span<const std::int32_t> blocks(std::int32_t processor) const;
  /// Vertices and edges that are distributed by; lives as long as this object.
  const TLPartitionGraph& graph() const { return graph_; }

 private:
  /// Marks a cost that nobody has computed.
  static constexpr float kInfinity = 1e20F;
  struct Cost {
    float global = kInfinity;
    float comm = kInfinity;
    float load = kInfinity;
  };
  enum class Turn { next, endPass };

  bool usable() const { return nbBlocks() > 0; }
  bool isBlock(std::int32_t block) const { return block >= 1 && block <= nbBlocks(); }
  bool isProcessor(std::int32_t processor) const { return processor >= 1 && processor <= nbHeld_; }
  void limitToBlocks();
  void limitToLargestBlock();
  void findRefusal(const TLBlockMesh& mesh, const TLCoarsening& coarsening);
  void setLimits();
  void sortBlocks();

  bool placeAll();
  void pass(const std::vector<std::int32_t>& order);
  void recordPass(std::int32_t freeBefore);
  Turn visit(std::int32_t processor);
  bool grow(std::int32_t processor);
  Turn takeFarBlock(std::int32_t processor);
  std::int32_t firstFreePosition();
  void release(std::int32_t block);
  void tellPresent(std::int32_t block) const;
  std::int32_t refine() const;
  void giveUp(const RWCString& why);
  void reportProcessor(TLTextSink& out, std::int32_t processor) const;

  TLPartitionGraph graph_;
  TLDistribution distribution_;
  RWCString refusal_;
  float startTolerance_;
  float totalLoad_ = 0.0F;
  float averageLoad_ = 0.0F;
  float maximumLoad_ = 0.0F;
  float tolerance_ = 0.0F;
  Cost cost_;
  Cost savedCost_;
  std::int32_t adjusted_ = 0;
  std::int32_t nbProcessors_;
  std::int32_t nbHeld_ = 0;  // processors that the distribution has
  std::int32_t partitioned_ = 0;
  RWCString warnings_;
  std::vector<std::int32_t> sortedIds_;  // heaviest block first
  std::vector<std::int32_t> positions_;  // of a block in sortedIds_
  std::int32_t firstFree_ = 0;           // no block is free at a position before this one
  bool hasNegativeLoad_ = false;
  std::int32_t nbPasses_ = 0;
  std::vector<Pass> passes_;
};
