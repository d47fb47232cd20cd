// What tools and machines do wrong: nothing is lost, and the daemon answers afterwards.
#include <unistd.h>

#include "integration/EngineDaemon.h"

namespace {

class EngineFaults : public EngineDaemon {};

TEST_F(EngineFaults, AFloodOfTextsIsShownWhole) {
  constexpr int kTexts = 100000;
  const std::string script =
      "set texts 0\n"
      "rename task_manager_receive_message noted\n"
      "proc task_manager_receive_message {text} {\n"
      "  if {$text eq {a flood}} { incr ::texts } else { noted $text }\n"
      "}\n";
  TestDaemon daemon(
      TestDaemon::task(step(
          "a", "SOLVE", "velstraTurbo",
          {"started", "flood " + std::to_string(kTexts) + " a flood", "text over", "wait 60"})),
      {.script = script});
  ASSERT_TRUE(daemon.waitUpcall(received("over"), 120));
  EXPECT_EQ(daemon.ask("set texts"), std::to_string(kTexts));
  EXPECT_TRUE(daemon.waitStatuses({1}));
}

TEST_F(EngineFaults, LyingMessagesAndWrongPositionsAreRefused) {
  const Lines lies = {
      "raw 7",                           // nothing at all
      "raw 7 i:1000000000",              // a count that can't be
      "raw 7 i:-5",                      // none
      "raw 7 i:1 i:7 i:2000000000 S:x",  // a length that can't be
      "raw 7 i:1 i:7 i:-1 S:x",          //
      "raw 7 i:1 i:7 i:3",               // no text
      "raw 7 i:1 i:11 i:1",              // no such type
      "raw 7 i:1 i:-1 i:1",              //
      "raw 5 i:1 i:4 i:2000000000 i:1",  // an array
      "raw 13 i:1 i:8 i:2000000000",     // steering values
      "raw 13 i:1 i:8 i:1 i:1 S:a i:0 i:0 i:0 i:0 i:1000000000",
  };
  Lines commands = {"started"};
  for (const auto& lie : lies) {
    commands.push_back(lie);
    commands.push_back("text still here");
  }
  commands.emplace_back("text over");
  commands.emplace_back("wait 60");
  TestDaemon daemon(TestDaemon::task(step("a", "SOLVE", "velstraTurbo", commands)));
  ASSERT_TRUE(daemon.waitUpcall(received("over")));
  EXPECT_EQ(daemon.upcallCount(phrase("still here")), static_cast<int>(lies.size()));
  EXPECT_TRUE(daemon.waitStatuses({1}));
  const auto self = daemon.tid();
  for (const std::int32_t tag : {1, 2, 11, 12, 21, 29}) {
    PvmPeer::sendRaw(self, tag, TLWireBuffer().integer(2).integer(7).integer(1 << 30).string("x"));
    PvmPeer::sendRaw(self, tag, TLWireBuffer().integer(1).integer(9).integer(1 << 30));
  }
  for (const std::int32_t position : {-2, 1, 1000000, -2147483647 - 1, 2147483647}) {
    for (const std::int32_t tag : {2, 11, 21}) {
      PvmPeer::send(self, tag, PvmBody().integer(position));
    }
  }
  EXPECT_TRUE(daemon.waitStatuses({1}));
  EXPECT_EQ(tools(daemon).size(), 1U);
}

TEST_F(EngineFaults, AFullDiskAtTheCatchoutFile) {
  // The name holds the process identifier of the daemon, which isn't known before it runs.
  std::filesystem::create_directories(directory / "tmp");
  for (int i = 1; i < 4000; ++i) {
    std::filesystem::create_symlink(
        "/dev/full", directory / "tmp" / ("taskfile_catchout" + std::to_string(getpid() + i)));
  }
  TestDaemon daemon(
      TestDaemon::task(
          step("a", "STEP", "tool", {"print lost", "complain lost", "text printed", "wait 60"})),
      {.environment = {{"TMP_DIR", file("tmp/")}}});
  ASSERT_TRUE(daemon.waitUpcall(received("printed")));
  EXPECT_TRUE(daemon.waitStatuses({1}));
  PvmPeer::send(daemon.tid(), 3);
  EXPECT_TRUE(daemon.waitGone());
}

TEST_F(EngineFaults, TwoHundredProcessesAmongAThousandSteps) {
  constexpr int kSteps = 1000;
  constexpr int kAlive = 200;
  std::string steps;
  put("wait.fake", "wait 300\n");
  const std::string words = argumentsText(argumentText("-script", file("wait.fake")));
  std::vector<std::int32_t> expected;
  for (int i = 0; i < kSteps - 1; ++i) {
    const bool alive = i % (kSteps / kAlive) == 0;
    steps += TestDaemon::step("S" + std::to_string(i), "tool",
                              words + kBeside + (alive ? "" : kDisabled));
    expected.push_back(alive ? 1 : 2);
  }
  steps += TestDaemon::step("LAST", "tool", words);
  expected.push_back(0);
  TestDaemon daemon(TestDaemon::task(steps));
  ASSERT_TRUE(daemon.waitStatuses(expected, 120));
  const auto running = tools(daemon);
  EXPECT_EQ(running.size(), static_cast<std::size_t>(kAlive));
  PvmPeer::kill(running.front());
  EXPECT_TRUE(waitUntil([&] {
    const auto statuses = daemon.poll();
    return std::count(statuses.begin(), statuses.end(), 1) == kAlive - 1;
  }));
  PvmPeer::send(daemon.tid(), 2, PvmBody().integer(-1));
  EXPECT_EQ(heard(2, 60), "");
  EXPECT_TRUE(waitUntil([&] { return tools(daemon).empty(); }));
}

}  // namespace
