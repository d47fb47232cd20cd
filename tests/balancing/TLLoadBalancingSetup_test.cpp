#include <gtest/gtest.h>

#include <sstream>

#include "balancing/TLGridMesh.h"
#include "balancing/TLLoadBalancing.h"
#include "platform/TLConsole.h"
#include "platform/TTempDir.h"
#include "project/TLGrid.h"
#include "project/TLProject.h"
#include "project/TLProjectType.h"
#include "support/Definitions.h"
#include "support/RunFileGenerator.h"

namespace {

using Integers = std::vector<std::int32_t>;
using Names = std::vector<RWCString>;

std::string setting(const std::string& name, const std::string& type, const Names& values) {
  std::string line = "VALUE";
  for (const auto& value : values) line += ' ' + value;
  return "TL_BEGIN tlparameter\nNAME " + name + "\nTYPE " + type + "\nNUMBER " +
         std::to_string(values.size()) + '\n' + line + "\nTL_END tlparameter\n";
}

// An unstructured project whose blocks have 1000 cells, on these processors with these weights.
struct HexaProject {
  TLProject project;
  explicit HexaProject(std::int32_t nbProcessors) : nbProcessors_(std::to_string(nbProcessors)) {
    project.currentComputation = makeHandle<TLSubProject>(TLProjectType::hexa);
    project.currentComputation->grid = makeHandle<TLGrid>(TLProjectType::hexa);
  }
  void add(const Names& processors, const Names& weights) {
    auto& blocks = project.currentComputation->grid->blocks;
    const auto block = makeHandle<TLBlock>(TLProjectType::hexa);
    const std::string name = "b" + std::to_string(blocks.size());
    TLTextSource source(
        "NAME " + name + "\nNB_CELLS 1000\nTL_BEGIN hexa_parameters\n" +
        setting("iParallel_", "INTEGER", {"1"}) + setting("nbProcs_", "INTEGER", {nbProcessors_}) +
        setting("procsOfBlock_", "INTEGER", processors) + setting("PartWeights_", "REAL", weights) +
        setting("procName_", "STRING", {"'proc of " + name + "'"}) + "TL_END hexa_parameters\n");
    EXPECT_EQ(block->read(source), 1);
    blocks.push_back(block);
  }
  std::string nbProcessors_;
};

struct Prepared {
  TLLoadBalancing record;
  std::string trace;
  bool good;
  explicit Prepared(const HexaProject& hexa) : Prepared(TLLoadBalancing(), hexa) {}
  Prepared(const TLLoadBalancing& before, const HexaProject& hexa) : record(before) {
    std::ostringstream out;
    const TLConsoleRedirect redirect(out);
    good = record.setup(hexa.project);
    trace = out.str();
  }
};

TEST(TLLoadBalancingSetup, MapsThePartitionsOfAnUnstructuredMesh) {
  HexaProject hexa(4);
  hexa.add({"0", "1"}, {"0.25", "0.7509"});
  hexa.add({"2"}, {"1.0"});
  hexa.add({"3"}, {"0.5"});
  hexa.add({"2"}, {"1.0"});
  const Prepared got(hexa);
  EXPECT_TRUE(got.good);
  EXPECT_EQ(got.record.parallel, 1);
  EXPECT_EQ(got.record.nbQueuingSystemProcessor, 4);
  const TLLoadBalancing::DistributionMap expected = {{{0}, {0, 1}}, {{1, 3}, {2}}, {{2}, {3}}};
  EXPECT_EQ(got.record.distributionMap, expected);
  EXPECT_EQ(got.record.ncell_, (Integers{250, 750, 2000, 500}));
  EXPECT_EQ(got.record.partName_,
            (Names{"b0, partition #1", "b0, partition #2", "proc of b1", "b2, partition #1"}));
  EXPECT_EQ(got.trace,
            "TLLoadBalancing::setup, Creating distribution map:\n"
            "TLLoadBalancing::setup, partName_[iProc]=b0, partition #1\n"
            "TLLoadBalancing::setup, ncell_[iProc]=250\n"
            "TLLoadBalancing::setup, partName_[iProc]=b0, partition #2\n"
            "TLLoadBalancing::setup, ncell_[iProc]=750\n"
            "TLLoadBalancing::setup, partName_[iProc]=proc of b1\n"
            "TLLoadBalancing::setup, ncell_[iProc]=2000\n"
            "TLLoadBalancing::setup, partName_[iProc]=b2, partition #1\n"
            "TLLoadBalancing::setup, ncell_[iProc]=500\n");
  EXPECT_EQ(got.record.processNames, Names(4, "Undefined"));
  EXPECT_EQ(got.record.blockProcess, (Integers{0, 1, 2, 3}));
}

TEST(TLLoadBalancingSetup, FitsTheProcessesToTheMesh) {
  TLLoadBalancing before;
  before.processNames = {"a", "b", "c", "d"};
  before.blockProcess = {0, 3, 2, 1};
  HexaProject hexa(2);
  hexa.add({"0"}, {"1.0"});
  hexa.add({"1"}, {"1.0"});
  const Prepared got(before, hexa);
  EXPECT_EQ(got.record.processNames, (Names{"a", "b"}));
  EXPECT_EQ(got.record.blockProcess, (Integers{0, 0, 0, 1}));
}

TEST(TLLoadBalancingSetup, TellsOfWeightsThatAreMissing) {
  HexaProject hexa(3);
  hexa.add({"0", "1", "2"}, {"0.5"});
  const Prepared got(hexa);
  EXPECT_TRUE(got.good);
  EXPECT_EQ(got.record.ncell_, (Integers{500, 0, 0}));
  EXPECT_NE(got.trace.find("block b0 has 3 processors, but 1 weights"), std::string::npos);
  HexaProject absurd(2147483647);
  absurd.add({"0"}, {"1.0"});
  EXPECT_FALSE(Prepared(absurd).good);
}

class RunFile : public testing::Test {
 protected:
  std::string written(const RunFileOptions& options) {
    return files_.write("a.run", RunFileGenerator(options).runFile());
  }
  Definitions definitions_;
  TTempDir files_;
};

TEST_F(RunFile, OfAStructuredMeshIsTakenOverAndBalanced) {
  RunFileOptions options;
  options.blocks = {3, 2, 1};
  options.nodes = {9, 9, 9};
  options.fullNonMatching = 1;
  options.computationLines = "    GRID_LEVEL_J                     1\n";
  std::ostringstream out;
  const TLConsoleRedirect redirect(out);
  TLLoadBalancing record;
  record.queuingSystemActivated = 1;
  record.nbQueuingSystemProcessor = 3;
  ASSERT_TRUE(record.setup(written(options)));
  ASSERT_TRUE(record.mesh);
  EXPECT_EQ(record.gridLevelJ, 1);
  EXPECT_EQ(record.nbCells(0), 8 * 4 * 8);
  EXPECT_EQ(record.nbCells(6), 0);
  EXPECT_EQ(record.blockProcess, Integers(6, 0));

  const TLBlockMesh mesh = blockMeshOf(*record.mesh);
  ASSERT_EQ(mesh.fullNonMatching.size(), 1U);
  EXPECT_EQ(mesh.connections.size(), 2U * (2 * 2 + 3));

  record.automaticLoadBalancing = 0;
  record.balance();
  EXPECT_EQ(record.blockProcess, Integers(6, 0));
  record.automaticLoadBalancing = 1;
  record.balance();
  for (const auto process : {0, 1, 2}) {
    EXPECT_EQ(std::count(record.blockProcess.begin(), record.blockProcess.end(), process), 2);
  }
  EXPECT_FALSE(record.setup(files_.file("none.run")));
  EXPECT_FALSE(record.mesh);
}

}  // namespace
