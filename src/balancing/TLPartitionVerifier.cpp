#include "balancing/TLPartitionVerifier.h"

#include <fmt/format.h>

#include <cmath>
#include <map>
#include <sstream>

#include "platform/TLConsole.h"

namespace {

// What single precision may lose in a sum of so many terms.
double roundingOf(double sum, std::size_t terms) {
  return std::fabs(sum) * static_cast<double>(terms + 1) * 6e-8 + 1e-6;
}

}  // namespace

std::vector<std::string> TLPartitionVerifier::faults(const TLPartition& partition) const {
  Faults faults;
  if (!partition.refusal().empty()) {
    faults.push_back("nothing was distributed: " + partition.refusal());
    return faults;
  }
  checkPlaces(partition, faults);
  checkLinks(partition, faults);
  if (!faults.empty()) return faults;  // the rest takes these for granted
  checkLoads(partition, faults);
  checkCouplings(partition, faults);
  checkLimits(partition, faults);
  checkPasses(partition, faults);
  return faults;
}

std::vector<std::string> TLPartitionVerifier::faults(const TLPartition& partition,
                                                     std::int32_t nbProcessors, float tolerance,
                                                     std::int32_t adjustProcessors,
                                                     const std::string& trace) const {
  Faults found = faults(partition);
  std::ostringstream out;
  {
    const TLConsoleRedirect redirect(out);
    TLPartition again(mesh_, coarsening_, nbProcessors, tolerance, adjustProcessors);
    again.distribute();
  }
  if (out.str() != trace) found.push_back("a second run on the same mesh gives another trace");
  return found;
}

void TLPartitionVerifier::checkPlaces(const TLPartition& partition, Faults& faults) const {
  std::vector<int> times(mesh_.blocks.size(), 0);
  for (std::int32_t p = 1; p <= partition.nbProcessors(); ++p) {
    for (const auto block : partition.blocks(p)) {
      if (block < 1 || block > mesh_.nbBlocks()) {
        faults.push_back(
            fmt::format("processor {} holds block {}, which does not exist", p, block));
        continue;
      }
      ++times[static_cast<std::size_t>(block - 1)];
      if (partition.owner(block) != p) {
        faults.push_back(fmt::format("block {} is in the list of processor {}, but belongs to {}",
                                     block, p, partition.owner(block)));
      }
    }
  }
  for (std::size_t b = 0; b < times.size(); ++b) {
    if (times[b] != 1)
      faults.push_back(fmt::format("block {} is placed {} times", b + 1, times[b]));
  }
}

void TLPartitionVerifier::checkLoads(const TLPartition& partition, Faults& faults) const {
  for (std::int32_t p = 1; p <= partition.nbProcessors(); ++p) {
    std::int64_t cells = 0;
    for (const auto block : partition.blocks(p)) {
      const auto& data = mesh_.blocks[static_cast<std::size_t>(block - 1)];
      cells += mesh_.unstructured ? data.nbCells : coarsening_.nbCells(data);
    }
    const auto exact = static_cast<double>(cells);
    if (std::fabs(exact - partition.load(p)) > roundingOf(exact, partition.blocks(p).size())) {
      faults.push_back(fmt::format("the load of processor {} is {}, but its blocks have {} cells",
                                   p, partition.load(p), cells));
    }
  }
}

void TLPartitionVerifier::checkLinks(const TLPartition& partition, Faults& faults) const {
  const auto& graph = partition.graph();
  for (std::int32_t b = 1; b <= graph.nbBlocks(); ++b) {
    for (const auto& link : graph.links(b)) {
      if (link.weight != graph.weight(link.id, b)) {
        faults.push_back(
            fmt::format("the edge of blocks {} and {} weighs {} at one end and {} at "
                        "the other",
                        b, link.id, link.weight, graph.weight(link.id, b)));
      }
    }
  }
}

void TLPartitionVerifier::checkCouplings(const TLPartition& partition, Faults& faults) const {
  const auto& graph = partition.graph();
  for (std::int32_t b = 1; b <= graph.nbBlocks(); ++b) {
    std::map<std::int32_t, double> sums;
    for (const auto& link : graph.links(b)) sums[partition.owner(link.id)] += link.weight;
    for (const auto& [processor, sum] : sums) {
      const double told = partition.coupling(b, processor);
      if (std::fabs(told - sum) > roundingOf(sum, graph.links(b).size())) {
        faults.push_back(fmt::format("block {} is coupled to processor {} by {}, not by {}", b,
                                     processor, sum, told));
      }
    }
  }
}

// A processor may pass the limit of the last pass only by a single block that it was started with.
void TLPartitionVerifier::checkLimits(const TLPartition& partition, Faults& faults) const {
  if (partition.passes().empty()) return;
  const float limit = partition.passes().back().maximumLoad;
  for (std::int32_t p = 1; p <= partition.nbProcessors(); ++p) {
    std::size_t weighing = 0;
    for (const auto block : partition.blocks(p)) {
      if (partition.graph().load(block) != 0.0F) ++weighing;
    }
    if (partition.load(p) > limit && weighing > 1) {
      faults.push_back(fmt::format("processor {} has a load of {} in {} blocks, above the limit {}",
                                   p, partition.load(p), weighing, limit));
    }
  }
}

void TLPartitionVerifier::checkPasses(const TLPartition& partition, Faults& faults) const {
  const auto& passes = partition.passes();
  for (std::size_t i = 0; i < passes.size(); ++i) {
    const bool last = i + 1 == passes.size();
    if ((passes[i].freeAfter == 0) != last) {
      faults.push_back(fmt::format("pass {} left {} blocks, and there {} another", i + 1,
                                   passes[i].freeAfter, last ? "wasn't" : "was"));
    }
  }
}

std::string TLPartitionVerifier::explanation(const TLPartition& partition) {
  const auto& passes = partition.passes();
  if (passes.empty()) return "no pass was made";
  if (passes.size() == 1) {
    return fmt::format("one pass placed all blocks within a tolerance of {}",
                       passes.front().tolerance);
  }
  std::size_t idle = 0;
  for (const auto& pass : passes) {
    if (pass.freeAfter >= pass.freeBefore) ++idle;
  }
  return fmt::format(
      "{} passes raised the tolerance from {} to {}: the first left {} of {} blocks without a "
      "place; {} later ones ended when a block without free neighbours had been placed, {} because "
      "no free block fitted",
      partition.nbPasses(), passes.front().tolerance, passes.back().tolerance,
      passes.front().freeAfter, passes.front().freeBefore, passes.size() - 1 - idle, idle);
}
