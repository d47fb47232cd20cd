#include "TEngineTest.h"

namespace {

using S = TLSubTask;

class SupervisionTest : public TEngineTest {
 protected:
  /// What a check says, sends and asks of the launcher, in one text.
  std::string effects(const TLSubTask& step) {
    std::string all = "status " + std::to_string(step.status);
    for (const auto& lines : {said(), sent(), launched()}) {
      all += " |";
      for (const auto& line : lines) all += " " + line;
    }
    return all;
  }
};

/// One row of the two crash checks: how a step ends, and what a cycle and a poll make of it. The
/// poll's answer to the interface, with both statuses, is "#" here.
struct Row {
  const char* executable;
  std::vector<const char*> errors;
  const char* inCycle;
  const char* inPoll;
};

const Row kRows[] = {
    {"velstra",
     {},
     "status 4 | \"FLOW SOLVER CRASHED\" | 500:5 'FLOW SOLVER : RUN TIME ERROR' 0 | "
     "retrieveResults A",
     "status 4 | \"FLOW SOLVER CRASHED\" | 500:5 'FLOW SOLVER : RUN TIME ERROR' 0 # | "
     "retrieveResults A"},
    {"mpirun.exe",
     {"bad mesh", "line 2"},
     "status 4 | \"FLOW SOLVER CRASHED\" | 500:5 'bad mesh' 'line 2' 0 | retrieveResults A",
     "status 4 | \"FLOW SOLVER CRASHED\" | 500:5 'bad mesh' 'line 2' 0 # | retrieveResults A"},
    {"fwh",
     {},
     "status 4 | \"FWH CRASHED\" | 500:5 'FWH : RUN TIME ERROR' 0 | retrieveResults A",
     "status 4 | \"FWH CRASHED\" | 500:5 'FWH : RUN TIME ERROR' 0 # |"},
    {"fwh.exe",
     {"why"},
     "status 4 | \"FWH CRASHED\" | 500:5 'why' 0 | retrieveResults A",
     "status 4 | \"FWH CRASHED\" | 500:5 'why' 0 # |"},
    {"zyv",
     {"why"},
     "status 2 | PROCESS_TERMINATED | 500:5 'KelMark terminated !' 0 | retrieveResults A",
     "status 2 | PROCESS_TERMINATED | 500:5 'KelMark terminated !' 0 # | retrieveResults A"},
    {"sculpt3d",
     {},
     "status 2 | PROCESS_TERMINATED | | removeRemoteResults A",
     "status 4 | \"SCULPT3D CRASHED\" | 500:5 'SCULPT3D : RUN TIME ERROR' 0 # |"},
    {"sculpt3d",
     {"why"},
     "status 2 | PROCESS_TERMINATED | | removeRemoteResults A",
     "status 4 | \"SCULPT3D CRASHED\" | 500:5 'why' 0 # |"},
    {"tool", {"why"}, "status 2 | | |", "status 2 | | # |"},
};

TEST_F(SupervisionTest, BothChecksAsTheyDiffer) {
  for (const auto& row : kRows) {
    SCOPED_TRACE(row.executable);
    for (const bool poll : {false, true}) {
      task->clearSubTasks();
      TLSubTask& step = addRunning("A", row.executable, {7});
      add("B").enabled = 0;  // makes the walk ask for A
      for (const char* error : row.errors) step.errorLines.addString(error);
      isGone(7);
      if (poll) {
        task->subTask(1)->status = S::Stopped;
        TLProcessMessage question = message(1, 900);
        task->handleMessage(question);
        std::string expected = row.inPoll;
        expected.replace(expected.find('#'), 1, "900:1 " + std::to_string(step.status) + " 5");
        EXPECT_EQ(effects(step), expected);
      } else {
        task->superviseOnce();
        EXPECT_EQ(effects(step), row.inCycle);
      }
      task->superviseOnce();
      TLProcessMessage again = message(1, 900);
      task->handleMessage(again);
      EXPECT_EQ(said(), Lines{}) << "reported once only";
      sent();
    }
  }
}

TEST_F(SupervisionTest, AnEndThatIsKnownIsNoCrash) {
  for (const std::int32_t known : {5, -2, 1}) {
    for (const char* executable : {"velstra", "fwh", "zyv", "sculpt3d"}) {
      TLSubTask& step = addRunning("A", executable, {7});
      step.status = S::FinishedOk;
      step.finishMessage.tag = known;
      task->checkEnded(step, 0);
      EXPECT_EQ(effects(step), "status 2 | | |");
    }
  }
  TLSubTask& step = addRunning("A", "velstra", {7});
  task->checkEnded(step, 0);
  EXPECT_EQ(effects(step), "status 1 | | |");
  step.status = S::FinishedOk;
  step.processIds = {4711};
  task->checkEnded(step, 0);
  EXPECT_EQ(said(), (Lines{"\"FLOW SOLVER CRASHED\"", "REMOVE_SEMAPHORE_4711"}));
}

TEST_F(SupervisionTest, AQueuedSolverJustEnds) {
  const char* const words[] = {"", "SGE", "PBS", "LSF"};
  for (std::int32_t kind = 1; kind <= 3; ++kind) {
    TLSubTask& step = addRunning("A", "velstra", {7});
    step.loadBalancing.queuingSystemActivated = kind;
    step.status = S::FinishedKo;
    task->checkEnded(step, 4);
    EXPECT_EQ(effects(step), std::string("status 2 | | 500:5 '") + words[kind] +
                                 " process terminated' 4 | retrieveResults A!");
  }
}

TEST_F(SupervisionTest, OneCycleReadsInOrder) {
  TLSubTask& first = addRunning("A", "velstra", {7, 8});
  addRunning("B", "velstra", {9});
  const auto text = [&](std::int32_t tid, const char* words) {
    vm.arrives(tid, 7).integer(1).integer(7).counted(words);
  };
  vm.arrives(901, 9).integer(0);
  vm.arrives(902, 10).integer(0);
  vm.arrives(903, 19).integer(0);
  vm.arrives(904, 3).integer(0);  // from strangers only those three
  vm.arrives(kParent, 29).integer(0);
  text(9, "B");
  text(8, "A2");
  text(20, "A3");
  vm.arrives(7, 28).integer(1).integer(1).integer(20);
  task->superviseOnce();
  EXPECT_EQ(said(), (Lines{"\"A2\"", "update", "\"A3\"", "update", "\"B\"", "update",
                           "VELSTRA_PERF_CURVE", "RECONNECTED_TO_OTHER_MIRE_SESSION",
                           "RECONNECTED_TO_PARENT", "TRY_RECONNECTION_TO_CHILDREN"}));
  EXPECT_EQ(first.children, (std::vector<std::int32_t>{7, 8, 20}));
  EXPECT_EQ(task->parents, (std::vector<std::int32_t>{kParent, 903, 902}));
  EXPECT_EQ(exits_, 0);
  EXPECT_EQ(vm.incoming.size(), 1U);
}

TEST_F(SupervisionTest, StartOnlyMarks) {
  add("A").status = S::Crashed;
  add("B").index = 9;
  EXPECT_EQ(task->start(), 1);
  EXPECT_EQ(task->status, S::Running);
  EXPECT_EQ(statuses(), (std::vector<std::int32_t>{0, 0}));
  EXPECT_EQ(task->subTask(1)->index, 1);
  EXPECT_EQ(launched(), Lines{});
}

TEST_F(SupervisionTest, ACycleAsksForEachStepOnce) {
  constexpr std::int32_t kSteps = 100;
  for (std::int32_t i = 0; i < kSteps; ++i) addRunning("A", "tool", {1000 + i});
  add("last");
  isGone(1000 + kSteps - 1);
  task->superviseOnce();
  EXPECT_LE(vm.statusAsked.size(), static_cast<std::size_t>(kSteps) + 1);
}

}  // namespace
