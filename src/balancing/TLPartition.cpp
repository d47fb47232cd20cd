#include "balancing/TLPartition.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "platform/TLConsole.h"
#include "textio/TLTextSink.h"

namespace {

// More processors than any machine has: what is beyond comes from a damaged file.
constexpr std::int32_t kMostProcessors = 1 << 20;

// The numbers from 1 by their weight, heaviest first; equal ones keep their order.
std::vector<std::int32_t> sortedByWeight(const std::vector<float>& weights) {
  std::vector<std::pair<float, std::int32_t>> pairs;
  pairs.reserve(weights.size());
  std::int32_t number = 0;
  for (const float weight : weights) pairs.emplace_back(weight, ++number);
  std::sort(pairs.begin(), pairs.end(), [](const auto& a, const auto& b) {
    return a.first != b.first ? a.first > b.first : a.second < b.second;
  });
  std::vector<std::int32_t> numbers;
  numbers.reserve(pairs.size());
  for (const auto& pair : pairs) numbers.push_back(pair.second);
  return numbers;
}

RWCString spaced(std::int32_t number) {
  return " " + std::to_string(number) + " ";
}

std::int32_t truncated(float value) {
  constexpr float kLimit = 2147483648.0F;
  return value > -kLimit && value < kLimit ? static_cast<std::int32_t>(value) : 0;
}

TLPartitionGraph graphOf(const TLBlockMesh& mesh, const TLCoarsening& coarsening) {
  console() << "TLPartition::TLPartition \n";
  return mesh.blocks.empty() ? TLPartitionGraph() : TLPartitionGraph(mesh, coarsening);
}

}  // namespace

// Construction ---------------------------------------------------------------------------------

TLPartition::TLPartition(const TLBlockMesh& mesh, const TLCoarsening& coarsening,
                         std::int32_t nbProcessors, float tolerance, std::int32_t adjustProcessors)
    : graph_(graphOf(mesh, coarsening)),
      distribution_(graph_),
      startTolerance_(tolerance),
      tolerance_(tolerance),
      nbProcessors_(nbProcessors) {
  if (!usable()) {
    refusal_ = "the mesh has no blocks";
    return;
  }
  if (adjustProcessors == 1) limitToBlocks();
  for (const float load : graph_.loads()) {
    totalLoad_ += load;
    hasNegativeLoad_ = hasNegativeLoad_ || load < 0.0F;
  }
  setLimits();
  console() << "Sorting ....";
  sortBlocks();
  console() << "done\n";
  if (adjustProcessors == 1) limitToLargestBlock();
  findRefusal(mesh, coarsening);
  reset();
}

void TLPartition::limitToBlocks() {
  if (nbProcessors_ <= nbBlocks()) return;
  adjusted_ = 1;
  nbProcessors_ = nbBlocks();
  warnings_ += "Warning : The number of task cannot be greater than the number of blocks \n ";
  warnings_ += "The number of processor has been set to " + spaced(nbBlocks()) + " \n ";
}

void TLPartition::setLimits() {
  averageLoad_ = totalLoad_ / static_cast<float>(nbProcessors_);
  maximumLoad_ = (1.0F + tolerance_) * averageLoad_;
}

void TLPartition::sortBlocks() {
  sortedIds_ = sortedByWeight(graph_.loads());
  positions_.resize(sortedIds_.size());
  for (std::size_t i = 0; i < sortedIds_.size(); ++i) {
    positions_[static_cast<std::size_t>(sortedIds_[i] - 1)] = static_cast<std::int32_t>(i);
  }
}

void TLPartition::limitToLargestBlock() {
  const std::int32_t largest = sortedIds_.front();
  if (!(graph_.load(largest) > maximumLoad_)) return;
  adjusted_ = 1;
  warnings_ += "Warning: The load of the largest block (" + spaced(largest) + ") \n ";
  warnings_ += "is bigger than the Maximal load for correct load balancing on" +
               spaced(nbProcessors_) + "processors \n ";
  nbProcessors_ = truncated(totalLoad_ / maximumLoad_);
  warnings_ += "The number of processor has been set to " + std::to_string(nbProcessors_) + " \n ";
  setLimits();
}

