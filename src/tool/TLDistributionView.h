#pragma once

#include <nlohmann/json.hpp>

#include <cstdint>
#include <string>
#include <vector>

#include "balancing/TLPartitionGraph.h"

/// A distribution of blocks as people and programs look at it: loads, cut, balance, owners. Made
/// from the graph and the owners alone, whoever computed them.
class TLDistributionView {
 public:
  /// `owners` holds the processor of each block, from 1; `nbProcessors` is at least the highest.
  TLDistributionView(std::string method, const TLPartitionGraph& graph,
                     std::vector<std::int32_t> owners, std::int32_t nbProcessors);

  /// By what it was made, for people.
  const std::string& method() const { return method_; }
  /// Processor of each block, from 1; 0 for none.
  const std::vector<std::int32_t>& owners() const { return owners_; }
  /// Those without a block included.
  std::int32_t nbProcessors() const { return static_cast<std::int32_t>(loads_.size()); }
  /// Weight of the blocks of a processor, in cells; `processor` counts from 0.
  double load(std::size_t processor) const { return loads_[processor]; }
  /// Blocks of a processor, from 0.
  std::int32_t nbBlocks(std::size_t processor) const { return blocks_[processor]; }
  /// In cells; 0 without processors.
  double averageLoad() const;
  /// In cells; 0 without processors.
  double largestLoad() const;
  /// Average load divided by the largest; 0 when there is no load.
  double efficiency() const;
  /// Weight of the edges between blocks of different processors, and of all edges.
  double cut() const { return cut_; }
  /// Weight of all edges.
  double links() const { return links_; }

  /// All of the above as one object; owners count from 0 there.
  nlohmann::json json() const;
  /// "OWNERS", and the processor of each block, from 0.
  std::string ownersLine() const;

 private:
  std::string method_;
  std::vector<std::int32_t> owners_;
  std::vector<double> loads_;
  std::vector<std::int32_t> blocks_;
  double cut_ = 0.0;
  double links_ = 0.0;
};

/// A table of the views side by side, a row per processor with a bar for its load, and a summary.
std::string distributionTable(const std::vector<TLDistributionView>& views);
