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

  const std::string& method() const { return method_; }
  const std::vector<std::int32_t>& owners() const { return owners_; }
  std::int32_t nbProcessors() const { return static_cast<std::int32_t>(loads_.size()); }
  double load(std::size_t processor) const { return loads_[processor]; }
  std::int32_t nbBlocks(std::size_t processor) const { return blocks_[processor]; }
  double averageLoad() const;
  double largestLoad() const;
  /// Average load divided by the largest; 0 when there is no load.
  double efficiency() const;
  /// Weight of the edges between blocks of different processors, and of all edges.
  double cut() const { return cut_; }
  double links() const { return links_; }

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
