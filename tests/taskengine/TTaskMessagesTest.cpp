#include "../platform/TTempDir.h"
#include "TEngineTest.h"
#include "messaging/TLSubMessageNewSteering.h"
#include "platform/TLHostForm.h"

namespace {

constexpr std::int32_t kInterface = 900;
using S = TLSubTask;

class TaskMessagesTest : public TEngineTest {
 protected:
  void give(std::int32_t tag, std::optional<std::int32_t> first = std::nullopt,
            const std::vector<std::string>& texts = {}) {
    TLProcessMessage made = message(tag, kInterface);
    if (first) made.addInteger(*first);
    for (const auto& text : texts) made.addString(text);
    task->handleMessage(made);
  }
};

TEST_F(TaskMessagesTest, StopOfTheWholeTaskSavesTheSteeringOfAllButSolvers) {
  TTempDir dir;
  addRunning("A", "velstra", {7, 8}).steering->name = dir.file("solver.steering");
  TLSubTask& queued = addRunning("B", "tool", {42});
  queued.steering->name = dir.file("tool.steering");
  queued.loadBalancing.queuingSystemActivated = 3;
  add("C", "tool").applyNewSteering(nullptr);
  give(2, -1);
  EXPECT_EQ(said(), Lines{"TASK_MUST_BE_STOPPED_-1"});
  EXPECT_EQ(vm.kills, (std::vector<std::int32_t>{7, 8}));
  EXPECT_EQ(launched(), (Lines{"stopSubTask A", "stopSubTask B", "stopSubTask C"}));
  EXPECT_EQ(statuses(), (std::vector<std::int32_t>{5, 5, 5}));
  for (const auto& step : task->subTasks) EXPECT_EQ(step->finishMessage.tag, 1);
  EXPECT_EQ(sent(), Lines{"900:2"});
  EXPECT_FALSE(dir.has("solver.steering"));
  EXPECT_TRUE(dir.has("tool.steering"));
}

TEST_F(TaskMessagesTest, Suspending) {
  TTempDir dir;
  addRunning("A", "velstra", {7});
  TLSubTask& queued = addRunning("B", "velstra", {42});
  queued.loadBalancing.queuingSystemActivated = 1;
  addRunning("C", "velstra", {8, 9});
  for (const auto& step : task->subTasks) {
    step->hostName = hostForm().hostName();
    argument(*step, "none", dir.file(step->name + ".run"));
  }
  const auto stopped = [&] {
    std::string all;
    for (const char* name : {"A", "B", "C"}) {
      const std::string file = std::string(name) + ".stop";
      if (dir.has(file)) all += name;
      std::filesystem::remove(dir.file(file));
    }
    return all;
  };
  struct Case {
    std::int32_t position;
    Lines said;
    Lines sent;
    const char* stopped;
  };
  const Case cases[] = {
      {-1, {"TASK_IS_BEING_SUSPENDED-1"}, {"7:11", "8:11", "9:11"}, "B"},
      {2, {"TASK_IS_BEING_SUSPENDED2"}, {"7:11", "8:11", "9:11"}, "C"},
      {0, {"SUBTASK_IS_BEING_SUSPENDED"}, {"7:11"}, ""},
      {1, {"SUBTASK_IS_BEING_SUSPENDED"}, {}, "B"},
      {3, {}, {}, ""},
      {-2, {}, {}, ""},
  };
  for (const auto& test : cases) {
    SCOPED_TRACE(test.position);
    give(11, test.position);
    EXPECT_EQ(gSuspendRequested, 0);
    EXPECT_EQ(said(), test.said);
    EXPECT_EQ(sent(), test.sent);
    EXPECT_EQ(stopped(), test.stopped);
  }
  give(30);
  EXPECT_EQ(gSuspendRequested, 1);
  EXPECT_EQ(said(), Lines{"TASK_IS_BEING_SUSPENDED"});
  EXPECT_EQ(sent(), (Lines{"7:11", "8:11", "9:11"}));
  EXPECT_EQ(stopped(), "B");
}

TEST_F(TaskMessagesTest, NewSteeringFindsItsStepsByAnArgument) {
  TLSubTask& running = addRunning("A", "velstra", {7, 8});
  running.arguments.append("-steering", "/s.steering");
  TLSubTask& waiting = add("B");
  waiting.arguments.append("none", "/s.steering");
  TLSubTask& other = add("C");
  other.arguments.append("-steering", "/S.steering");
  TLProcessMessage change = message(12, kInterface);
  change.addString("/s.steering");
  const auto set = makeHandle<TLSteeringParameters>();
  change.addNewSteering(set);
  task->handleMessage(change);
  EXPECT_EQ(said(), (Lines{"NEW_STEERING_TRANSFERED_TO_TASKMANAGER",
                           "NEW_STEERING_TRANSFERED_TO_FLOW_SOLVER",
                           "NEW_STEERING_TRANSFERED_TO_TASKMANAGER"}));
  EXPECT_EQ(sent(), (Lines{"7:12 '/s.steering' type 9", "8:12 '/s.steering' type 9"}));
  EXPECT_TRUE(running.steering == set && waiting.steering == set);
  EXPECT_FALSE(other.steering == set);
  change.addInteger(1);
  task->handleMessage(change);
  give(12, 1, {"/s.steering"});
  give(12, std::nullopt, {"/s.steering"});
  EXPECT_EQ(said(), Lines{});
}

}  // namespace
