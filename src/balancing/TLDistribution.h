#pragma once

#include <cstdint>
#include <span>
#include <utility>
#include <vector>

#include "balancing/TLPartitionGraph.h"

/// Which block of a graph is on which processor, with everything that is asked of such a
/// distribution kept up to date as blocks come and go. Blocks and processors count from 1; a
/// processor's blocks stand in the order of their assignment.
///
/// Loads and couplings are sums in single precision, in the order of the processor's list, and the
/// order is part of the result. A block enters a list at its tail, so that adding its weight to the
/// former sum is the same sum, to the last bit. When a block leaves, the sums that it was part of
/// are added up anew from the first changed place. An assignment costs the number of the block's
/// links.
///
/// Operations don't check their arguments: the caller does.
class TLDistribution {
 public:
  /// A free block that a processor may take, and how strongly it is attached to it.
  struct Candidate {
    float coupling = 0.0F;   ///< Sum of the weights of the edges to it; above 0.
    std::int32_t block = 0;  ///< From 1; 0: none.
  };

  /// Nothing assigned, no processor. `graph` isn't owned and must outlive this object.
  explicit TLDistribution(const TLPartitionGraph& graph);

  /// Frees all blocks, and makes `nbProcessors` empty processors.
  void reset(std::int32_t nbProcessors);

  /// Processor of a block; 0 for none.
  std::int32_t owner(std::int32_t block) const { return owners_[index(block)]; }
  /// Blocks without a processor.
  std::int32_t nbFree() const { return nbFree_; }
  /// Sum of the weights of a processor's blocks.
  float load(std::int32_t processor) const;
  /// Blocks of a processor.
  std::span<const std::int32_t> blocks(std::int32_t processor) const;
  /// Sum of the weights of the edges from a block to a processor's blocks.
  float coupling(std::int32_t block, std::int32_t processor) const;
  /// The processor other than `except` to which a block is coupled most, the lowest of equals; 0
  /// when there is none.
  std::int32_t strongestProcessor(std::int32_t block, std::int32_t except) const;
  /// Sum of the edges between all pairs of a block of `a` and one of `b`.
  double cut(std::int32_t a, std::int32_t b) const;

  /// Puts a free block on a processor.
  void assign(std::int32_t block, std::int32_t processor);
  /// Takes a block from its processor.
  void unassign(std::int32_t block);

  /// @name Taking many blocks away
  /// Between `detach` and `settle` only owner(), nbFree(), and load() of a processor that was
  /// settled since may be asked.
  /// @{

  /// Takes a block from its processor; the processor's sums are wrong from here on.
  void detach(std::int32_t block);
  /// Brings one processor's list and load up to date, not yet the couplings.
  void settleLoad(std::int32_t processor);
  /// Brings everything up to date, at once for all that were detached.
  void settle();
  /// @}

  /// @name Growing
  /// Each processor keeps its candidates: the free blocks with a coupling above 0, the most
  /// strongly coupled first, and among equals the lowest number first. Those that turned out to
  /// be too heavy are parked until the processor may take more.
  /// @{

  /// Takes the next candidate out; false when there is none left.
  bool nextCandidate(std::int32_t processor, Candidate& candidate);
  /// Sets aside a candidate that nextCandidate() gave.
  void park(std::int32_t processor, Candidate candidate);
  /// Brings the parked candidates back, when the lightest of them would fit in `maximumLoad`.
  void unpark(std::int32_t processor, float maximumLoad);
  /// True when a candidate is parked.
  bool hasParked(std::int32_t processor);
  /// @}

 private:
  struct Processor {
    std::vector<std::int32_t> blocks;  // 0: gone, until the list is settled
    std::vector<float> sums;           // sums[i]: load with the blocks up to i
    std::size_t firstChanged = kNone;
    std::vector<Candidate> heap;    // may hold what is no longer true: see isTrue
    std::vector<Candidate> parked;  // likewise
    float lightestParked = 0.0F;
  };
  struct Coupling {
    std::int32_t processor = 0;
    float value = 0.0F;
  };
  static constexpr std::size_t kNone = static_cast<std::size_t>(-1);

  static std::size_t index(std::int32_t number) { return static_cast<std::size_t>(number - 1); }
  Coupling* findCoupling(std::int32_t block, std::int32_t processor);
  const Coupling* findCoupling(std::int32_t block, std::int32_t processor) const;
  float addCoupling(std::int32_t block, std::int32_t processor, float weight);
  void recomputeCoupling(std::int32_t block, std::int32_t processor);
  void pushCandidate(std::int32_t processor, Candidate candidate);
  bool isTrue(std::int32_t processor, const Candidate& candidate) const;

  const TLPartitionGraph& graph_;
  std::vector<Processor> processors_;
  std::vector<std::int32_t> owners_;
  std::vector<std::uint32_t> places_;  // in the owner's list
  std::vector<Coupling> couplings_;  // of a block: from its first link on, as many as nbCouplings_
  std::vector<std::int32_t> nbCouplings_;
  std::vector<std::pair<std::int32_t, std::int32_t>> detached_;  // block, former processor
  std::vector<std::pair<std::int32_t, std::int32_t>> changed_;   // scratch of settle
  std::int32_t nbFree_ = 0;
};
