#include "balancing/TLPartition.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

#include "balancing/PlainPartition.h"
#include "balancing/RandomMesh.h"
#include "balancing/TLMetisPartition.h"
#include "balancing/TLPartitionVerifier.h"
#include "platform/TLConsole.h"

namespace {

TLBlockMesh equalBlocks(int count) {
  TLBlockMesh mesh;
  mesh.blocks.resize(static_cast<std::size_t>(count));
  return mesh;
}

void connect(TLBlockMesh& mesh, int a, int b) {
  TLBlockMesh::Patch patch;
  patch.uMax = patch.wMax = 9;
  mesh.connections.push_back({a, b, patch});
  mesh.connections.push_back({b, a, patch});
}

struct Traced {
  std::string trace;
  std::vector<int> owners;
  std::string warnings;
  bool done = false;
};

Traced distributed(const TLBlockMesh& mesh, int processors, int adjust = 1) {
  std::ostringstream out;
  const TLConsoleRedirect redirect(out);
  TLPartition partition(mesh, {}, processors, 0, adjust);
  Traced result;
  result.done = partition.distribute();
  result.owners = partition.owners();
  result.warnings = partition.warnings();
  result.trace = out.str();
  return result;
}

// Block 2 would pass the average of 768 beside block 1, so that the first pass seeds both
// processors with it and block 1; block 3 waits until 1.34 times the average holds two blocks.
TEST(TLPartition, TracesASmallMeshByteForByte) {
  auto mesh = equalBlocks(3);
  connect(mesh, 1, 2);
  mesh.fullNonMatching.push_back({{{1, {}}}, {}});
  const std::string table =
      "Spawn Table : \n 2 1 2\nLoad(1)=512\n2! \nLoad(2)=1024\n1! 3! \n\nEfficiency 0.75\n"
      "Load, Comm, Global 1e+20 1e+20 1e+20\n";
  std::string expected =
      "TLPartition::TLPartition \nTLPartition Calculates FNMB 1\n0--> nLeft, nRight 1 0\n"
      "Warning: FNMB with empty side : number of left Patch/right path 1 0 ..skipped \n"
      "FNMB done\nSorting ....done\n";
  for (const char* tolerance : {"0.05", "0.1", "0.15", "0.2", "0.25", "0.3"}) {
    expected += std::string("Warning : tolerance increased to :") + tolerance + "\n";
  }
  expected += "Initial Partition\n" + table + "Refining\nRefined Partition \n" + table;
  const auto got = distributed(mesh, 2);
  EXPECT_EQ(got.trace, expected);
  EXPECT_TRUE(got.done);
}

TEST(TLPartition, DropsAProcessorThatStaysEmpty) {
  const auto got = distributed(equalBlocks(1), 2, 0);
  EXPECT_EQ(got.owners, (std::vector<int>{1}));
  EXPECT_EQ(got.warnings,
            "Warning:  1 empty processes have been removed endl "
            "The number of processor has been set to  1 ");
}

TEST(TLPartition, RefusesWhatCannotBeDistributedInOneLine) {
  auto flat = equalBlocks(2);
  for (auto& block : flat.blocks) block.nodes[2] = 1;
  auto inverted = equalBlocks(2);
  inverted.blocks[0].nodes[0] = 0;
  auto negative = equalBlocks(3);
  connect(negative, 1, 2);
  for (auto& connection : negative.connections)
    std::swap(connection.patch.uMin, connection.patch.uMax);
  struct Case {
    TLBlockMesh mesh;
    int processors;
    int adjust;
    std::string why;
  };
  const Case cases[] = {
      {equalBlocks(2), 0, 1, "there is no processor to put a block on"},
      {equalBlocks(2), -3, 0, "there is no processor to put a block on"},
      {equalBlocks(2), 2147483647, 0, "there are more than 1048576 processors"},
      {flat, 1, 1, "the blocks have no weight"},
      {inverted, 1, 1, "a block has a negative extent"},
      {negative, 2, 1, "a connection has a negative extent"},
  };
  for (const auto& c : cases) {
    const auto got = distributed(c.mesh, c.processors, c.adjust);
    EXPECT_FALSE(got.done) << c.why;
    const std::string line = "TLPartition: nothing is distributed: " + c.why + "\n";
    EXPECT_TRUE(got.trace.ends_with("Sorting ....done\n" + line)) << got.trace;
  }
  const auto none = distributed(TLBlockMesh(), 2);
  EXPECT_FALSE(none.done);
  EXPECT_EQ(none.trace, "TLPartition::TLPartition \n");
}

TEST(TLPartition, LeavesOutConnectionsToBlocksThatDoNotExist) {
  auto mesh = equalBlocks(2);
  connect(mesh, 1, 7);
  connect(mesh, 2, -1);
  mesh.fullNonMatching.push_back({{{1, {}}}, {{9, {}}}});
  mesh.fullNonMatching.push_back({{{0, {}}}, {{2, {}}}});
  const auto got = distributed(mesh, 2);
  EXPECT_TRUE(got.done);
  EXPECT_EQ(got.owners, (std::vector<int>{2, 1}));
  EXPECT_NE(got.trace.find("a connection joins blocks 1 and 7, which do not both exist"),
            std::string::npos);
  EXPECT_NE(got.trace.find("joins blocks 1 and 9, which do not both exist"), std::string::npos);
}

// 2049 x 2049 x 1026 nodes: 2^22 * 1025 cells are 2^22 in 32 bits.
TEST(TLCoarsening, CellsWrapAroundIn32Bits) {
  TLBlockMesh::Block block;
  block.nodes[0] = block.nodes[1] = 2049;
  block.nodes[2] = 1026;
  EXPECT_EQ(TLCoarsening().nbCells(block), 4194304);
  block.nodes[2] = 513;
  EXPECT_EQ(TLCoarsening().nbCells(block), -2147483647 - 1);
  block.nodes[0] = block.nodes[1] = block.nodes[2] = -2147483647 - 1;
  EXPECT_EQ(TLCoarsening().nbCells(block), 2147483647);
  TLCoarsening many;
  many.nbGridLevels = 2147483647;
  block.nodes[0] = block.nodes[1] = block.nodes[2] = 9;
  EXPECT_EQ(many.nbCells(block), 512 + 64 + 8 + 1);
  block.solid = true;
  EXPECT_EQ(many.nbCells(block), 195);
  TLBlockMesh::Patch patch;
  patch.uMax = patch.wMax = 9;
  EXPECT_EQ(many.area(patch), 64.0F + 16.0F + 4.0F + 1.0F);
}

// The fast distribution against the plain one: same bytes on the console, same answers.
TEST(TLPartition, TracesWhatThePlainOneTraces) {
  int finished = 0;
  for (unsigned seed = 1; seed <= 4000; ++seed) {
    const RandomMesh c(seed);
    std::ostringstream plainOut;
    PlainPartition plain(c.mesh, c.coarsening, c.nbProcessors, c.tolerance, c.adjust, plainOut);
    std::ostringstream out;
    const TLConsoleRedirect redirect(out);
    TLPartition fast(c.mesh, c.coarsening, c.nbProcessors, c.tolerance, c.adjust);
    ASSERT_EQ(out.str(), plainOut.str()) << seed;
    if (!fast.distribute()) {
      ASSERT_TRUE(plain.nbBlocks == 0 || plain.totalLoad <= 0) << seed << fast.refusal();
      continue;
    }
    ++finished;
    const TLPartitionVerifier verifier(c.mesh, c.coarsening);
    ASSERT_THAT(verifier.faults(fast, c.nbProcessors, c.tolerance, c.adjust, out.str()),
                testing::IsEmpty())
        << seed;
    plain.distribute();
    ASSERT_EQ(out.str(), plainOut.str()) << seed;
    ASSERT_EQ(fast.warnings(), plain.warnings) << seed;
    ASSERT_EQ(fast.nbPasses(), plain.passes) << seed;
    fast.evaluate();
    plain.evaluate();
    ASSERT_EQ(fast.globalCost(), plain.globalCost) << seed;
    ASSERT_EQ(fast.loadCost(), plain.loadCost) << seed;
    for (int p = 1; p <= fast.nbProcessors(); ++p) {
      for (int b = 1; b <= fast.nbBlocks(); ++b) {
        ASSERT_EQ(fast.coupling(b, p), plain.coupling(b, p)) << seed;
      }
      for (int q = 1; q <= fast.nbProcessors(); ++q) {
        ASSERT_EQ(fast.cut(p, q), plain.cut(p, q)) << seed;
      }
    }
  }
  EXPECT_GT(finished, 3000);
}

TEST(TLPartitionVerifier, FindsWhatIsWrong) {
  const TLCoarsening coarsening;
  auto mesh = equalBlocks(4);
  connect(mesh, 1, 2);
  std::ostringstream out;
  const TLConsoleRedirect redirect(out);
  TLPartition partition(mesh, coarsening, 2, 0, 0);
  partition.distribute();
  const TLPartitionVerifier verifier(mesh, coarsening);
  EXPECT_THAT(verifier.faults(partition), testing::IsEmpty());
  EXPECT_THAT(verifier.faults(partition, 2, 0, 0, "else"),
              testing::ElementsAre("a second run on the same mesh gives another trace"));

  auto other = mesh;
  other.blocks[2].nodes[0] = 33;
  EXPECT_THAT(TLPartitionVerifier(other, coarsening).faults(partition),
              testing::ElementsAre(testing::HasSubstr("but its blocks have")));

  partition.unassign(1);
  partition.assign(1, partition.owner(2) == 1 ? 2 : 1);
  EXPECT_THAT(verifier.faults(partition), testing::Contains(testing::HasSubstr("above the limit")));
  partition.unassign(3);
  EXPECT_THAT(verifier.faults(partition), testing::ElementsAre("block 3 is placed 0 times"));
}

TEST(TLMetisPartition, PlacesEveryBlock) {
  for (unsigned seed = 1; seed <= 200; ++seed) {
    const RandomMesh c(seed);
    std::ostringstream out;
    const TLConsoleRedirect redirect(out);
    const TLPartitionGraph graph(c.mesh, c.coarsening);
    const TLMetisPartition metis(graph, c.nbProcessors);
    ASSERT_EQ(metis.owners().size(), c.mesh.blocks.size());
    ASSERT_THAT(metis.owners(),
                testing::Each(testing::AllOf(testing::Ge(1), testing::Le(c.nbProcessors))));
  }
}

// The public operations under a random walk of assignments.
TEST(TLPartition, AnswersWhatThePlainOneAnswers) {
  for (unsigned seed = 1; seed <= 150; ++seed) {
    RandomMesh c(seed, 15);
    c.nbProcessors = 3;
    std::ostringstream out;
    std::ostringstream plainOut;
    const TLConsoleRedirect redirect(out);
    TLPartition fast(c.mesh, c.coarsening, 3, 0, 0);
    PlainPartition plain(c.mesh, c.coarsening, 3, 0, 0, plainOut);
    if (plain.nbBlocks == 0) continue;
    plain.reset();
    std::mt19937 random(seed);
    for (int step = 0; step < 80; ++step) {
      const int block = static_cast<int>(random() % (c.mesh.blocks.size() + 2));
      const int p = static_cast<int>(random() % 5);
      if (random() % 3 != 0) {
        ASSERT_EQ(fast.assign(block, p), plain.assign(block, p));
      } else {
        ASSERT_EQ(fast.unassign(block), plain.unassign(block));
      }
      for (int q = 1; q <= 3; ++q) {
        std::vector<float> scores[2];
        std::vector<int> ids[2];
        ASSERT_EQ(fast.freeNeighbours(q, scores[0], ids[0]),
                  plain.freeNeighbours(q, scores[1], ids[1]));
        ASSERT_EQ(scores[0], scores[1]);
        ASSERT_EQ(ids[0], ids[1]);
        ASSERT_EQ(fast.load(q), plain.load(q)) << seed;
      }
      ASSERT_EQ(fast.allAssigned(), plain.allAssigned());
    }
    EXPECT_EQ(out.str(), plainOut.str());
  }
}

}  // namespace
