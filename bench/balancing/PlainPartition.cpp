#include "PlainPartition.h"

#include <cmath>
#include <cstdlib>

namespace {

int wrap(std::int64_t value) {
  return static_cast<int>(static_cast<std::uint32_t>(value));
}

int coarse(const TLCoarsening& c, int n, int direction, int level) {
  int size = n - 1;
  for (int i = 0; i < c.gridLevel[direction]; ++i) size /= 2;
  if (c.multigrid[direction] != 0 && level > 0) {
    for (int i = 0; i < level; ++i) size /= 2;
  }
  return size + 1;
}

int cells(const TLCoarsening& c, const TLBlockMesh& mesh, const TLBlockMesh::Block& block) {
  if (mesh.unstructured) return block.nbCells;
  int sum = 0;
  for (int l = 0; l < c.nbGridLevels; ++l) {
    const int i = coarse(c, block.nodes[0], 0, l) - 1;
    const int j = coarse(c, block.nodes[1], 1, l) - 1;
    const int k = coarse(c, block.nodes[2], 2, l) - 1;
    sum = wrap(std::int64_t{sum} + wrap(std::int64_t{wrap(std::int64_t{i} * j)} * k));
  }
  return block.solid ? sum / 3 : sum;
}

int nodes(const TLCoarsening& c, const TLBlockMesh::Patch& p) {
  int d[3] = {0, 0, 0};
  d[p.u] = coarse(c, p.uMax, p.u, 0) - coarse(c, p.uMin, p.u, 0);
  d[p.w] = coarse(c, p.wMax, p.w, 0) - coarse(c, p.wMin, p.w, 0);
  return (std::abs(d[0]) + 1) * (std::abs(d[1]) + 1) * (std::abs(d[2]) + 1);
}

// Insertion sort on parallel arrays, heaviest first, strict.
void sortParallel(std::vector<float>& weights, std::vector<int>& ids) {
  for (std::size_t i = 1; i < weights.size(); ++i) {
    const float weight = weights[i];
    const int id = ids[i];
    std::size_t j = i;
    for (; j > 0 && weights[j - 1] < weight; --j) {
      weights[j] = weights[j - 1];
      ids[j] = ids[j - 1];
    }
    weights[j] = weight;
    ids[j] = id;
  }
}

}  // namespace

PlainPartition::PlainPartition(const TLBlockMesh& mesh, const TLCoarsening& coarsening,
                               int processorCount, float startTolerance, int adjustProcessors,
                               std::ostream& out)
    : recordTolerance(startTolerance), coarsening_(coarsening), out_(out) {
  out_ << "TLPartition::TLPartition " << std::endl;
  nbBlocks = static_cast<int>(mesh.blocks.size());
  nbProcessors = processorCount;
  if (nbBlocks == 0) return;
  if (adjustProcessors == 1 && nbProcessors > nbBlocks) {
    adjusted = 1;
    warnings += "Warning : The number of task cannot be greater than the number of blocks \n ";
    warnings += "The number of processor has been set to ";
    warnings += " " + std::to_string(nbBlocks) + " ";
    warnings += " \n ";
    nbProcessors = nbBlocks;
  }
  for (const auto& block : mesh.blocks) {
    blockLoads.push_back(static_cast<float>(cells(coarsening_, mesh, block)));
  }
  blocks.resize(nbBlocks);
  owners.assign(nbBlocks, 0);
  faceEdges(mesh);
  fullNonMatchingEdges(mesh);
  for (const float l : blockLoads) totalLoad += l;
  tolerance = recordTolerance;
  averageLoad = totalLoad / nbProcessors;
  maximumLoad = (1 + tolerance) * averageLoad;
  out_ << "Sorting ....";
  sortedLoads = blockLoads;
  for (int b = 1; b <= nbBlocks; ++b) sortedIds.push_back(b);
  sortParallel(sortedLoads, sortedIds);
  out_ << "done" << std::endl;
  if (adjustProcessors == 1 && sortedLoads[0] > maximumLoad) adjustToLargest();
}

void PlainPartition::adjustToLargest() {
  adjusted = 1;
  warnings += "Warning: The load of the largest block (";
  warnings += " " + std::to_string(sortedIds[0]) + " ) \n ";
  warnings += "is bigger than the Maximal load for correct load balancing on";
  warnings += " " + std::to_string(nbProcessors) + " ";
  warnings += "processors \n ";
  warnings += "The number of processor has been set to";
  nbProcessors = static_cast<int>(totalLoad / maximumLoad);
  warnings += " " + std::to_string(nbProcessors) + " \n ";
  averageLoad = totalLoad / nbProcessors;
  maximumLoad = (1 + tolerance) * averageLoad;
}

void PlainPartition::addEdge(int from, int to, double weight) {
  for (auto& link : blocks[from - 1]) {
    if (link.id == to) {
      link.weight = static_cast<float>(static_cast<double>(link.weight) + weight);
      return;
    }
  }
  blocks[from - 1].push_back({to, static_cast<float>(weight)});
}

