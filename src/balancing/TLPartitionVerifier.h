#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "balancing/TLBlockMesh.h"
#include "balancing/TLCoarsening.h"
#include "balancing/TLPartition.h"

/// Checks a finished partition against the mesh that it was made from, by other means than those
/// that made it: loads from the mesh's cells in whole numbers, couplings by looking at each pair of
/// blocks, placing by counting.
class TLPartitionVerifier {
 public:
  /// Nothing is owned; both must outlive this object.
  TLPartitionVerifier(const TLBlockMesh& mesh, const TLCoarsening& coarsening)
      : mesh_(mesh), coarsening_(coarsening) {}

  /// What is wrong with `partition`, a line each; nothing for a good one.
  std::vector<std::string> faults(const TLPartition& partition) const;

  /// The faults, and one more when distributing the same mesh once more, from the start, doesn't
  /// give `trace`, byte for byte.
  std::vector<std::string> faults(const TLPartition& partition, std::int32_t nbProcessors,
                                  float tolerance, std::int32_t adjustProcessors,
                                  const std::string& trace) const;

  /// In words: from what to what the tolerance rose, and why.
  static std::string explanation(const TLPartition& partition);

 private:
  using Faults = std::vector<std::string>;
  void checkPlaces(const TLPartition& partition, Faults& faults) const;
  void checkLoads(const TLPartition& partition, Faults& faults) const;
  void checkLinks(const TLPartition& partition, Faults& faults) const;
  void checkCouplings(const TLPartition& partition, Faults& faults) const;
  void checkLimits(const TLPartition& partition, Faults& faults) const;
  void checkPasses(const TLPartition& partition, Faults& faults) const;

  const TLBlockMesh& mesh_;
  const TLCoarsening& coarsening_;
};
