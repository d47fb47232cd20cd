#pragma once

#include <cstdint>
#include <vector>

#include "balancing/TLPartitionGraph.h"
#include "textio/RWCString.h"

/// A distribution of the same graph by METIS (k-way), as an alternative to TLPartition. METIS
/// balances and cuts globally, where TLPartition grows groups one by one.
class TLMetisPartition {
 public:
  /// Distributes `graph` over `nbProcessors`. Weights go to METIS as whole numbers, scaled down
  /// when their sum would overflow.
  TLMetisPartition(const TLPartitionGraph& graph, std::int32_t nbProcessors);

  /// Processor of each block, both from 1; empty when METIS refused.
  const std::vector<std::int32_t>& owners() const { return owners_; }
  /// Why there is no distribution; empty when there is.
  const RWCString& refusal() const { return refusal_; }

 private:
  void run(const TLPartitionGraph& graph, std::int32_t nbProcessors);

  std::vector<std::int32_t> owners_;
  RWCString refusal_;
};
