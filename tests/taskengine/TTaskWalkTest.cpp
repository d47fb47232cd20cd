#include <ctime>

#include "../platform/TTempDir.h"
#include "TEngineTest.h"
#include "taskengine/TLStatusFile.h"

namespace {

using S = TLSubTask;
using Statuses = std::vector<std::int32_t>;

class TaskWalkTest : public TEngineTest {
 protected:
  std::vector<std::int32_t> walk() {
    std::vector<std::int32_t> wasRunning;
    task->launchDueSubTasks(wasRunning);
    return wasRunning;
  }
};

TEST_F(TaskWalkTest, AStepThatIsDueWaitsForASilentHost) {
  for (const int waiting : {0, 1}) {
    task->clearSubTasks();
    TLSubTask& first = add("A", "A", waiting);
    first.hostName = "far";
    TLSubTask& second = add("B", "B", waiting);
    vm.obstacles["far"] = {"far", 86400};
    vm.obstacles[second.hostName] = {};
    walk();
    EXPECT_EQ(launched(), Lines());
    EXPECT_EQ(first.silentHost(), (TLSilentHost{"far", 86400}));
    vm.obstacles.clear();
    walk();
    EXPECT_EQ(launched().at(0), "startStep A");
    EXPECT_FALSE(first.silentHost());
    vm.silences[first.child(0)] = {"far", 90000};
    EXPECT_EQ(first.silentHost().since, 90000);
    vm.silences.clear();
  }
}

TEST_F(TaskWalkTest, ConfirmationAfterEachKindOfStart) {
  struct Case {
    const char* executable;
    std::int32_t waiting;
    bool first;
    std::int32_t confirmed;
  };
  const Case cases[] = {
      {"tool", 1, true, 1},    {"velstra", 1, true, 0}, {"tool", 0, true, 1},
      {"velstra", 0, true, 0}, {"tool", 1, false, 0},   {"velstra", 1, false, 0},
      {"tool", 0, false, 1},
  };
  for (const auto& test : cases) {
    task->clearSubTasks();
    if (!test.first) add("before").status = S::FinishedOk;
    add("A", test.executable, test.waiting);
    gLaunchConfirmed = 1;
    walk();
    EXPECT_EQ(gLaunchConfirmed, test.confirmed) << &test - cases;
  }
}

/// The chain whose steps tell of failures in the status file.
class MarineWalkTest : public TaskWalkTest {
 protected:
  MarineWalkTest() {
    task->localComputationPath = dir_.path();
    createStatusFile(dir_.file("x"));
  }
  void put(const char* block, const char* word) {
    writeStatusEntry(word, block, "STATUS", dir_.file("x"));
  }
  TTempDir dir_;
};

TEST_F(MarineWalkTest, WhatCountsAsFailure) {
  struct Case {
    const char* name;
    const char* block;
    const char* word;
    bool failed;
  };
  const Case cases[] = {
      {"PREMETIS", "premetis", "mismatch", true},
      {"PREMETIS", "premetis", "running", true},
      {"PREMETIS", "premetis", "finished", false},
      {"PREMETIS", "premetis", "pending", false},
      {"BRAMOSH2QUOREL", "bramosh2quorel", "failed", true},
      {"QUOREL2SORVIT", "quorel2sorvit", "failed", true},
      {"QUOREL_CFD", "quorelcfd", "failed", false},
      {"CHECKSTATUS", "premetis", "failed", false},
      {"LUMBRAKE", "premetis", "failed", false},
  };
  for (const auto& test : cases) {
    SCOPED_TRACE(testing::Message() << test.name << ' ' << test.word);
    put(test.block, test.word);
    EXPECT_EQ(TLTask::stepFailed(add(test.name)), test.failed);
    put(test.block, "pending");
  }
  TLSubTask& post = add("POSTMETIS");
  argument(post, "none", "-sim=" + dir_.file("other/x.sim"));
  dir_.write("other/status.dat", "TL_BEGIN status\nTL_BEGIN postmetis\nSTATUS =failed\n");
  EXPECT_TRUE(TLTask::stepFailed(post));
}

TEST_F(MarineWalkTest, AFailureDisablesTheMarineStepsBehindIt) {
  put("premetis", "failed");
  add("PREMETIS").status = S::FinishedOk;
  add("other", "tool", 0);
  add("QUOREL_CFD", "quorelcfd", 0);
  walk();
  EXPECT_EQ(launched(), Lines{"startStep other"}) << "only a marine step looks";
  EXPECT_EQ(statuses(), (Statuses{2, 1, 2}));
  task->clearSubTasks();
  add("PREMETIS").status = S::FinishedOk;
  task->subTask(0)->enabled = 0;  // of which nobody takes notice
  add("QUOREL_CFD");
  walk();
  EXPECT_EQ(launched(), Lines{"startMarineStep QUOREL_CFD"});
}

TEST_F(MarineWalkTest, TheTaskEndsByItself) {
  add("PREMETIS").status = S::FinishedKo;
  add("CHECKSTATUS", "tool", 2);
  TLSubTask& last = add("LUMBRAKE", "lumbrakesp", 2);
  task->superviseOnce();
  EXPECT_EQ(exits_, 0);
  last.status = S::Stopped;
  task->superviseOnce();
  EXPECT_EQ(exits_, 1);
  task->clearSubTasks();
  add("LUMBRAKE").status = S::FinishedOk;
  task->superviseOnce();
  EXPECT_EQ(exits_, 1) << "only a marine task does";
}

TEST_F(TaskWalkTest, StartOnlyMarksAndACycleAsksForEachStepOnce) {
  constexpr std::int32_t kSteps = 100;
  add("first").status = S::Crashed;
  add("second").index = 9;
  EXPECT_EQ(task->start(), 1);
  EXPECT_EQ(task->status, S::Running);
  EXPECT_EQ(statuses(), (Statuses{0, 0}));
  EXPECT_EQ(task->subTask(1)->index, 1);
  EXPECT_EQ(launched(), Lines());
  task->clearSubTasks();
  for (std::int32_t i = 0; i < kSteps; ++i) addRunning("A", "tool", {1000 + i});
  add("last");
  isGone(1000 + kSteps - 1);
  task->superviseOnce();
  EXPECT_LE(vm.statusAsked.size(), static_cast<std::size_t>(kSteps) + 1);
}

TEST_F(TaskWalkTest, StoppingAsksFirst) {
  addRunning("A", "velstra", {7, 8});
  TLSubTask& queued = addRunning("B", "tool", {9});
  queued.loadBalancing.queuingSystemActivated = 1;
  add("C");
  recordedScript().result = "yes";
  EXPECT_EQ(task->stopTask(), "no");
  EXPECT_EQ(statuses(), (Statuses{1, 1, 0}));
  recordedScript().result = "1";
  EXPECT_EQ(task->stopTask(), "yes");
  EXPECT_EQ(said(), (Lines(2, "confirm { this will kill the task }")));
  EXPECT_EQ(vm.kills, (Statuses{8, 7, 9}));
  EXPECT_EQ(launched(), (Lines{"retrieveResults A", "retrieveResults B", "retrieveResults C"}));
  EXPECT_EQ(statuses(), (Statuses{5, 5, 5}));
  EXPECT_EQ(task->subTask(0)->finishMessage.tag, 1);
}

TEST_F(TaskWalkTest, APlainTaskAnswersInWords) {
  const auto plain = makeHandle<TLTask>();
  const auto step = makeHandle<TLSubTask>();
  step->status = S::Crashed;
  plain->addSubTask(step);
  TLProcessMessage question = message(1, 900);
  plain->handleMessage(question);
  EXPECT_EQ(sent(), Lines{"500:1 'crashed'"});
  question.tag = 3;
  plain->handleMessage(question);
  EXPECT_EQ(sent(), Lines{});
  plain->start();
  EXPECT_EQ(step->status, S::Pending);
  EXPECT_EQ(launched(), Lines{"startStep unknown"});
  plain->clearSubTasks();
}

}  // namespace