void TLPartition::findRefusal(const TLBlockMesh& mesh, const TLCoarsening& coarsening) {
  if (nbProcessors_ < 1) {
    refusal_ = "there is no processor to put a block on";
  } else if (nbProcessors_ > kMostProcessors) {
    refusal_ = "there are more than " + std::to_string(kMostProcessors) + " processors";
  } else if (!mesh.unstructured &&
             std::any_of(mesh.blocks.begin(), mesh.blocks.end(),
                         [&](const auto& block) { return coarsening.hasNegativeExtent(block); })) {
    refusal_ = "a block has a negative extent";
  } else if (graph_.hasNegativeLink()) {
    refusal_ = "a connection has a negative extent";
  } else if (!(totalLoad_ > 0.0F)) {
    refusal_ = "the blocks have no weight";
  }
}

void TLPartition::reset() {
  if (!usable()) return;
  nbHeld_ = nbProcessors_ > kMostProcessors ? 0 : std::max(nbProcessors_, 0);
  distribution_.reset(nbHeld_);
  firstFree_ = 0;
  cost_ = Cost();
  savedCost_ = Cost();
}

// Distributing ---------------------------------------------------------------------------------

int TLPartition::partition() {
  if (!usable()) return 0;
  reset();
  partitioned_ = 1;
  if (!refusal_.empty()) {
    giveUp(refusal_);
    return 0;
  }
  tolerance_ = startTolerance_;
  maximumLoad_ = averageLoad_;
  if (!placeAll()) {
    giveUp("the tolerance can't grow any more");
    return 0;
  }
  console() << "Initial Partition\n";
  report();
  tolerance_ = startTolerance_;
  maximumLoad_ = (1.0F + tolerance_) * averageLoad_;
  console() << "Refining\n";
  refine();
  console() << "Refined Partition \n";
  report();
  return 0;
}

void TLPartition::giveUp(const RWCString& why) {
  refusal_ = why;
  console() << "TLPartition: nothing is distributed: " << why << '\n';
}

bool TLPartition::placeAll() {
  std::vector<float> recorded(static_cast<std::size_t>(nbProcessors_), 0.0F);
  std::int32_t stalled = 0;
  nbPasses_ = 0;
  passes_.clear();
  for (; !allAssigned(); ++nbPasses_) {
    if (nbPasses_ != 0 && nbPasses_ % 5 == 0) {
      TLTextSink line;
      line << "Warning : tolerance increased to :" << tolerance_ << '\n';
      console() << line.text();
    }
    maximumLoad_ = static_cast<float>((static_cast<double>(tolerance_) + 1.0) *
                                      static_cast<double>(averageLoad_));
    const auto order = sortedByWeight(recorded);
    const std::int32_t freeBefore = distribution_.nbFree();
    pass(order);
    recordPass(freeBefore);
    for (std::int32_t p = 1; p <= nbProcessors_; ++p) {
      recorded[static_cast<std::size_t>(p - 1)] = distribution_.load(p);
    }
    const float before = tolerance_;
    tolerance_ += 0.01F;
    if (tolerance_ > before) continue;
    if (stalled++ > nbBlocks()) return allAssigned();
  }
  return true;
}

void TLPartition::recordPass(std::int32_t freeBefore) {
  constexpr std::size_t kMostRecorded = 1 << 16;
  if (passes_.size() == kMostRecorded) passes_.pop_back();
  passes_.push_back({tolerance_, maximumLoad_, freeBefore, distribution_.nbFree()});
}

void TLPartition::pass(const std::vector<std::int32_t>& order) {
  for (auto processor = order.rbegin(); processor != order.rend(); ++processor) {
    if (allAssigned() || visit(*processor) == Turn::endPass) return;
  }
}

TLPartition::Turn TLPartition::visit(std::int32_t processor) {
  if (distribution_.load(processor) == 0.0F) {
    const auto seed = static_cast<std::size_t>(firstFreePosition());
    distribution_.assign(sortedIds_[seed], processor);
    savedCost_ = cost_;
  }
  return grow(processor) ? Turn::next : takeFarBlock(processor);
}

// Takes free neighbours as long as one fits. False when there is none at all; true when there are,
// but none fits. A neighbour that didn't fit needn't be tried again as the load grows, for the
// rounded sum grows with it; only where a block weighs less than nothing the load may also fall.
bool TLPartition::grow(std::int32_t processor) {
  distribution_.unpark(processor, maximumLoad_);
  TLDistribution::Candidate candidate;
  while (distribution_.nextCandidate(processor, candidate)) {
    const float weight = graph_.load(candidate.block);
    if (distribution_.load(processor) + weight > maximumLoad_) {
      distribution_.park(processor, candidate);
    } else {
      distribution_.assign(candidate.block, processor);
      if (hasNegativeLoad_) distribution_.unpark(processor, maximumLoad_);
    }
    savedCost_ = cost_;
  }
  return distribution_.hasParked(processor);
}

