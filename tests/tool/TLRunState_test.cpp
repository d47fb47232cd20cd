#include "taskengine/TLRunState.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "platform/TLHostForm.h"
#include "platform/TTempDir.h"
#include "taskengine/TLKeptRun.h"

namespace {

class RunState : public ::testing::Test {
 protected:
  static TLRunState example(int pid, double started) {
    TLRunState state;
    state.tid = 262146;
    state.pid = pid;
    state.host = "vm";
    state.taskFile = "/a b/heat \"1\".task";
    state.taskName = "\xe9t\xe9";  // not UTF-8
    state.started = started;
    TLRunStateStep& step = state.steps.emplace_back();
    step.name = "SOLVE";
    step.status = 1;
    step.children = {7, 8};
    step.reason = "why\nnot";
    step.queueState = "qw";
    step.silentHost = "far";
    step.silentSince = 86400.5;
    step.iteration = 300;
    step.iterationsAsked = 1000;
    step.transfer = {"to",      "far", "/w/a b*",     2,        7, 1LL << 40,
                     1LL << 41, 5,     "copy failed", "/tmp/x/"};
    step.residuals = {{"rms", 1.5, 2e-7}};
    return state;
  }

  TTempDir files_;
  const std::filesystem::path directory_ = files_.path();
};

TEST_F(RunState, ComesBackAsItWasAndGoes) {
  TLRunState state = example(11, 2);
  state.taskName = "heat";
  ASSERT_EQ(state.save(directory_), 0);
  EXPECT_EQ(TLRunState::load(TLRunState::fileName(directory_, 11)), state);
  TLRunState::remove(directory_, 11);
  EXPECT_TRUE(std::filesystem::is_empty(directory_));
}

TEST_F(RunState, LeavesARecordWithTheEndOfItsLogAndBoundedPlots) {
  TLKeptRun kept;
  kept.run = example(11, 2);
  kept.run.taskName = "heat";
  kept.run.logFile = directory_ / "log";
  std::ofstream(directory_ / "log") << std::string(TLKeptRun::kLongestLog, 'x') << "\nlast line\n";
  TLKeptStep& step = kept.steps.emplace_back();
  step.crashLines = {"negative volume"};
  step.blockProcess = {0, 1, 0};
  TLPlotSeries& series = step.residuals.emplace_back("rms");
  for (int i = 1; i <= 5000; ++i) series.add(i, 1.0 / i);
  kept.keepLog(directory_);
  ASSERT_EQ(kept.save(directory_), 0);
  EXPECT_EQ(hostForm().readFile(kept.run.logFile), "last line\n");

  const auto back = TLKeptRun::load(TLKeptRun::fileName(directory_, kept.run.taskFile));
  ASSERT_TRUE(back);
  EXPECT_EQ(back->run, kept.run);
  ASSERT_EQ(back->steps.size(), 1U);
  EXPECT_EQ(back->steps[0].crashLines, step.crashLines);
  EXPECT_EQ(back->steps[0].blockProcess, step.blockProcess);
  const TLPlotSeries& read = back->steps[0].residuals.at(0);
  EXPECT_LE(read.size(), TLKeptRun::kMostPoints);
  EXPECT_EQ(read.x(0), series.x(0));
  EXPECT_EQ(read.x(read.size() - 1), 5000);

  for (std::size_t i = 0; i < TLKeptRun::kMostRuns; ++i) {
    kept.run.taskFile = "/some/" + std::to_string(i);
    kept.run.started = 100 + static_cast<double>(i);
    ASSERT_EQ(kept.save(directory_), 0);
  }
  TLKeptRun::removeOld(directory_);
  EXPECT_EQ(TLKeptRun::list(directory_).size(), TLKeptRun::kMostRuns);
  EXPECT_FALSE(std::filesystem::exists(back->run.logFile));
}

TEST_F(RunState, ListsOldestFirstAndPassesForeignFilesOver) {
  ASSERT_EQ(example(11, 20).save(directory_), 0);
  ASSERT_EQ(example(12, 10).save(directory_), 0);
  std::ofstream(directory_ / "task-13.json") << "{\"version\": 1, \"pid\": ";
  std::ofstream(directory_ / "task-14.json") << "{\"version\": 99, \"pid\": 14}";
  std::ofstream(directory_ / "task-15.json") << "{\"version\": 1, \"pid\": \"x\"}";
  const auto states = TLRunState::list(directory_);
  ASSERT_EQ(states.size(), 2U);
  EXPECT_EQ(states[0].pid, 12);
  EXPECT_EQ(states[1].pid, 11);
}

TEST_F(RunState, TellsAPlaceThatCannotBeWritten) {
  EXPECT_EQ(example(11, 1).save(directory_ / "none"), ENOENT);
}

}  // namespace
