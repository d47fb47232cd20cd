#include "taskengine/TLRunState.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

namespace {

class RunState : public ::testing::Test {
 protected:
  RunState()
      : directory_(std::filesystem::temp_directory_path() /
                   ("tl-state-" + std::to_string(::getpid()))) {
    std::filesystem::create_directory(directory_);
  }
  ~RunState() override { std::filesystem::remove_all(directory_); }

  static TLRunState example(int pid, double started) {
    TLRunState state;
    state.tid = 262146;
    state.pid = pid;
    state.host = "vm";
    state.taskFile = "/a b/heat \"1\".task";
    state.taskName = "\xe9t\xe9";  // not UTF-8
    state.started = started;
    state.steps = {{"MESH", "mesh", "vm", 1, {7, 8}, 1, 42, 1.5, 0, "why\nnot", "qw"}};
    return state;
  }

  std::filesystem::path directory_;
};

TEST_F(RunState, ComesBackAsItWasAndGoes) {
  TLRunState state = example(11, 2);
  state.taskName = "heat";
  ASSERT_EQ(state.save(directory_), 0);
  EXPECT_EQ(TLRunState::load(TLRunState::fileName(directory_, 11)), state);
  TLRunState::remove(directory_, 11);
  EXPECT_TRUE(std::filesystem::is_empty(directory_));
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