// The processor has nowhere to grow, and takes the heaviest free block that fits from anywhere.
// A block that it holds only on trial isn't entered in its list before it is kept. Blocks that
// the search passes lose their owner, whoever it is: that happens only while the processor itself
// is above the limit.
TLPartition::Turn TLPartition::takeFarBlock(std::int32_t processor) {
  const std::int32_t last = nbBlocks() - 1;
  std::int32_t i = allAssigned() ? last : firstFreePosition();
  const auto blockAt = [this](std::int32_t at) { return sortedIds_[static_cast<std::size_t>(at)]; };
  const auto isFree = [&](std::int32_t at) { return distribution_.owner(blockAt(at)) == 0; };
  bool held = isFree(i);
  if (!held) tellPresent(blockAt(i));
  const auto load = [&] {
    const float own = distribution_.load(processor);
    return held ? own + graph_.load(blockAt(i)) : own;
  };
  const bool endsBelow = i == last && load() < maximumLoad_;
  while (!endsBelow && load() > maximumLoad_ && i < last) {
    if (!held && !isFree(i)) release(blockAt(i));
    held = isFree(++i);
  }
  const bool refused = !endsBelow && i == last && load() > maximumLoad_ && (held || !isFree(i));
  if (refused && !held) release(blockAt(i));
  distribution_.settle();
  if (!refused && held) distribution_.assign(blockAt(i), processor);
  savedCost_ = cost_;
  return refused ? Turn::next : Turn::endPass;
}

void TLPartition::release(std::int32_t block) {
  const std::int32_t processor = distribution_.owner(block);
  distribution_.detach(block);
  distribution_.settleLoad(processor);
  firstFree_ = std::min(firstFree_, positions_[static_cast<std::size_t>(block - 1)]);
}

// Requires a free block.
std::int32_t TLPartition::firstFreePosition() {
  while (distribution_.owner(sortedIds_[static_cast<std::size_t>(firstFree_)]) != 0) ++firstFree_;
  return firstFree_;
}

// Looks, for each block without a link in its own group, for the processor that it leans to. No
// block moves: the step leaves the distribution as it is. Answers the last such processor.
std::int32_t TLPartition::refine() const {
  std::int32_t last = 0;
  for (std::int32_t p = 1; p <= nbHeld_; ++p) {
    std::int32_t target = p;
    for (const auto block : distribution_.blocks(p)) {
      if (distribution_.coupling(block, p) != 0.0F) continue;
      const std::int32_t strongest = distribution_.strongestProcessor(block, p);
      if (strongest != 0) target = strongest;
    }
    last = target;
  }
  return last;
}

std::int32_t TLPartition::removeEmptyProcessors() {
  if (!usable() || !refusal_.empty()) return 0;
  std::int32_t count = 0;
  for (std::int32_t p = nbProcessors_; p >= 1; --p) {
    if (load(p) == 0.0F) ++count;
  }
  if (count == 0) return 0;
  nbProcessors_ -= count;
  adjusted_ = 1;
  warnings_ += "Warning: " + spaced(count) + "empty processes have been removed endl ";
  warnings_ += "The number of processor has been set to " + spaced(nbProcessors_);
  setLimits();
  evaluate();
  return count;
}

bool TLPartition::distribute() {
  partition();
  while (removeEmptyProcessors() > 0) {
    if (nbProcessors_ < 1) {
      giveUp("there is no processor to put a block on");
      break;
    }
    reset();
    partition();
  }
  return refusal_.empty();
}

// The distribution -----------------------------------------------------------------------------

std::int32_t TLPartition::owner(std::int32_t block) const {
  return isBlock(block) ? distribution_.owner(block) : 0;
}

std::vector<std::int32_t> TLPartition::owners() const {
  std::vector<std::int32_t> all;
  for (std::int32_t block = 1; block <= nbBlocks(); ++block) {
    all.push_back(distribution_.owner(block));
  }
  return all;
}

float TLPartition::load(std::int32_t processor) const {
  return isProcessor(processor) ? distribution_.load(processor) : 0.0F;
}

float TLPartition::coupling(std::int32_t block, std::int32_t processor) const {
  return isBlock(block) && isProcessor(processor) ? distribution_.coupling(block, processor) : 0.0F;
}

