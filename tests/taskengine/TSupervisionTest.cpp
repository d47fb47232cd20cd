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

TEST_F(SupervisionTest, ACrashedSolversSemaphoresGoLast) {
  TLSubTask& step = addRunning("A", "velstra", {7});
  step.processIds = {4711};
  task->checkEnded(step, 0);
  EXPECT_EQ(effects(step), "status 1 | | |");
  step.status = S::FinishedOk;
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