float PlainPartition::edge(int block, int other) const {
  for (const auto& link : blocks[block - 1]) {
    if (link.id == other) return link.weight;
  }
  return 0;
}

void PlainPartition::faceEdges(const TLBlockMesh& mesh) {
  const auto& c = coarsening_;
  for (const auto& connection : mesh.connections) {
    if (connection.neighbour <= connection.block) continue;
    const auto& p = connection.patch;
    float sum = 0;
    for (int l = 0; l < c.nbGridLevels; ++l) {
      const int du = coarse(c, p.uMax, p.u, l) - coarse(c, p.uMin, p.u, l);
      const int dw = coarse(c, p.wMax, p.w, l) - coarse(c, p.wMin, p.w, l);
      sum += static_cast<float>(wrap(std::int64_t{du} * dw));
    }
    if (sum == 0) continue;
    addEdge(connection.block, connection.neighbour, sum);
    addEdge(connection.neighbour, connection.block, sum);
  }
}

void PlainPartition::fullNonMatchingEdges(const TLBlockMesh& mesh) {
  out_ << "TLPartition Calculates FNMB " << mesh.fullNonMatching.size() << std::endl;
  int index = 0;
  for (const auto& record : mesh.fullNonMatching) {
    const int nLeft = static_cast<int>(record.left.size());
    const int nRight = static_cast<int>(record.right.size());
    out_ << index++ << "--> nLeft, nRight " << nLeft << " " << nRight << std::endl;
    if (nLeft == 0 || nRight == 0) {
      out_ << "Warning: FNMB with empty side : number of left Patch/right path " << nLeft << " "
           << nRight << " ..skipped " << std::endl;
      continue;
    }
    double leftArea = 0;
    for (const auto& side : record.left) leftArea += nodes(coarsening_, side.patch);
    const double rightArea =
        static_cast<double>(nRight) * nodes(coarsening_, record.left.back().patch);
    const double weight = 2.0 * (leftArea + rightArea) / (nLeft + nRight);
    const int hub = record.left[0].block;
    for (int i = 1; i < nLeft; ++i) {
      addEdge(hub, record.left[i].block, weight);
      addEdge(record.left[i].block, hub, weight);
    }
    for (int i = 0; i < nRight; ++i) {
      addEdge(hub, record.right[i].block, weight);
      addEdge(record.right[i].block, hub, weight);
    }
  }
  out_ << "FNMB done" << std::endl;
}

void PlainPartition::reset() {
  owners.assign(nbBlocks, 0);
  processors.assign(nbProcessors, {});
  globalCost = loadCost = 1e20F;
}

float PlainPartition::load(int p) const {
  float sum = 0;
  for (const int b : processors[p - 1]) sum += blockLoads[b - 1];
  return sum;
}

float PlainPartition::coupling(int block, int p) const {
  float sum = 0;
  for (const int b : processors[p - 1]) sum += edge(block, b);
  return sum;
}

double PlainPartition::cut(int a, int b) const {
  double sum = 0;
  for (const int x : processors[a - 1]) {
    for (const int y : processors[b - 1]) sum += edge(y, x);
  }
  return sum;
}

int PlainPartition::freeNeighbours(int p, std::vector<float>& scores, std::vector<int>& ids) const {
  scores.assign(nbBlocks, 0);
  ids.assign(nbBlocks, 0);
  int count = 0;
  for (const int m : processors[p - 1]) {
    for (const auto& link : blocks[m - 1]) {
      const int n = link.id;
      if (owners[n - 1] != 0) continue;
      scores[n - 1] += edge(n, m);
      if (scores[n - 1] != 0 && ids[n - 1] == 0) {
        ids[n - 1] = n;
        ++count;
      }
    }
  }
  sortParallel(scores, ids);
  return count;
}

int PlainPartition::assign(int block, int p) {
  if (block < 1 || block > nbBlocks || p < 1 || p > nbProcessors) {
    out_ << "Block " << block << " Cannot be added to task " << p << std::endl;
    return 0;
  }
  if (owners[block - 1] != 0) {
    out_ << " Block " << block << " already present" << std::endl;
    return 0;
  }
  owners[block - 1] = p;
  processors[p - 1].push_back(block);
  return 1;
}

int PlainPartition::unassign(int block) {
  if (block < 1 || block > nbBlocks || owners[block - 1] == 0) {
    out_ << "Block " << block << " cannot be removed from partition (not present)" << std::endl;
    return 0;
  }
  auto& list = processors[owners[block - 1] - 1];
  for (std::size_t i = 0; i < list.size(); ++i) {
    if (list[i] == block) {
      list.erase(list.begin() + static_cast<long>(i));
      break;
    }
  }
  owners[block - 1] = 0;
  return 1;
}

bool PlainPartition::allAssigned() const {
  for (const int o : owners) {
    if (o == 0) return false;
  }
  return true;
}

int PlainPartition::firstFree() const {
  for (int i = 0; i < nbBlocks; ++i) {
    if (owners[sortedIds[i] - 1] == 0) return i;
  }
  return -1;
}