double TLPartition::cut(std::int32_t processorA, std::int32_t processorB) const {
  if (!isProcessor(processorA) || !isProcessor(processorB)) return 0.0;
  return distribution_.cut(processorA, processorB);
}

std::span<const std::int32_t> TLPartition::blocks(std::int32_t processor) const {
  if (!isProcessor(processor)) return {};
  return distribution_.blocks(processor);
}

std::int32_t TLPartition::freeNeighbours(std::int32_t processor, std::vector<float>& scores,
                                         std::vector<std::int32_t>& ids) const {
  const auto n = static_cast<std::size_t>(nbBlocks());
  std::vector<float> sums(n, 0.0F);
  std::vector<std::int32_t> found(n, 0);
  std::int32_t count = 0;
  for (const auto block : blocks(processor)) {
    for (const auto& link : graph_.links(block)) {
      const auto at = static_cast<std::size_t>(link.id - 1);
      if (distribution_.owner(link.id) != 0) continue;
      sums[at] += link.weight;
      if (sums[at] == 0.0F || found[at] != 0) continue;
      found[at] = link.id;
      ++count;
    }
  }
  const auto order = sortedByWeight(sums);
  scores.resize(n);
  ids.resize(n);
  for (std::size_t i = 0; i < n; ++i) {
    const auto from = static_cast<std::size_t>(order[i] - 1);
    scores[i] = sums[from];
    ids[i] = found[from];
  }
  return count;
}

bool TLPartition::isIn(std::int32_t block, std::int32_t processor) const {
  return isBlock(block) && isProcessor(processor) && distribution_.owner(block) == processor;
}

void TLPartition::tellPresent(std::int32_t block) const {
  console() << " Block " << block << " already present\n";
}

int TLPartition::assign(std::int32_t block, std::int32_t processor) {
  if (!isBlock(block) || !isProcessor(processor)) {
    console() << "Block " << block << " Cannot be added to task " << processor << '\n';
    return 0;
  }
  if (distribution_.owner(block) != 0) {
    tellPresent(block);
    return 0;
  }
  distribution_.assign(block, processor);
  return 1;
}

int TLPartition::unassign(std::int32_t block) {
  if (!isBlock(block) || distribution_.owner(block) == 0) {
    console() << "Block " << block << " cannot be removed from partition (not present)\n";
    return 0;
  }
  release(block);
  distribution_.settle();
  return 1;
}

// Measures -------------------------------------------------------------------------------------

void TLPartition::evaluate() {
  if (nbProcessors_ < 1) return;
  float overload = 0.0F;
  float quadratic = 0.0F;
  float absolute = 0.0F;
  float internal = 0.0F;
  for (std::int32_t p = 1; p <= nbProcessors_; ++p) {
    const float d = load(p) - averageLoad_;
    overload = std::max(overload, d);
    if (d > 0.0F) quadratic += d * d;
    absolute += std::fabs(d);
  }
  for (std::int32_t p = 1; p <= nbProcessors_; ++p) {
    internal = static_cast<float>(static_cast<double>(internal) + cut(p, p));
  }
  overload /= averageLoad_;
  cost_.load = absolute / static_cast<float>(nbProcessors_);
  cost_.global = overload > tolerance_ ? kInfinity : std::sqrt(quadratic) - internal;
}

float TLPartition::efficiency() const {
  float largest = 1e-5F;
  for (std::int32_t p = 1; p <= nbProcessors_; ++p) largest = std::max(largest, load(p));
  return averageLoad_ / largest;
}

void TLPartition::report() const {
  if (!usable()) return;
  TLTextSink out;
  out << "Spawn Table : \n";
  for (std::int32_t block = 1; block <= nbBlocks(); ++block) out << ' ' << owner(block);
  out << '\n';
  for (std::int32_t p = 1; p <= nbProcessors_; ++p) reportProcessor(out, p);
  out << '\n';
  out << "Efficiency " << efficiency() << '\n';
  out << "Load, Comm, Global " << savedCost_.load << ' ' << savedCost_.comm << ' '
      << savedCost_.global << '\n';
  console() << out.text();
}

void TLPartition::reportProcessor(TLTextSink& out, std::int32_t processor) const {
  out << "Load(" << processor << ")=" << load(processor) << '\n';
  for (const auto block : blocks(processor)) {
    out << block;
    if (distribution_.coupling(block, processor) == 0.0F) out << '!';
    out << ' ';
  }
  out << '\n';
}
