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

TEST_F(TaskWalkTest, StepsStartInTheirTurn) {
  // Steps of a task in short ("/": beside the one before, "?": never started by the walk, "-":
  // disabled; "velstra" is a solver), and turn by turn what ends before the walk and what the walk
  // starts and says.
  constexpr const char* kWaits = " WAITING_FOR_CONFIRMATION_TO_LAUNCH_PARALLEL";
  const std::string solver = " velstra";
  struct Turn {
    const char* ended;
    std::string started;
  };
  const struct {
    const char* steps;
    std::vector<Turn> turns;
  } cases[] = {
      {"", {{"", ""}}},
      {"A B C", {{"", " A"}, {"", ""}, {"A", " B"}, {"B", " C"}}},
      // A waiting step waits for all before it.
      {"A B/ C", {{"", " A B"}, {"B", ""}, {"A", " C"}}},
      // A step beside a solver waits for its word, or for its end.
      {"velstra B/", {{"", solver + kWaits}, {"", kWaits}, {"confirmed", " B"}}},
      {"A/ velstra/ C/ D/", {{"", " A" + solver + kWaits}, {"velstra", " C D"}}},
      {"A? B", {{"", ""}}},
      {"A B- C", {{"", " A"}, {"A", " C"}}},
      // Nothing stands before B in the walk; but C waits for A, too.
      {"A? B/ C", {{"", " B"}, {"B", ""}}},
  };
  for (const auto& test : cases) {
    SCOPED_TRACE(test.steps);
    task->clearSubTasks();
    gLaunchConfirmed = 1;
    std::istringstream steps(test.steps);
    for (std::string name; steps >> name;) {
      const char mark = name.back();
      if (std::string_view("/?-").find(mark) != std::string_view::npos) name.pop_back();
      add(name, name, mark == '/' ? 0 : mark == '?' ? 2 : 1).enabled = mark != '-';
    }
    for (const auto& turn : test.turns) {
      for (const auto& step : task->subTasks) {
        if (step->name != turn.ended) continue;
        isGone(step->children.at(0));
        if (step->name == "velstra") step->status = S::Crashed;
      }
      if (turn.ended == std::string_view("confirmed")) gLaunchConfirmed = 1;
      walk();
      std::string started;
      for (const auto& call : launched()) started += call.substr(call.find(' '));
      for (const auto& line : said()) started += ' ' + line;
      EXPECT_EQ(started, turn.started) << "behind " << turn.ended;
    }
  }
}

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

TEST_F(TaskWalkTest, FailedStartsAreReportedAndDontStopTheWalk) {
  launcher.results = {{"A", -7}, {"B", -100}, {"C", -100}, {"D", -29}};
  add("A");
  add("B");
  add("C", "tool", 0);
  add("D", "tool", 0);
  add("E");
  task->subTask(1)->remoteTmpDir = "/tmp";
  task->subTask(1)->hostName = "far";
  walk();
  EXPECT_EQ(statuses(), (Statuses{3, 3, 3, 3, 1}));
  EXPECT_EQ(said(), Lines{"Cleaning_REMOTE_TMP_directory"});
  EXPECT_EQ(launched(), (Lines{"startStep A", "removeRemoteDir A!", "startStep B",
                               "removeRemoteDir B", "startStep C", "removeRemoteDir C!",
                               "startStep D", "removeRemoteDir D!", "startStep E"}));
  EXPECT_EQ(sent(),
            (Lines{"500:5 'Couldn't start B : remote copy failed !!' 'Check if directory /tmp of "
                   "host far is accessible and not full.' 1",
                   "500:5 'Couldn't start C : remote copy failed !!' 'Check if directory C:\\tmp "
                   "of host unknown is accessible and not full.' 2"}));
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
