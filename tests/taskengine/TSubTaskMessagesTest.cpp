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

TEST_F(SubTaskMessagesTest, TextsGoToTheScriptAsTheyAre) {
  TLSubTask& step = addRunning("A", "velstra", {kChild});
  give(step, 7, {"a\\b \"c\" $d\n", "ignored"});
  EXPECT_EQ(said(), (Lines{"\"a\\\\b \"c\" $d\n\"", "update"}));
  give(step, 7, {}, 3);
  give(step, 7);
  give(step, 8, {"first reason"});
  give(step, 8, {}, 3);
  give(step, 8, {"second reason"});
  EXPECT_EQ(said(), Lines{});
  EXPECT_EQ(step.errorLines.subMessages.size(), 2U);
  EXPECT_EQ(sent(), (Lines{"7:8", "7:8"}));
}

TEST_F(SubTaskMessagesTest, UnknownCodesAreDropped) {
  TLSubTask& step = addRunning("A", "velstra", {kChild});
  for (const int tag : {0, 1, 2, 3, 6, 10, 11, 12, 16, 17, 18, 19, 21, 23, 24, 29, 30, 31, -1}) {
    give(step, tag, {"x"}, 1);
  }
  EXPECT_EQ(said(), Lines{});
  EXPECT_EQ(sent(), Lines{});
  EXPECT_EQ(exits_, 0);
}

TEST_F(SubTaskMessagesTest, TheEndIsKeptPassedOnAndFetched) {
  TLSubTask& step = addRunning("A", "velstra", {kChild, 0, 8, 9});
  step.index = 2;
  step.addParent(600);
  isGone(8);
  isGone(600);
  give(step, 5, {"why"});
  EXPECT_EQ(step.finishMessage.tag, 5);
  EXPECT_EQ(step.finishMessage.subMessages.size(), 2U);
  EXPECT_EQ(said(), Lines{"\"FLOW SOLVER FINISHED\""});
  // The turn of a dead one goes to the one before it.
  EXPECT_EQ(sent(),
            (Lines{"7:5 'why' 2", "7:5 'why' 2", "9:5 'why' 2", "500:5 'why' 2", "500:5 'why' 2"}));
  EXPECT_EQ(launched(), Lines{"retrieveResults A"});
  EXPECT_EQ(step.status, TLSubTask::Running) << "only the status test moves it";
}

TEST_F(SubTaskMessagesTest, EndsThatAreNotKept) {
  TLSubTask& step = addRunning("LUMBRAKE", "lumbrakesp", {kChild});
  give(step, 5, {}, std::nullopt, 99);  // a stranger's
  EXPECT_EQ(step.finishMessage.tag, -1);
  EXPECT_EQ(sent(), (Lines{"99:24", "7:5", "500:5"}));
  EXPECT_EQ(launched(), Lines{"retrieveResults LUMBRAKE"});
  step.loadBalancing.queuingSystemActivated = 1;
  give(step, 5);
  EXPECT_EQ(step.finishMessage.tag, -1);
  EXPECT_EQ(sent(), Lines{"7:24"});
  EXPECT_EQ(launched(), Lines{"retrieveResults LUMBRAKE"});
  step.loadBalancing.queuingSystemActivated = 0;
  gSuspendRequested = 1;  // a suspended task ends with the solver
  give(step, 5);
  EXPECT_EQ(exits_, 1);
  EXPECT_EQ(sent(), Lines{"7:24"});
  EXPECT_EQ(launched(), Lines{});
}

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

TEST_F(SubTaskMessagesTest, ReconnectionAndIdentifiers) {
  TLSubTask& step = addRunning("A", "velstra", {kChild});
  step.spawnArguments.append("none", "/a.run");
  give(step, 9, {"/b.run"}, std::nullopt, 88);
  EXPECT_EQ(said(), Lines{"TRYRECONNECTED_TO_CHILDREN"});
  give(step, 9, {"/a.run"}, std::nullopt, 88);
  give(step, 9, {"/a.run"}, std::nullopt, 88);
  EXPECT_EQ(said(), (Lines{"TRYRECONNECTED_TO_CHILDREN", "SUBTASK_RECONNECTED_TO_CHILDREN",
                           "TRYRECONNECTED_TO_CHILDREN", "SUBTASK_RECONNECTED_TO_CHILDREN"}));
  EXPECT_EQ(step.children, (std::vector<std::int32_t>{kChild, 88}));
  give(step, 20, {"/a.run"}, 4711);
  give(step, 20, {"/a.run"}, 4711);
  give(step, 20, {"/a.run"}, 0);
  EXPECT_EQ(said(), (Lines(3, "RECEIVE_PROCESS_ID")));
  give(step, 20, {"/b.run"}, 1);
  give(step, 20, {"/a.run"});
  EXPECT_EQ(said(), Lines{});
  EXPECT_EQ(step.processIds, std::vector<std::int32_t>{4711});
  give(step, 28, {"x"}, 89);
  for (const std::int32_t nobody : {0, -3}) give(step, 28, {}, nobody);
  give(step, 28, {"x"});
  EXPECT_EQ(step.children, (std::vector<std::int32_t>{kChild, 88, 89}));
}

TEST_F(SubTaskMessagesTest, ASolutionIsFetchedForAParallelUnstructuredRun) {
  TLSubTask& step = addRunning("DORVEX", "dorvex", {kChild});
  step.arguments.append("none", "/a.run");
  step.arguments.append("-x", "/c.run");
  step.arguments.append("none", "/b.run");
  give(step, 22);
  EXPECT_EQ(sent(), Lines{});
  step.loadBalancing.parallel = 1;
  give(step, 22);
  EXPECT_EQ(said(), (Lines(2, "\"RECEIVE SOLUTION RETRIEVE\"")));
  EXPECT_EQ(sent(), Lines{"7:23 '/b'"});
  EXPECT_EQ(launched(), Lines{"retrieveHexa_ DORVEX"});
  step.name = "VELSTRA";
  give(step, 22);
  EXPECT_EQ(sent(), Lines{});
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
