#include "balancing/TLPartitionGraph.h"

#include <algorithm>

#include "platform/TLConsole.h"

/// A connection of matching faces, which both ends gain in single precision.
struct TLPartitionGraph::Face {
  std::int32_t block;
  std::int32_t other;
  float area;
};

/// What one end of an edge gains, in double precision, by a full non-matching connection.
struct TLPartitionGraph::Addition {
  std::int32_t block;
  std::int32_t other;
  double weight;
};

namespace {

constexpr auto byOther = [](const TLPartitionLink& a, const TLPartitionLink& b) {
  return a.id < b.id;
};

// A stable sort by neighbour: what one edge gains stays in its order, which is part of the result.
// Nearly all lists are short.
void sortByOther(TLPartitionLink* begin, TLPartitionLink* end) {
  constexpr std::ptrdiff_t kShort = 24;
  if (end - begin > kShort) {
    std::stable_sort(begin, end, byOther);
    return;
  }
  for (auto* i = begin; i != end; ++i) {
    auto* place = i;
    const TLPartitionLink link = *i;
    for (; place != begin && link.id < place[-1].id; --place) *place = place[-1];
    *place = link;
  }
}

}  // namespace

TLPartitionGraph::TLPartitionGraph(const TLBlockMesh& mesh, const TLCoarsening& coarsening) {
  loads_.reserve(mesh.blocks.size());
  for (const auto& block : mesh.blocks) {
    const std::int32_t cells = mesh.unstructured ? block.nbCells : coarsening.nbCells(block);
    loads_.push_back(static_cast<float>(cells));
  }
  linkFaces(facesOf(mesh, coarsening));
  linkFullNonMatching(fullNonMatchingOf(mesh, coarsening));
}

std::vector<TLPartitionGraph::Face> TLPartitionGraph::facesOf(
    const TLBlockMesh& mesh, const TLCoarsening& coarsening) const {
  std::vector<Face> faces;
  faces.reserve(mesh.connections.size() / 2);
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
    faces.push_back({b, c, area});
  }
  return faces;
}

std::vector<TLPartitionGraph::Addition> TLPartitionGraph::fullNonMatchingOf(
    const TLBlockMesh& mesh, const TLCoarsening& coarsening) const {
  std::vector<Addition> additions;
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
  return additions;
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
    additions.push_back({hub, block, weight});
    additions.push_back({block, hub, weight});
  };
  for (std::size_t i = 1; i < connection.left.size(); ++i) add(connection.left[i].block);
  for (const auto& side : connection.right) add(side.block);
}

void TLPartitionGraph::linkFaces(const std::vector<Face>& faces) {
  const std::size_t n = loads_.size();
  std::vector<std::size_t> end(n + 1, 0);  // at first the number, then the place behind the last
  for (const auto& face : faces) {
    ++end[static_cast<std::size_t>(face.block)];
    ++end[static_cast<std::size_t>(face.other)];
  }
  for (std::size_t i = 0; i < n; ++i) end[i + 1] += end[i];
  links_.resize(end[n]);
  for (const auto& face : faces) {
    links_[end[static_cast<std::size_t>(face.block - 1)]++] = {face.other, face.area};
    links_[end[static_cast<std::size_t>(face.other - 1)]++] = {face.block, face.area};
  }
  first_.assign(n + 1, 0);
  std::size_t to = 0;
  std::size_t from = 0;
  for (std::size_t i = 0; i < n; ++i) {
    sortByOther(links_.data() + from, links_.data() + end[i]);
    for (; from < end[i]; ++from) {
      if (to > first_[i] && links_[to - 1].id == links_[from].id) {
        links_[to - 1].weight += links_[from].weight;
      } else {
        links_[to++] = links_[from];
      }
    }
    first_[i + 1] = to;
  }
  links_.resize(to);
}

// Full non-matching connections come after all faces, so that what they add is the end of each sum.
void TLPartitionGraph::linkFullNonMatching(std::vector<Addition> additions) {
  if (additions.empty()) return;
  std::stable_sort(additions.begin(), additions.end(), [](const auto& a, const auto& b) {
    return a.block != b.block ? a.block < b.block : a.other < b.other;
  });
  const auto before = std::move(links_);
  const auto firstBefore = std::move(first_);
  links_.clear();
  links_.reserve(before.size() + additions.size());
  first_.assign(loads_.size() + 1, 0);
  auto addition = additions.begin();
  const auto addUpTo = [&](std::int32_t block, std::int32_t other) {
    for (; addition != additions.end() && addition->block == block && addition->other <= other;
         ++addition) {
      const bool known = links_.size() > first_[static_cast<std::size_t>(block - 1)] &&
                         links_.back().id == addition->other;
      if (!known) links_.push_back({addition->other, 0.0F});
      float& weight = links_.back().weight;
      weight = static_cast<float>(static_cast<double>(weight) + addition->weight);
    }
  };
  for (std::int32_t block = 1; block <= nbBlocks(); ++block) {
    const auto at = static_cast<std::size_t>(block - 1);
    for (std::size_t i = firstBefore[at]; i < firstBefore[at + 1]; ++i) {
      addUpTo(block, before[i].id - 1);
      links_.push_back(before[i]);
      addUpTo(block, before[i].id);
    }
    addUpTo(block, nbBlocks());
    first_[at + 1] = links_.size();
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
