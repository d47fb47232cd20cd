#include "balancing/TLMetisPartition.h"

#include <metis.h>

#include <algorithm>
#include <cmath>

namespace {

// METIS adds weights up in its index type.
double scaleFor(double sum) {
  constexpr double kMost = 1e9;
  return sum > kMost ? kMost / sum : 1.0;
}

idx_t whole(float weight, double scale) {
  return static_cast<idx_t>(std::max(1.0, std::round(static_cast<double>(weight) * scale)));
}

struct Graph {
  std::vector<idx_t> starts{0};
  std::vector<idx_t> neighbours;
  std::vector<idx_t> links;
  std::vector<idx_t> loads;

  explicit Graph(const TLPartitionGraph& graph) {
    double sumOfLoads = 0.0;
    double sumOfLinks = 0.0;
    for (std::int32_t b = 1; b <= graph.nbBlocks(); ++b) {
      sumOfLoads += graph.load(b);
      for (const auto& link : graph.links(b)) sumOfLinks += link.weight;
    }
    const double loadScale = scaleFor(sumOfLoads);
    const double linkScale = scaleFor(sumOfLinks);
    for (std::int32_t b = 1; b <= graph.nbBlocks(); ++b) {
      loads.push_back(graph.load(b) > 0.0F ? whole(graph.load(b), loadScale) : 0);
      for (const auto& link : graph.links(b)) {
        if (link.id == b || link.weight <= 0.0F) continue;  // METIS knows no loops
        neighbours.push_back(link.id - 1);
        links.push_back(whole(link.weight, linkScale));
      }
      starts.push_back(static_cast<idx_t>(neighbours.size()));
    }
  }
};

}  // namespace

TLMetisPartition::TLMetisPartition(const TLPartitionGraph& graph, std::int32_t nbProcessors) {
  if (graph.nbBlocks() == 0) {
    refusal_ = "the mesh has no blocks";
  } else if (nbProcessors < 1) {
    refusal_ = "there is no processor to put a block on";
  } else if (nbProcessors == 1 || graph.nbBlocks() == 1) {
    owners_.assign(static_cast<std::size_t>(graph.nbBlocks()), 1);
  } else {
    run(graph, std::min(nbProcessors, graph.nbBlocks()));
  }
}

void TLMetisPartition::run(const TLPartitionGraph& graph, std::int32_t nbProcessors) {
  Graph input(graph);
  idx_t nbVertices = graph.nbBlocks();
  idx_t nbConstraints = 1;
  idx_t nbParts = nbProcessors;
  idx_t cut = 0;
  idx_t options[METIS_NOPTIONS];
  METIS_SetDefaultOptions(options);
  options[METIS_OPTION_SEED] = 1;
  std::vector<idx_t> parts(static_cast<std::size_t>(nbVertices), 0);
  const int result = METIS_PartGraphKway(
      &nbVertices, &nbConstraints, input.starts.data(), input.neighbours.data(), input.loads.data(),
      nullptr, input.links.data(), &nbParts, nullptr, nullptr, options, &cut, parts.data());
  if (result != METIS_OK) {
    refusal_ = "METIS answered " + std::to_string(result);
    return;
  }
  owners_.reserve(parts.size());
  for (const idx_t part : parts) owners_.push_back(static_cast<std::int32_t>(part) + 1);
}
