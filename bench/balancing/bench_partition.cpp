// Figures of the block distribution: speed against the plain form, gpmetis and Scotch's gpart on
// the same graphs, growth with the number of blocks, and the quality of all of them side by side.
#include <fmt/format.h>
#include <unistd.h>

#include <array>
#include <cmath>
#include <cstdio>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <functional>
#include <sstream>

#include "Lattice.h"
#include "PlainPartition.h"
#include "balancing/TLPartition.h"
#include "platform/TLConsole.h"

namespace {

// Whether all figures hold so far.
bool allHold = true;

const char* held(bool holds) {
  allHold = allHold && holds;
  return holds ? "holds" : "DOES NOT HOLD";
}

struct Shape {
  std::array<int, 3> blocks;
  int processors;

  TLBlockMesh mesh() const { return lattice(blocks[0], blocks[1], blocks[2]); }
  int nbBlocks() const { return blocks[0] * blocks[1] * blocks[2]; }
};

struct Result {
  double seconds = 0.0;
  std::string trace;
  std::vector<int> owners;
};

struct Quality {
  double balance = 0.0;  // largest load over the average
  double cut = 0.0;      // weight of the edges between processors
};

// Processor time, as gpmetis reports it: other programs on the machine disturb it least.
double secondsOf(const std::function<void()>& work) {
  const auto now = [] {
    timespec time{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
  };
  const double start = now();
  work();
  return now() - start;
}

// From the mesh to the distribution, with the trace.
Result ours(const TLBlockMesh& mesh, int processors, int repetitions) {
  Result best;
  for (int i = 0; i < repetitions; ++i) {
    std::ostringstream out;
    const TLConsoleRedirect redirect(out);
    Result result;
    result.seconds = secondsOf([&] {
      TLPartition partition(mesh, {}, processors, 0, 1);
      partition.distribute();
      for (int b = 1; b <= partition.nbBlocks(); ++b) result.owners.push_back(partition.owner(b));
    });
    result.trace = out.str();
    if (i == 0 || result.seconds < best.seconds) best = result;
  }
  return best;
}

Result plain(const TLBlockMesh& mesh, int processors) {
  Result result;
  std::ostringstream out;
  result.seconds = secondsOf([&] {
    PlainPartition partition(mesh, {}, processors, 0, 1, out);
    partition.distribute();
    result.owners = partition.owners;
  });
  result.trace = out.str();
  return result;
}

TLPartitionGraph graphOf(const TLBlockMesh& mesh) {
  std::ostringstream unused;
  const TLConsoleRedirect redirect(unused);
  return {mesh, {}};
}

Quality qualityOf(const TLPartitionGraph& graph, const std::vector<int>& owners, int processors) {
  std::vector<double> loads(static_cast<std::size_t>(processors), 0.0);
  Quality quality;
  double total = 0.0;
  for (int b = 1; b <= graph.nbBlocks(); ++b) {
    const int owner = owners[static_cast<std::size_t>(b - 1)];
    loads[static_cast<std::size_t>(owner - 1)] += graph.load(b);
    total += graph.load(b);
    for (const auto& link : graph.links(b)) {
      if (owners[static_cast<std::size_t>(link.id - 1)] != owner) quality.cut += link.weight / 2;
    }
  }
  quality.balance = *std::max_element(loads.begin(), loads.end()) / (total / processors);
  return quality;
}

std::string outputOf(const std::string& command) {
  std::string text;
  std::FILE* pipe = popen((command + " 2>&1").c_str(), "r");
  if (pipe == nullptr) return text;
  char buffer[4096];
  while (const std::size_t n = std::fread(buffer, 1, sizeof buffer, pipe)) text.append(buffer, n);
  pclose(pipe);
  return text;
}

// The number behind `word`, wherever it stands in `text`.
double numberAfter(const std::string& text, const std::string& word) {
  const auto at = text.find(word);
  return at == std::string::npos ? NAN : std::atof(text.c_str() + at + word.size());
}

class Peers {
 public:
  Peers()
      : directory_(std::filesystem::temp_directory_path() /
                   fmt::format("tl_bench_{}", ::getpid())) {
    std::filesystem::create_directory(directory_);
  }
  ~Peers() { std::filesystem::remove_all(directory_); }

  // gpmetis as it comes; the time is the one it reports for partitioning alone, without files.
  Result metis(const TLPartitionGraph& graph, int processors) const {
    const std::string file = directory_ / "graph";
    std::ofstream out(file);
    std::size_t links = 0;
    for (int b = 1; b <= graph.nbBlocks(); ++b) links += graph.links(b).size();
    out << graph.nbBlocks() << ' ' << links / 2 << " 011\n";
    for (int b = 1; b <= graph.nbBlocks(); ++b) {
      out << whole(graph.load(b));
      for (const auto& link : graph.links(b)) out << ' ' << link.id << ' ' << whole(link.weight);
      out << '\n';
    }
    out.close();
    Result best;
    for (int i = 0; i < 3; ++i) {
      const auto text = outputOf(fmt::format("gpmetis {} {}", file, processors));
      const double seconds = numberAfter(text, "Partitioning:");
      if (i == 0 || seconds < best.seconds) best.seconds = seconds;
    }
    std::ifstream in(fmt::format("{}.part.{}", file, processors));
    for (int part = 0; in >> part;) best.owners.push_back(part + 1);
    return best;
  }

  // Scotch's gpart, likewise: mapping time without files.
  Result scotch(const TLPartitionGraph& graph, int processors) const {
    const std::string file = directory_ / "graph.grf";
    std::ofstream out(file);
    std::size_t links = 0;
    for (int b = 1; b <= graph.nbBlocks(); ++b) links += graph.links(b).size();
    out << "0\n" << graph.nbBlocks() << ' ' << links << "\n1 011\n";
    for (int b = 1; b <= graph.nbBlocks(); ++b) {
      out << whole(graph.load(b)) << ' ' << graph.links(b).size();
      for (const auto& link : graph.links(b)) out << ' ' << whole(link.weight) << ' ' << link.id;
      out << '\n';
    }
    out.close();
    Result result;
    const auto text = outputOf(fmt::format("scotch_gpart {0} {1} {1}.map -vt", processors, file));
    result.seconds =
        numberAfter(text.substr(std::min(text.size(), text.find("Mapping"))), "Mapping");
    std::ifstream in(file + ".map");
    std::size_t count = 0;
    in >> count;
    result.owners.assign(count, 1);
    for (std::size_t block = 0, part = 0; in >> block >> part;) {
      result.owners.at(block - 1) = static_cast<int>(part) + 1;
    }
    return result;
  }

 private:
  static long whole(float weight) { return std::lround(weight); }
  std::filesystem::path directory_;
};

void printRow(const char* name, const Result& result, double reference,
              const TLPartitionGraph& graph, int processors) {
  if (result.owners.size() != static_cast<std::size_t>(graph.nbBlocks())) {
    fmt::print("  {:<12} not available\n", name);
    return;
  }
  const Quality quality = qualityOf(graph, result.owners, processors);
  fmt::print("  {:<12} {:10.4f} s  {:7.2f} x gpmetis   largest/average {:6.3f}   cut {:12.0f}\n",
             name, result.seconds, result.seconds / reference, quality.balance, quality.cut);
}

// `mostTimes`: how many times as long as gpmetis the distribution may take; 0 for no limit.
void compareWithPeers(const Shape& shape, const Peers& peers, double mostTimes) {
  const TLBlockMesh mesh = shape.mesh();
  const TLPartitionGraph graph = graphOf(mesh);
  fmt::print("\n{} blocks on {} processors\n", shape.nbBlocks(), shape.processors);
  const Result metis = peers.metis(graph, shape.processors);
  const Result distribution = ours(mesh, shape.processors, 3);
  printRow("distribution", distribution, metis.seconds, graph, shape.processors);
  printRow("gpmetis", metis, metis.seconds, graph, shape.processors);
  printRow("gpart", peers.scotch(graph, shape.processors), metis.seconds, graph, shape.processors);
  if (mostTimes > 0 && metis.seconds > 0) {
    fmt::print("  at most {} x gpmetis: {}\n", mostTimes,
               held(distribution.seconds <= mostTimes * metis.seconds));
  }
}

void compareWithPlain(const Shape& shape, double leastTimes) {
  const TLBlockMesh mesh = shape.mesh();
  const Result fast = ours(mesh, shape.processors, 3);
  const Result slow = plain(mesh, shape.processors);
  fmt::print(
      "\n{} blocks on {} processors: {:.4f} s, plain form {:.2f} s: {:.0f} times faster, at least "
      "{}: "
      "{}, same trace: {}\n",
      shape.nbBlocks(), shape.processors, fast.seconds, slow.seconds, slow.seconds / fast.seconds,
      leastTimes, held(slow.seconds >= leastTimes * fast.seconds), held(fast.trace == slow.trace));
}

void growth(int processors) {
  const Shape shapes[] = {
      {{10, 10, 10}, processors}, {{10, 20, 50}, processors}, {{20, 50, 100}, processors}};
  fmt::print("\ngrowth on {} processors\n", processors);
  double first = 0.0;
  double last = 0.0;
  for (const auto& shape : shapes) {
    last = ours(shape.mesh(), processors, 7).seconds;
    if (first == 0.0) first = last;
    fmt::print("  {:7} blocks {:10.4f} s\n", shape.nbBlocks(), last);
  }
  const double power = std::log(last / first) / std::log(100.0);
  fmt::print("  time grows as B^{:.2f}; less than B^1.2: {}\n", power, held(power < 1.2));
}

}  // namespace

int main() {
  fmt::print("Block distribution on lattices of unequal blocks\n");
  compareWithPlain({{10, 20, 25}, 64}, 50);
  growth(64);
  growth(512);
  const Peers peers;
  compareWithPeers({{10, 20, 25}, 64}, peers, 0);
  compareWithPeers({{20, 50, 100}, 64}, peers, 3);
  compareWithPeers({{20, 50, 100}, 512}, peers, 3);
  compareWithPeers({{10, 10, 10}, 16}, peers, 0);
  return allHold ? 0 : 1;
}
