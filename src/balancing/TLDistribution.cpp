#include "balancing/TLDistribution.h"

#include <algorithm>

namespace {

// Heap order: the better candidate is the one with the stronger coupling, then the lower number.
constexpr auto worse = [](const TLDistribution::Candidate& a, const TLDistribution::Candidate& b) {
  return a.coupling != b.coupling ? a.coupling < b.coupling : a.block > b.block;
};

}  // namespace

TLDistribution::TLDistribution(const TLPartitionGraph& graph) : graph_(graph) {
  const auto n = static_cast<std::size_t>(graph.nbBlocks());
  places_.resize(n);
  couplings_.resize(n == 0 ? 0 : graph.firstLink(graph.nbBlocks() + 1));
  reset(0);
}

void TLDistribution::reset(std::int32_t nbProcessors) {
  const auto n = static_cast<std::size_t>(graph_.nbBlocks());
  processors_.clear();
  processors_.resize(static_cast<std::size_t>(std::max(nbProcessors, 0)));
  owners_.assign(n, 0);
  nbCouplings_.assign(n, 0);
  nbFree_ = graph_.nbBlocks();
}

float TLDistribution::load(std::int32_t processor) const {
  const auto& sums = processors_[index(processor)].sums;
  return sums.empty() ? 0.0F : sums.back();
}

std::span<const std::int32_t> TLDistribution::blocks(std::int32_t processor) const {
  return processors_[index(processor)].blocks;
}

// Couplings ------------------------------------------------------------------------------------

const TLDistribution::Coupling* TLDistribution::findCoupling(std::int32_t block,
                                                             std::int32_t processor) const {
  const Coupling* first = couplings_.data() + graph_.firstLink(block);
  const Coupling* last = first + nbCouplings_[index(block)];
  const Coupling* at = std::find_if(
      first, last, [processor](const Coupling& c) { return c.processor == processor; });
  return at == last ? nullptr : at;
}

TLDistribution::Coupling* TLDistribution::findCoupling(std::int32_t block, std::int32_t processor) {
  return const_cast<Coupling*>(std::as_const(*this).findCoupling(block, processor));
}

float TLDistribution::coupling(std::int32_t block, std::int32_t processor) const {
  const Coupling* known = findCoupling(block, processor);
  return known == nullptr ? 0.0F : known->value;
}

std::int32_t TLDistribution::strongestProcessor(std::int32_t block, std::int32_t except) const {
  Coupling best;
  const Coupling* first = couplings_.data() + graph_.firstLink(block);
  for (const Coupling* c = first; c != first + nbCouplings_[index(block)]; ++c) {
    if (c->processor == except || c->value <= 0.0F) continue;
    if (c->value > best.value || (c->value == best.value && c->processor < best.processor)) {
      best = *c;
    }
  }
  return best.processor;
}

// A block has at most as many couplings as links, so that there is always room.
float TLDistribution::addCoupling(std::int32_t block, std::int32_t processor, float weight) {
  Coupling* known = findCoupling(block, processor);
  if (known == nullptr) {
    known = couplings_.data() + graph_.firstLink(block) + nbCouplings_[index(block)]++;
    *known = {processor, 0.0F};
  }
  return known->value += weight;
}

void TLDistribution::recomputeCoupling(std::int32_t block, std::int32_t processor) {
  std::vector<std::pair<std::uint32_t, float>> terms;  // place in the processor's list, weight
  for (const auto& link : graph_.links(block)) {
    if (owner(link.id) == processor) terms.emplace_back(places_[index(link.id)], link.weight);
  }
  Coupling* known = findCoupling(block, processor);
  if (terms.empty()) {
    if (known == nullptr) return;
    *known = couplings_[graph_.firstLink(block) +
                        static_cast<std::size_t>(--nbCouplings_[index(block)])];
    return;
  }
  std::sort(terms.begin(), terms.end());
  known->value = 0.0F;
  for (const auto& term : terms) known->value += term.second;
  if (owner(block) == 0) pushCandidate(processor, {known->value, block});
}

double TLDistribution::cut(std::int32_t a, std::int32_t b) const {
  double sum = 0.0;
  std::vector<std::pair<std::uint32_t, float>> terms;  // place in b's list, weight
  for (const auto block : blocks(a)) {
    terms.clear();
    for (const auto& link : graph_.links(block)) {
      if (owner(link.id) == b) terms.emplace_back(places_[index(link.id)], link.weight);
    }
    std::sort(terms.begin(), terms.end());
    for (const auto& term : terms) sum += static_cast<double>(term.second);
  }
  return sum;
}

// Coming and going -----------------------------------------------------------------------------