int PlainPartition::partition() {
  if (nbBlocks == 0) return 0;
  reset();
  tolerance = recordTolerance;
  maximumLoad = averageLoad;
  std::vector<float> recorded(nbProcessors, 0);
  passes = 0;
  while (!allAssigned()) {
    if (passes != 0 && passes % 5 == 0) {
      out_ << "Warning : tolerance increased to :" << tolerance << std::endl;
    }
    maximumLoad = static_cast<float>((tolerance + 1.0) * averageLoad);
    std::vector<int> order;
    for (int p = 1; p <= nbProcessors; ++p) order.push_back(p);
    sortParallel(recorded, order);
    onePass(order);
    for (int p = 1; p <= nbProcessors; ++p) recorded[p - 1] = load(p);
    tolerance += 0.01F;
    ++passes;
  }
  out_ << "Initial Partition" << std::endl;
  report();
  tolerance = recordTolerance;
  maximumLoad = (1 + tolerance) * averageLoad;
  out_ << "Refining" << std::endl;
  out_ << "Refined Partition " << std::endl;
  report();
  return 0;
}

void PlainPartition::onePass(const std::vector<int>& order) {
  std::vector<float> scores;
  std::vector<int> ids;
  for (int k = nbProcessors - 1; k >= 0; --k) {
    const int p = order[k];
    const int first = firstFree();
    if (first < 0) return;
    if (load(p) == 0) {
      assign(sortedIds[first], p);
    }
    while (true) {
      const int count = freeNeighbours(p, scores, ids);
      if (count == 0) {
        if (farBlock(p)) return;
        break;
      }
      bool kept = false;
      for (int c = 0; c < count && !kept; ++c) {
        assign(ids[c], p);
        kept = load(p) <= maximumLoad;
        if (!kept) unassign(ids[c]);
      }
      if (!kept) break;
    }
  }
}

// True when the pass ends.
bool PlainPartition::farBlock(int p) {
  const int last = nbBlocks - 1;
  int i = firstFree();
  if (i < 0) i = last;
  const auto owned = [&] { return owners[sortedIds[i] - 1] != 0; };
  assign(sortedIds[i], p);
  if (i == last && load(p) < maximumLoad) return true;
  while (load(p) > maximumLoad && i < last) {
    if (owned()) unassign(sortedIds[i]);
    ++i;
    if (!owned()) assign(sortedIds[i], p);
  }
  if (i == last && load(p) > maximumLoad && owned()) {
    unassign(sortedIds[i]);
    return false;
  }
  return true;
}

int PlainPartition::removeEmptyProcessors() {
  int count = 0;
  for (int p = nbProcessors; p >= 1; --p) {
    if (load(p) == 0) {
      --nbProcessors;
      ++count;
    }
  }
  if (count == 0) return 0;
  adjusted = 1;
  warnings += "Warning:  " + std::to_string(count) + " empty processes have been removed endl ";
  warnings += "The number of processor has been set to  " + std::to_string(nbProcessors) + " ";
  averageLoad = totalLoad / nbProcessors;
  maximumLoad = (1 + tolerance) * averageLoad;
  evaluate();
  return count;
}

void PlainPartition::distribute() {
  partition();
  while (nbBlocks > 0 && removeEmptyProcessors() > 0) {
    reset();
    partition();
  }
}

void PlainPartition::evaluate() {
  if (nbProcessors == 0) return;
  float overload = 0, quadratic = 0, absolute = 0, internal = 0;
  for (int p = 1; p <= nbProcessors; ++p) {
    const float d = load(p) - averageLoad;
    if (d > overload) overload = d;
    if (d > 0) quadratic += d * d;
    absolute += std::fabs(d);
  }
  for (int p = 1; p <= nbProcessors; ++p) internal = static_cast<float>(internal + cut(p, p));
  overload /= averageLoad;
  loadCost = absolute / nbProcessors;
  globalCost = overload > tolerance ? 1e20F : std::sqrt(quadratic) - internal;
}

float PlainPartition::efficiency() const {
  float largest = 1e-5F;
  for (int p = 1; p <= nbProcessors; ++p) {
    if (load(p) > largest) largest = load(p);
  }
  return averageLoad / largest;
}

void PlainPartition::report() {
  out_ << "Spawn Table : " << std::endl;
  for (int b = 1; b <= nbBlocks; ++b) out_ << " " << owner(b);
  out_ << std::endl;
  for (int p = 1; p <= nbProcessors; ++p) {
    out_ << "Load(" << p << ")=" << load(p) << std::endl;
    for (const int b : processors[p - 1]) {
      out_ << b;
      if (coupling(b, p) == 0) out_ << "!";
      out_ << " ";
    }
    out_ << std::endl;
  }
  out_ << std::endl;
  out_ << "Efficiency " << efficiency() << std::endl;
  out_ << "Load, Comm, Global 1e+20 1e+20 1e+20" << std::endl;  // nobody has computed them
}
