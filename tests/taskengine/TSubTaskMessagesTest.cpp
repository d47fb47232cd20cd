#include "../platform/TTempDir.h"
#include "TEngineTest.h"

namespace {

constexpr std::int32_t kChild = 7;

class SubTaskMessagesTest : public TEngineTest {
 protected:
  /// Gives the step a message as its poll would.
  void give(TLSubTask& step, std::int32_t tag, const std::vector<std::string>& texts = {},
            std::optional<std::int32_t> last = std::nullopt, std::int32_t source = kChild) {
    TLProcessMessage made = message(tag, source);
    for (const auto& text : texts) made.addString(text);
    if (last) made.addInteger(*last);
    step.handleMessage(made);
  }
};

TEST_F(SubTaskMessagesTest, RunFilesIdentifyAProcess) {
  struct Case {
    std::vector<std::pair<const char*, const char*>> arguments;
    std::vector<std::string> texts;
    bool match;
  };
  const Case cases[] = {
      {{}, {"/a.run"}, false},
      {{{"none", "/a.run"}}, {"x", "/a.run"}, true},
      {{{"none", "/a.run"}}, {"/A.run"}, false},
      {{{"none", "/a.run"}}, {"a.run"}, false},
      {{{"none", "/a.run"}}, {}, false},
      {{{"none", "/a.run"}, {"-x", "/b.run"}}, {"/a.run"}, false},
      {{{"none", "/a.run"}, {"-x", "/b.run"}}, {"/b.run", "/a.run"}, true},
      {{{"-p4pg", "/p.run"},
        {"-tlversion", "71.run"},
        {"-n", ""},
        {"-m", "none"},
        {"-u", "undefined"},
        {"-s", "/a.steering"},
        {"-r", "/a.RUN"}},
       {},
       true},
  };
  for (const auto& test : cases) {
    TLSubTask& step = addRunning("A", "velstra", {kChild});
    for (const auto& [type, value] : test.arguments) step.spawnArguments.append(type, value);
    TLProcessMessage made = message(9, 77);
    for (const auto& text : test.texts) made.addString(text);
    EXPECT_EQ(step.runFileMatches(made), test.match) << &test - cases;
    made.tag = 20;
    EXPECT_FALSE(step.runFileMatches(made)) << "its last item must be an integer";
    made.addInteger(5);
    EXPECT_EQ(step.runFileMatches(made), test.match) << &test - cases;
  }
}

TEST_F(SubTaskMessagesTest, AResetMarksEachParentUntilItIsTold) {
  TLSubTask& step = addRunning("A", "velstra", {kChild});
  step.addParent(600);
  give(step, 15);
  EXPECT_EQ(said(), Lines{"\"RESET FLOW SOLVER STEERING\""});
  EXPECT_EQ(sent(), Lines{"7:24"});
  step.addParent(700);
  EXPECT_EQ(step.parentSteeringDirty, (std::vector<std::int32_t>{1, 1, 1}));
  step.sendSteering(600, nullptr);
  EXPECT_EQ(step.parentSteeringDirty, (std::vector<std::int32_t>{1, 0, 1}));
  EXPECT_EQ(step.steeringDirty, 0);
  EXPECT_EQ(step.steering->resetMark, 0);
  ASSERT_EQ(vm.sent.size(), 1U);
  EXPECT_EQ(std::get<std::int32_t>(vm.sent[0].body.items().back()), 1) << "the mark of that parent";
}

TEST_F(SubTaskMessagesTest, ANewSetKeepsTheHistoryOfWhatGoesOn) {
  TLSubTask& step = addRunning("A", "velstra", {kChild});
  const float x[] = {1, 2};
  const float y[] = {3, 4};
  for (const char* name : {"kept", "renamed", "dropped"}) {
    const auto parameter = makeHandle<TLSteeringParameter>();
    parameter->name = name;
    parameter->mergeValues(2, x, y);
    step.steering->parameters.push_back(parameter);
  }
  const auto next = makeHandle<TLSteeringParameters>();
  next->parameter(0)->name = "new name";
  next->parameter(0)->userName = "renamed";
  next->parameter(1)->name = "kept";
  next->parameter(2)->name = "other";
  step.applyNewSteering(next);
  EXPECT_EQ(next->parameter(0)->valueCount(), 2);
  EXPECT_EQ(next->parameter(1)->valueCount(), 2);
  EXPECT_EQ(next->parameter(2)->valueCount(), 0);
  step.applyNewSteering(next);  // the same set again loses nothing
  EXPECT_EQ(step.steering->parameter(0)->valueCount(), 2);
  step.applyNewSteering(nullptr);
  give(step, 14);
  give(step, 15);
  step.sendSteering(kParent, nullptr);
  EXPECT_EQ(sent(), Lines{"7:24"});
}

TEST_F(SubTaskMessagesTest, SemaphoresAreRemovedThroughTheFirstHost) {
  TTempDir dir;
  dir.write("tlrsh", "#!/bin/sh\nprintf '%s\\n' \"$*\" >> " + dir.file("asked") + "\n", true);
  TVariable path("PATH", dir.path() + ":" + std::getenv("PATH"));
  TLSubTask& step = addRunning("A", "velstra", {kChild});
  step.removeSemaphores();
  EXPECT_EQ(said(), Lines{});
  step.processIds = {4711, 5};
  step.hostName = "ho$st";
  step.loadBalancing.processNames = {"first", "second"};
  step.removeSemaphores();
  EXPECT_EQ(said(), Lines{"REMOVE_SEMAPHORE_4711"});
  EXPECT_EQ(dir.read("asked"),
            "-n first killsem 4711\n-n first killsem 4711\n-n ho$st killsem 4711\n");
}

TEST_F(SubTaskMessagesTest, PollingHandlesAllThatWaitsInOrder) {
  TLSubTask& step = addRunning("A", "velstra", {kChild});
  vm.arrives(kChild, 7).integer(1).integer(7).counted("one");
  vm.arrives(8, 7).integer(1).integer(7).counted("other");
  vm.arrives(kChild, 7).integer(1).integer(7).counted("two");
  EXPECT_EQ(step.pollMessages(kChild, -1), 1);
  EXPECT_EQ(said(), (Lines{"\"one\"", "update", "\"two\"", "update"}));
  EXPECT_EQ(vm.incoming.size(), 1U);
  EXPECT_EQ(step.waitMessage(-1, 7), 1);
  EXPECT_EQ(said(), (Lines{"\"other\"", "update"}));
  vm.arrives(kChild, 7).integer(1).integer(11);  // refused; ends this turn
  vm.arrives(kChild, 7).integer(1).integer(7).counted("three");
  step.pollMessages(kChild, -1);
  EXPECT_EQ(said(), Lines{});
  step.pollMessages(kChild, -1);
  EXPECT_EQ(said(), (Lines{"\"three\"", "update"}));
  EXPECT_TRUE(step.inbox.empty());
}

}  // namespace