void TLDistribution::assign(std::int32_t block, std::int32_t processor) {
  auto& list = processors_[index(processor)];
  const float before = list.sums.empty() ? 0.0F : list.sums.back();
  places_[index(block)] = static_cast<std::uint32_t>(list.blocks.size());
  list.blocks.push_back(block);
  list.sums.push_back(before + graph_.load(block));
  owners_[index(block)] = processor;
  --nbFree_;
  for (const auto& link : graph_.links(block)) {
    const float coupling = addCoupling(link.id, processor, link.weight);
    if (owner(link.id) == 0) pushCandidate(processor, {coupling, link.id});
  }
}

void TLDistribution::unassign(std::int32_t block) {
  detach(block);
  settle();
}

void TLDistribution::detach(std::int32_t block) {
  const std::int32_t processor = owner(block);
  auto& list = processors_[index(processor)];
  const std::size_t place = places_[index(block)];
  list.blocks[place] = 0;
  list.firstChanged = std::min(list.firstChanged, place);
  owners_[index(block)] = 0;
  ++nbFree_;
  detached_.emplace_back(block, processor);
}

void TLDistribution::settleLoad(std::int32_t processor) {
  auto& list = processors_[index(processor)];
  if (list.firstChanged == kNone) return;
  std::size_t to = list.firstChanged;
  float sum = to == 0 ? 0.0F : list.sums[to - 1];
  for (std::size_t from = to; from < list.blocks.size(); ++from) {
    const std::int32_t block = list.blocks[from];
    if (block == 0) continue;
    sum += graph_.load(block);
    list.blocks[to] = block;
    list.sums[to] = sum;
    places_[index(block)] = static_cast<std::uint32_t>(to++);
  }
  list.blocks.resize(to);
  list.sums.resize(to);
  list.firstChanged = kNone;
}

void TLDistribution::settle() {
  if (detached_.empty()) return;
  changed_.clear();
  for (const auto& [block, processor] : detached_) {
    settleLoad(processor);
    for (const auto& link : graph_.links(block)) changed_.emplace_back(link.id, processor);
  }
  std::sort(changed_.begin(), changed_.end());
  changed_.erase(std::unique(changed_.begin(), changed_.end()), changed_.end());
  for (const auto& [block, processor] : changed_) recomputeCoupling(block, processor);
  for (const auto& [block, processor] : detached_) {
    if (owner(block) != 0) continue;
    const Coupling* first = couplings_.data() + graph_.firstLink(block);
    for (const Coupling* c = first; c != first + nbCouplings_[index(block)]; ++c) {
      pushCandidate(c->processor, {c->value, block});
    }
  }
  detached_.clear();
}

// Candidates -----------------------------------------------------------------------------------

void TLDistribution::pushCandidate(std::int32_t processor, Candidate candidate) {
  if (candidate.coupling <= 0.0F) return;
  auto& heap = processors_[index(processor)].heap;
  heap.push_back(candidate);
  std::push_heap(heap.begin(), heap.end(), worse);
}

bool TLDistribution::isTrue(std::int32_t processor, const Candidate& candidate) const {
  return owner(candidate.block) == 0 && coupling(candidate.block, processor) == candidate.coupling;
}

bool TLDistribution::nextCandidate(std::int32_t processor, Candidate& candidate) {
  auto& heap = processors_[index(processor)].heap;
  while (!heap.empty()) {
    std::pop_heap(heap.begin(), heap.end(), worse);
    candidate = heap.back();
    heap.pop_back();
    if (isTrue(processor, candidate)) return true;
  }
  return false;
}

void TLDistribution::park(std::int32_t processor, Candidate candidate) {
  auto& list = processors_[index(processor)];
  const float weight = graph_.load(candidate.block);
  list.lightestParked = list.parked.empty() ? weight : std::min(list.lightestParked, weight);
  list.parked.push_back(candidate);
}

void TLDistribution::unpark(std::int32_t processor, float maximumLoad) {
  auto& list = processors_[index(processor)];
  if (list.parked.empty() || load(processor) + list.lightestParked > maximumLoad) return;
  std::sort(list.parked.begin(), list.parked.end(),
            [](const Candidate& a, const Candidate& b) { return worse(b, a); });
  const Candidate* last = nullptr;
  for (const auto& candidate : list.parked) {
    const bool again =
        last != nullptr && last->block == candidate.block && last->coupling == candidate.coupling;
    if (!again && isTrue(processor, candidate)) pushCandidate(processor, candidate);
    last = &candidate;
  }
  list.parked.clear();
}

bool TLDistribution::hasParked(std::int32_t processor) {
  auto& parked = processors_[index(processor)].parked;
  while (!parked.empty() && !isTrue(processor, parked.back())) parked.pop_back();
  return !parked.empty();
}
