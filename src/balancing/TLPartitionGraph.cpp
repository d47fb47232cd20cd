#include "balancing/TLPartitionGraph.h"

#include <algorithm>

#include "platform/TLConsole.h"

/// Something that an edge gains, at one of its ends. Matching faces add in single precision, full
/// non-matching connections in double precision; the order of additions is part of the result.
struct TLPartitionGraph::Addition {
  std::int32_t block;
  std::int32_t other;
  double weight;
  bool single;
};

namespace {

// A stable sort by neighbour. Nearly all lists are short.
template <class Iterator>
void sortByOther(Iterator begin, Iterator end) {
  constexpr auto before = [](const auto& a, const auto& b) { return a.other < b.other; };
  constexpr std::ptrdiff_t kShort = 24;
  if (end - begin > kShort) {
    std::stable_sort(begin, end, before);
    return;
  }
  for (auto i = begin; i != end; ++i) {
    std::rotate(std::upper_bound(begin, i, *i, before), i, i + 1);
  }
}

}  // namespace

TLPartitionGraph::TLPartitionGraph(const TLBlockMesh& mesh, const TLCoarsening& coarsening) {
  loads_.reserve(mesh.blocks.size());
  for (const auto& block : mesh.blocks) {
    const std::int32_t cells = mesh.unstructured ? block.nbCells : coarsening.nbCells(block);
    loads_.push_back(static_cast<float>(cells));
  }
  std::vector<Addition> additions;
  additions.reserve(mesh.connections.size());
  addFaces(mesh, coarsening, additions);
  addFullNonMatching(mesh, coarsening, additions);
  fold(additions);
}

void TLPartitionGraph::addFaces(const TLBlockMesh& mesh, const TLCoarsening& coarsening,
                                std::vector<Addition>& additions) const {
  for (const auto& connection : mesh.connections) {
    const std::int32_t b = connection.block;
    const std::int32_t c = connection.neighbour;
    if (c <= b) continue;  // each pair is taken from the lower block's side
    if (!exists(b) || !exists(c)) {
      console() << "TLPartition: a connection joins blocks " << b << " and " << c
                << ", which do not both exist: left out\n";
      continue;
    }
    const float area = coarsening.area(connection.patch);
    if (area == 0.0F) continue;
    additions.push_back({b, c, area, true});
    additions.push_back({c, b, area, true});
  }
}

void TLPartitionGraph::addFullNonMatching(const TLBlockMesh& mesh, const TLCoarsening& coarsening,
                                          std::vector<Addition>& additions) const {
  auto& out = console();
  out << "TLPartition Calculates FNMB " << mesh.fullNonMatching.size() << '\n';
  for (std::size_t i = 0; i < mesh.fullNonMatching.size(); ++i) {
    const auto& connection = mesh.fullNonMatching[i];
    const std::size_t nLeft = connection.left.size();
    const std::size_t nRight = connection.right.size();
    out << i << "--> nLeft, nRight " << nLeft << ' ' << nRight << '\n';
    if (nLeft == 0 || nRight == 0) {
      out << "Warning: FNMB with empty side : number of left Patch/right path " << nLeft << ' '
          << nRight << " ..skipped \n";
      continue;
    }
    double leftArea = 0.0;
    for (const auto& side : connection.left) leftArea += coarsening.nbNodes(side.patch);
    // All patches on the right count as the last one on the left does.
    const double rightArea =
        static_cast<double>(nRight) * coarsening.nbNodes(connection.left.back().patch);
    addHub(connection, 2.0 * (leftArea + rightArea) / static_cast<double>(nLeft + nRight),
           additions);
  }
  out << "FNMB done\n";
}

void TLPartitionGraph::addHub(const TLBlockMesh::FullNonMatching& connection, double weight,
                              std::vector<Addition>& additions) const {
  const std::int32_t hub = connection.left.front().block;
  const auto add = [&](std::int32_t block) {
    if (!exists(hub) || !exists(block)) {
      console() << "TLPartition: a full non-matching connection joins blocks " << hub << " and "
                << block << ", which do not both exist: left out\n";
      return;
    }
    additions.push_back({hub, block, weight, false});
    additions.push_back({block, hub, weight, false});
  };
  for (std::size_t i = 1; i < connection.left.size(); ++i) add(connection.left[i].block);
  for (const auto& side : connection.right) add(side.block);
}

void TLPartitionGraph::fold(const std::vector<Addition>& additions) {
  // A counting sort by block, then for each block a stable sort by neighbour: the additions to one
  // edge stay in their order.
  const std::size_t n = loads_.size();
  std::vector<std::size_t> start(n + 1, 0);
  for (const auto& a : additions) ++start[static_cast<std::size_t>(a.block)];
  for (std::size_t i = 0; i < n; ++i) start[i + 1] += start[i];
  std::vector<Addition> sorted(additions.size());
  auto place = start;
  for (const auto& a : additions) sorted[place[static_cast<std::size_t>(a.block - 1)]++] = a;

  first_.assign(n + 1, 0);
  links_.reserve(additions.size());
  for (std::size_t i = 0; i < n; ++i) {
    const auto begin = sorted.begin() + static_cast<std::ptrdiff_t>(start[i]);
    const auto end = sorted.begin() + static_cast<std::ptrdiff_t>(start[i + 1]);
    sortByOther(begin, end);
    for (auto a = begin; a != end; ++a) {
      if (links_.size() == first_[i] || links_.back().id != a->other) {
        links_.push_back({a->other, 0.0F});
      }
      float& weight = links_.back().weight;
      weight = a->single ? weight + static_cast<float>(a->weight)
                         : static_cast<float>(static_cast<double>(weight) + a->weight);
    }
    first_[i + 1] = links_.size();
  }
}

float TLPartitionGraph::weight(std::int32_t block, std::int32_t other) const {
  const auto list = links(block);
  const auto at = std::lower_bound(list.begin(), list.end(), other,
                                   [](const auto& link, auto id) { return link.id < id; });
  return at != list.end() && at->id == other ? at->weight : 0.0F;
}

bool TLPartitionGraph::hasNegativeLink() const {
  return std::any_of(links_.begin(), links_.end(), [](const auto& l) { return l.weight < 0.0F; });
}
