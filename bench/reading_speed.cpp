#include <fmt/format.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "Timing.h"
#include "messaging/TLSteeringParameter.h"
#include "platform/TLHostForm.h"
#include "platform/TTempDir.h"
#include "textio/Handle.h"
#include "textio/TLKeyTable.h"

// Reading a file of some 100 MB of nested blocks through the one read loop, with typed values,
// against a plain loop over its lines; and taking in the points that a solver reports. Prints one
// line a figure: what, measured, wanted, whether it holds. The exit status tells whether all hold.

namespace {

bool report(const char* what, double measured, const char* unit, double wanted) {
  const bool holds = measured <= wanted;
  fmt::print("{:<36} {:>9.2f} {:<5} wanted <= {:>5.1f}  {}\n", what, measured, unit, wanted,
             holds ? "ok" : "MISSED");
  return holds;
}

struct Node : RefCounted {
  double version = 0.0;
  RWCString name;
  std::int32_t active = 0;
  std::array<std::int32_t, 3> nodes{};
  double value = 0.0;
  std::array<double, 3> axis{};
  std::vector<Handle<Node>> children;

  int read(TLTextSource& source);
};

constexpr char kWrongHeader[] = " wrong node header: cannot determine node version";

TLKeyResult readNodes(Node& node, TLKeyContext& context) {
  auto& nodes = node.nodes;
  return nextIf(context.reader.readIntegers3(context.line, nodes[0], nodes[1], nodes[2]));
}

TLKeyResult readChild(Node& node, TLKeyContext& context) {
  auto child = makeHandle<Node>();
  if (child->read(context.source) == 0) return TLKeyResult::failed;
  node.children.push_back(std::move(child));
  return TLKeyResult::next;
}

int Node::read(TLTextSource& source) {
  using R = TLTokenReader;
  static const TLKeyTable<Node> keys("node",
                                     {
                                         versionKey<&Node::version, kWrongHeader>(),
                                         valueKey<&Node::name, &R::readStrings>("name"),
                                         valueKey<&Node::active, &R::readToggle>("active"),
                                         {"nodes", "", &readNodes},
                                         valueKey<&Node::value, &R::readReal>("reference_value"),
                                         valueKey<&Node::axis, &readArray3>("rotation_axis"),
                                         {"tl_begin", "node", &readChild},
                                         {"tl_begin", "", &skipBlock<Node>},
                                     },
                                     {"node"});
  return readBlock(*this, source, keys);
}

void append(std::string& text, int depth, int& number) {
  const std::string blanks(static_cast<std::size_t>(2 * depth), ' ');
  text += fmt::format(
      "{0}TL_BEGIN node\n{0}  VERSION              3.0\n{0}  NAME                 node number {1}\n"
      "{0}  ACTIVE               yes\n{0}  NODES                {2} {3} 17\n"
      "{0}  REFERENCE_VALUE      {4}.125\n{0}  ROTATION_AXIS        0.5 {2}.25 -1\n",
      blanks, number, number % 33, number % 65, number % 1000);
  ++number;
  for (int child = 0; depth < 3 && child < 4; ++child) append(text, depth + 1, number);
  text += blanks + "TL_END   node\n";
}

std::string nestedBlocks(std::size_t bytes) {
  std::string text;
  text.reserve(bytes + 100000);
  for (int number = 0; text.size() < bytes;) append(text, 0, number);
  return text;
}

std::size_t countLines(const std::string& file) {
  std::ifstream stream(file);
  std::string line;
  std::size_t bytes = 0;
  while (std::getline(stream, line)) bytes += line.size();
  return bytes;
}

bool measureReading() {
  const TTempDir files;
  const std::string file = files.write("nested", nestedBlocks(100'000'000));
  const double megabytes = static_cast<double>(std::filesystem::file_size(file)) / 1e6;
  const double getline = bestOf(3, [&] { countLines(file); });
  const double read = bestOf(3, [&] {
    TLTextSource source(hostForm().readFile(file).value());
    Node root;
    if (root.read(source) != 1 || root.children.empty()) std::exit(2);
  });
  fmt::print("nested blocks: {:.1f} MB, getline {:.0f} MB/s, read {:.0f} MB/s\n", megabytes,
             megabytes / getline, megabytes / read);
  return report("  read / getline time", read / getline, "", 12.0);
}

// Points as a solver reports them: five residuals of one iteration at a time, and in bulk.
bool measureMerging() {
  constexpr int kPoints = 1'000'000;
  std::vector<float> x(kPoints);
  std::vector<float> y(kPoints);
  for (int i = 0; i < kPoints; ++i) {
    x[static_cast<std::size_t>(i)] = static_cast<float>(i + 1);
    y[static_cast<std::size_t>(i)] = 1.0F / static_cast<float>(i + 1);
  }
  bool good = true;
  for (const int count : {1, 5, 100, kPoints}) {
    const double seconds = bestOf(3, [&] {
      TLSteeringParameter parameter;
      for (int i = 0; i < kPoints; i += count) {
        parameter.mergeValues(count, x.data() + i, y.data() + i);
      }
      if (parameter.valueCount() != kPoints) std::exit(2);
    });
    good &= report(fmt::format("  taking in points by {}", count).c_str(), seconds / kPoints * 1e9,
                   "ns", 20.0);
  }
  return good;
}

}  // namespace

int main() {
  const bool reading = measureReading();
  const bool merging = measureMerging();
  return reading && merging ? 0 : 1;
}
