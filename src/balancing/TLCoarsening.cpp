#include "balancing/TLCoarsening.h"

#include <algorithm>

namespace {

// Beyond this many halvings nothing is left of a 32-bit number.
constexpr std::int32_t kAllHalvings = 32;

constexpr TLBlockMesh::Direction kDirections[] = {TLBlockMesh::I, TLBlockMesh::J, TLBlockMesh::K};

std::uint32_t bits(std::int32_t value) {
  return static_cast<std::uint32_t>(value);
}
std::int32_t wrapped(std::uint32_t value) {
  return static_cast<std::int32_t>(value);
}
std::int32_t difference(std::int32_t a, std::int32_t b) {
  return wrapped(bits(a) - bits(b));
}
std::int32_t product(std::int32_t a, std::int32_t b) {
  return wrapped(bits(a) * bits(b));
}

std::int32_t halved(std::int32_t value, std::int32_t times) {
  for (std::int32_t i = std::min(times, kAllHalvings); i > 0; --i) value /= 2;
  return value;
}

std::int32_t absolute(std::int32_t value) {
  return value < 0 ? wrapped(0U - bits(value)) : value;
}

}  // namespace

std::int32_t TLCoarsening::coarsened(std::int32_t n, TLBlockMesh::Direction direction,
                                     std::int32_t level) const {
  std::int32_t cells = halved(difference(n, 1), gridLevel[direction]);
  if (multigrid[direction] != 0) cells = halved(cells, level);
  return wrapped(bits(cells) + 1U);
}

std::int32_t TLCoarsening::nbCells(const TLBlockMesh::Block& block) const {
  const auto cellsAt = [&](std::int32_t level) {
    std::uint32_t cells = 1;
    for (const auto d : kDirections) cells *= bits(coarsened(block.nodes[d], d, level)) - 1U;
    return cells;
  };
  std::uint32_t sum = 0;
  const std::int32_t different = std::min(nbGridLevels, kAllHalvings);
  for (std::int32_t level = 0; level < different; ++level) sum += cellsAt(level);
  if (nbGridLevels > different) sum += cellsAt(different) * bits(nbGridLevels - different);
  const std::int32_t cells = wrapped(sum);
  return block.solid ? cells / 3 : cells;
}

bool TLCoarsening::hasNegativeExtent(const TLBlockMesh::Block& block) const {
  return std::any_of(std::begin(kDirections), std::end(kDirections), [&](auto direction) {
    return coarsened(block.nodes[direction], direction, 0) < 1;
  });
}

float TLCoarsening::area(const TLBlockMesh::Patch& patch) const {
  float sum = 0.0F;
  for (std::int32_t level = 0; level < nbGridLevels; ++level) {
    const auto du =
        difference(coarsened(patch.uMax, patch.u, level), coarsened(patch.uMin, patch.u, level));
    const auto dw =
        difference(coarsened(patch.wMax, patch.w, level), coarsened(patch.wMin, patch.w, level));
    const float before = sum;
    sum += static_cast<float>(product(du, dw));
    if (level >= kAllHalvings && sum == before) break;  // all later levels are alike
  }
  return sum;
}

std::int32_t TLCoarsening::nbNodes(const TLBlockMesh::Patch& patch) const {
  const auto du = difference(coarsened(patch.uMax, patch.u, 0), coarsened(patch.uMin, patch.u, 0));
  const auto dw = difference(coarsened(patch.wMax, patch.w, 0), coarsened(patch.wMin, patch.w, 0));
  return wrapped((bits(absolute(du)) + 1U) * (bits(absolute(dw)) + 1U));
}
