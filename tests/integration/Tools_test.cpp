// The example's tools, played against by this test as their daemon.
#include <gmock/gmock.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>

#include "integration/PvmPeer.h"
#include "integration/VirtualMachine.h"

namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::StartsWith;
using Values = std::vector<TLWireItem>;

std::string textOf(const PvmMessage& message) {
  const auto values = message.values();
  if (values.empty()) return {};
  const auto* text = std::get_if<std::string>(&values[0]);
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
  // Passes over the others until one with this code comes.
  std::optional<PvmMessage> next(std::int32_t tag) { return PvmPeer::receive(tool, tag); }
  // As next, for a message that has to come.
  PvmMessage awaited(std::int32_t tag) {
    const auto message = next(tag);
    EXPECT_TRUE(message) << "no message " << tag << "; " << VirtualMachine::shared().log();
    return message.value_or(PvmMessage());
  }

  std::int32_t self = 0;
  std::int32_t tool = 0;
  fs::path directory;
  std::string runFile;
};

TEST_F(Tools, HeatChainFromMeshToPicture) {
  start(TL_HEATMESH, {runFile, "-cells", "24"});
  auto message = next(7);
  ASSERT_TRUE(message);
  EXPECT_EQ(textOf(*message), "mesh: 24 x 13 cells");
  ASSERT_TRUE(PvmPeer::waitGone(tool));

  start(TL_VELSTRATURBO, {runFile, "-report_every", "10"});
  message = next(-1);
  ASSERT_TRUE(message);
  EXPECT_EQ(message->tag, 4);
  EXPECT_EQ(message->body.bytes(), std::vector<std::uint8_t>(4, 0));
  message = next(7);
  ASSERT_TRUE(message);
  EXPECT_THAT(textOf(*message), StartsWith("iteration 10 residual "));
  message = next(5);
  ASSERT_TRUE(message);
  EXPECT_THAT(textOf(*message), HasSubstr("heat flow"));
  EXPECT_TRUE(PvmPeer::alive(tool)) << "it waits until its end has been taken note of";
  PvmPeer::send(tool, 5);
  ASSERT_TRUE(PvmPeer::waitGone(tool));

  start(TL_HEATPICTURE, {runFile, "-scale", "1"});
  message = next(7);
  ASSERT_TRUE(message);
  std::ifstream picture(directory / "case.png", std::ios::binary);
  EXPECT_EQ(std::string(std::istreambuf_iterator<char>(picture), {}).substr(0, 4), "\x89PNG");
}

TEST_F(Tools, SolverSavesAndSuspendsWhenAsked) {
  start(TL_HEATMESH, {runFile, "-cells", "24"});
  ASSERT_TRUE(next(7));
  ASSERT_TRUE(PvmPeer::waitGone(tool));
  start(TL_VELSTRATURBO,
        {runFile, "-stop_at", "0", "-iterations", "100000000", "-report_every", "100000000"});
  ASSERT_TRUE(next(4));
  ASSERT_TRUE(PvmPeer::send(tool, 21));
  const auto saved = next(7);
  ASSERT_TRUE(saved);
  EXPECT_EQ(textOf(*saved), "solution saved");
  EXPECT_TRUE(fs::remove(directory / "case.field"));
  ASSERT_TRUE(PvmPeer::send(tool, 11));
  ASSERT_TRUE(next(5));
  EXPECT_TRUE(fs::exists(directory / "case.field"));
}

TEST_F(Tools, SolverTellsWhyItDies) {
  start(TL_VELSTRATURBO, {runFile});
  const auto reason = next(8);
  ASSERT_TRUE(reason);
  EXPECT_THAT(textOf(*reason), HasSubstr("case.mesh: cannot be opened"));
  EXPECT_TRUE(PvmPeer::alive(tool)) << "it waits for the answer";
  ASSERT_TRUE(PvmPeer::send(tool, 8));
  EXPECT_TRUE(PvmPeer::waitGone(tool));
  EXPECT_FALSE(PvmPeer::receive(tool, 5, 0));
}

// A parameter of a settings message with one real or one integer entry.
void addSetting(TLWireBuffer& body, const char* name, float real, bool isReal) {
  body.counted(name).counted("user's").counted("type").integer(1).integer(1).integer(0).integer(0);
  if (isReal) {
    body.integer(1).real32(real).integer(0);
  } else {
    body.integer(0).integer(1).integer(static_cast<std::int32_t>(real));
  }
  body.integer(1).real32(1).real32(2).real32(3).integer(1).counted("a text");
}

TEST_F(Tools, SolverFollowsItsSettingsAndReportsValues) {
  start(TL_HEATMESH, {runFile, "-cells", "24"});
  ASSERT_TRUE(next(7));
  ASSERT_TRUE(PvmPeer::waitGone(tool));
  start(TL_VELSTRATURBO, {runFile, "-steering", "case.steering", "-stop_at", "0", "-iterations",
                          "1000000000", "-report_every", "1000000000"});
  ASSERT_TRUE(next(14));
  PvmBody settings;
  settings.text("case.steering");
  TLWireBuffer& body = settings.sub(9).counted("case.steering").integer(3);
  addSetting(body, "output interval", 5, false);
  addSetting(body, "relaxation", 1.5F, true);
  addSetting(body, "stop at residual", 0.0F, true);
  body.integer(-1).integer(-1);
  ASSERT_TRUE(PvmPeer::send(tool, 12, settings));
  EXPECT_EQ(textOf(awaited(7)), "settings: relaxation 1.5, stop at 0, output every 5");
  ASSERT_TRUE(next(13));  // holds all since the start
  TLWireBuffer values = awaited(13).body;
  for (const std::int32_t expected : {1, 8, 4}) {
    std::int32_t item = 0;
    ASSERT_TRUE(values.takeInteger(item));
    EXPECT_EQ(item, expected);
  }
  std::vector<std::string> names;
  for (const std::int32_t points : {5, 5, 24, 24 * 13}) {
    std::int32_t item = 0;
    std::string name;
    ASSERT_TRUE(values.takeInteger(item) && values.takeString(name));
    for (int skipped = 0; skipped < 4; ++skipped) values.takeInteger(item);
    ASSERT_TRUE(values.takeInteger(item));
    EXPECT_EQ(item, points) << name;
    float point = 0;
    for (int i = 0; i < 2 * points; ++i) ASSERT_TRUE(values.takeReal32(point));
    names.push_back(name);
  }
  EXPECT_THAT(names, testing::ElementsAre("residual", "heat flow", "profile", "temperature"));
  EXPECT_EQ(values.left(), 0U);
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
  ASSERT_TRUE(next(4));
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
