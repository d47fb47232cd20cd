// The example's tools, played against by this test as their daemon.
#include <gmock/gmock.h>

#include <filesystem>

#include "integration/PvmPeer.h"
#include "integration/VirtualMachine.h"
#include "platform/TTempDir.h"

namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::StartsWith;
using Values = std::vector<TLWireItem>;

std::string textOf(const PvmMessage& message) {
  const auto values = message.values();
  const auto* text = values.empty() ? nullptr : std::get_if<std::string>(&values[0]);
  return text == nullptr ? "" : *text;
}

class Tools : public testing::Test {
 protected:
  void SetUp() override {
    auto& machine = VirtualMachine::shared();
    self = PvmPeer::tid();
    ASSERT_GT(self, 0);
    directory = machine.directory() / testing::UnitTest::GetInstance()->current_test_info()->name();
    fs::create_directory(directory);
    runFile = (directory / "case.run").string();
  }
  void TearDown() override {
    PvmPeer::kill(tool);
    PvmPeer::waitGone(tool);
    while (PvmPeer::receive(-1, -1, 0)) {
    }
  }
  void start(const char* program, std::vector<std::string> words) {
    words.insert(words.end(), {"-parendId", std::to_string(self)});
    tool = PvmPeer::spawn(program, words);
    ASSERT_GT(tool, 0);
  }
  void makeMesh() {
    start(TL_HEATMESH, {runFile, "-cells", "24"});
    EXPECT_EQ(textOf(awaited(7)), "mesh: 24 x 13 cells");
    EXPECT_TRUE(PvmPeer::waitGone(tool));
  }
  // Passes over the others until one with this code comes.
  PvmMessage awaited(std::int32_t tag) {
    const auto message = PvmPeer::receive(tool, tag);
    EXPECT_TRUE(message) << "no message " << tag << "; " << VirtualMachine::shared().log();
    return message.value_or(PvmMessage());
  }

  std::int32_t self = 0;
  std::int32_t tool = 0;
  fs::path directory;
  std::string runFile;
};

TEST_F(Tools, HeatChainFromMeshToPicture) {
  makeMesh();
  start(TL_VELSTRATURBO, {runFile, "-report_every", "10"});
  const PvmMessage first = awaited(-1);
  EXPECT_EQ(first.tag, 4);
  EXPECT_EQ(first.body.bytes(), std::vector<std::uint8_t>(4, 0));
  EXPECT_THAT(textOf(awaited(7)), StartsWith("iteration 10 residual "));
  EXPECT_THAT(textOf(awaited(5)), HasSubstr("heat flow"));
  EXPECT_TRUE(PvmPeer::alive(tool)) << "it waits until its end has been taken note of";
  PvmPeer::send(tool, 5);
  ASSERT_TRUE(PvmPeer::waitGone(tool));

  start(TL_HEATPICTURE, {runFile, "-scale", "1"});
  awaited(7);
  EXPECT_EQ(contentsOf(directory / "case.png").substr(0, 4), "\x89PNG");
}

TEST_F(Tools, SolverSavesAndSuspendsWhenAsked) {
  makeMesh();
  start(TL_VELSTRATURBO,
        {runFile, "-stop_at", "0", "-iterations", "100000000", "-report_every", "100000000"});
  awaited(4);
  ASSERT_TRUE(PvmPeer::send(tool, 21));
  EXPECT_EQ(textOf(awaited(7)), "solution saved");
  EXPECT_TRUE(fs::remove(directory / "case.field"));
  ASSERT_TRUE(PvmPeer::send(tool, 11));
  awaited(5);
  EXPECT_TRUE(fs::exists(directory / "case.field"));
}

TEST_F(Tools, SolverTellsWhyItDies) {
  start(TL_VELSTRATURBO, {runFile});
  EXPECT_THAT(textOf(awaited(8)), HasSubstr("case.mesh: cannot be opened"));
  EXPECT_TRUE(PvmPeer::alive(tool)) << "it waits for the answer";
  ASSERT_TRUE(PvmPeer::send(tool, 8));
  EXPECT_TRUE(PvmPeer::waitGone(tool));
  EXPECT_FALSE(PvmPeer::receive(tool, 5, 0));
}

TEST_F(Tools, FakeToolDoesAsTold) {
  start(TL_FAKETOOL, {"-do", "started",
                      "-do", "text a  b",
                      "-do", "send 28 i:-1 d:0.5 f:0.25 s:x",
                      "-do", "raw 7 i:1 i:7 i:-4 S:xyz",
                      "-do", "values rms 1 0.5 2 0.25",
                      "-do", "ignore suspend",
                      "-do", "await 21",
                      "-do", "await 11",
                      "-do", "error why",
                      "-do", "finished",
                      "-do", "die KILL"});
  awaited(4);
  EXPECT_EQ(awaited(7).values(), (Values{"a  b"}));
  EXPECT_EQ(awaited(28).values(), (Values{-1, 0.5, 0.25F, "x"}));
  EXPECT_EQ(awaited(7).body.bytes(),
            TLWireBuffer().integer(1).integer(7).integer(-4).string("xyz").bytes());
  TLWireBuffer values = TLWireBuffer().integer(1).integer(8).integer(1).counted("rms");
  for (const int item : {0, 0, 0, 0, 2}) values.integer(item);
  EXPECT_EQ(awaited(13).body.bytes(),
            values.real32(1).real32(2).real32(0.5F).real32(0.25F).bytes());
  PvmPeer::send(tool, 11);
  PvmPeer::send(tool, 21);
  PvmPeer::send(tool, 11);
  EXPECT_EQ(awaited(8).values(), (Values{"why"}));
  PvmPeer::send(tool, 8);
  EXPECT_TRUE(awaited(5).values().empty());
  PvmPeer::send(tool, 5);
  EXPECT_TRUE(PvmPeer::waitGone(tool));
}

}  // namespace
