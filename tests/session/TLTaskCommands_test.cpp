#include <gtest/gtest.h>

#include <filesystem>

#include "platform/TTempDir.h"
#include "session/TLScript.h"
#include "session/TLTaskCommands.h"
#include "session/TLTestSession.h"
#include "taskengine/TLCurrentTask.h"
#include "taskengine/TLTaskChildren.h"

namespace fs = std::filesystem;

namespace {

/// The commands on a task whose steps are as a running daemon would have them.
class TLTaskCommandsTest : public ::testing::Test {
 protected:
  void SetUp() override {
    testSession();
    registerTaskCommands();
    setCurrentTask(new TLTaskChildren);
  }
  void TearDown() override {
    gCurrentTask->clearSubTasks();
    setCurrentTask(nullptr);
  }

  static TLSubTask& addStep(const RWCString& name, const RWCString& executable,
                            std::int32_t status) {
    auto* step = new TLSubTask;
    step->name = name;
    step->executable = executable;
    step->status = status;
    gCurrentTask->addSubTask(step);
    return *step;
  }
  static RWCString ask(const RWCString& command) {
    EXPECT_EQ(evalScript(command), 0) << command;
    return scriptResult();
  }
  RWCString path(const char* name) const { return files_.file(name); }

  TTempDir files_;
};

TEST_F(TLTaskCommandsTest, checkKillFindsTheRunningSolverOfThisTask) {
  gCurrentTask->name = "wing";
  EXPECT_EQ(ask("itf_check_kill_task_quorelcfd"), "-1");
  EXPECT_EQ(ask("itf_check_suspend_task_quorelcfd"), "-1 -1") << "there is no such step";
  addStep("QUOREL_CFD", "quorelcfd", TLSubTask::Running).arguments.append("none", "/a/other.sim");
  TLSubTask& ended = addStep("QUOREL_CFD", "quorelcfd", TLSubTask::FinishedOk);
  ended.arguments.append("none", "/a/wing.sim");
  addStep("QUOREL_CFD", "quorelcfd", TLSubTask::Running).arguments.append("none", "/a/Wing.sim");
  EXPECT_EQ(ask("itf_check_kill_task_quorelcfd"), "-1");
  ended.status = TLSubTask::Running;
  EXPECT_EQ(ask("itf_check_kill_task_quorelcfd"), "1");
  gCurrentTask->name.clear();
  EXPECT_EQ(ask("itf_check_kill_task_quorelcfd"), "0");
}

TEST_F(TLTaskCommandsTest, stopOfOneSolverByItsFile) {
  TLSubTask& step = addStep("QUOREL_CFD", "quorelcfd", TLSubTask::Running);
  EXPECT_EQ(ask("itf_stop_subtask_quorelcfd 0"), "0");
  step.arguments.append("-x", path("x.sim"));
  EXPECT_EQ(ask("itf_stop_subtask_quorelcfd 0"), "0");
  EXPECT_EQ(step.stopRequest, 0);

  step.arguments.append("-machinefile", path("machines.txt"));
  step.status = TLSubTask::Pending;
  EXPECT_EQ(ask("itf_stop_subtask_quorelcfd 0"), "0");
  step.status = TLSubTask::Running;
  EXPECT_EQ(ask("itf_check_suspend_task_quorelcfd"), "0 0");
  EXPECT_EQ(ask("itf_stop_subtask_quorelcfd 0"), "1");
  EXPECT_EQ(files_.read("stop.now"), "Q\n");
  EXPECT_EQ(step.stopRequest, 1);
  EXPECT_EQ(ask("itf_check_suspend_task_quorelcfd"), "0 1");
  step.stopRequest = 2;
  EXPECT_EQ(ask("itf_check_suspend_task_quorelcfd"), "0 -1");
  step.arguments.clear();
  step.arguments.append("-machinefile", "/no/such/directory/machines.txt");
  EXPECT_EQ(ask("itf_stop_subtask_quorelcfd 0"), "") << "a file that can't be made has no result";
}

TEST_F(TLTaskCommandsTest, marineEndAsksRunningToolsAndStopsAll) {
  for (const char* name : {"solver", "probes", "waiting"}) fs::create_directory(path(name));
  const auto add = [&](const char* name, const char* executable, std::int32_t status,
                       const char* type, const char* file) {
    TLSubTask& step = addStep(name, executable, status);
    step.arguments.append("-first", path("nowhere/x"));
    step.arguments.append(type, path(file));
  };
  TLSubTask& solver = addStep("QUOREL_CFD", "quorelcfd_parallel.exe", TLSubTask::Running);
  solver.arguments.append("none", path("solver/wing.sim"));
  add("PROBES2QVK", "probes", TLSubTask::Running, "-log", "probes/probes.log");
  TLSubTask& waiting = addStep("QUOREL_CFD", "quorelcfd", TLSubTask::Pending);
  waiting.arguments.append("none", path("waiting/wing.sim"));
  add("PREMETIS", "premetis", TLSubTask::Running, "none", "x");
  EXPECT_EQ(ask("itf_kill_current_task_marine"), "");
  EXPECT_EQ(files_.read("solver/stop.now"), "Q\n");
  EXPECT_EQ(files_.read("probes/stop_postprocessing.now"), "Q\n");
  EXPECT_TRUE(fs::is_empty(path("waiting")));
  for (const auto& step : gCurrentTask->subTasks) EXPECT_EQ(step->status, TLSubTask::Stopped);
}

TEST_F(TLTaskCommandsTest, residualsGoToAScriptThatWantsThem) {
  TLSubTask& step = addStep("VELSTRA", "velstra", TLSubTask::Running);
  const auto residual = step.steering->parameter(0);
  residual->name = "mass flow";
  const float x[] = {1, 2, 3};
  const float y[] = {0.5F, 0.25F, 1e-7F};
  residual->mergeValues(2, x, y);
  ask("task_update");
  EXPECT_EQ(ask("info exists tl_series"), "0");

  ask("set tl_series_wanted 1; task_update");
  EXPECT_EQ(ask("set {tl_series(mass flow)}"), "0 1 0.5 2 0.25");
  residual->mergeValues(1, x + 2, y + 2);
  ask("task_update");
  EXPECT_EQ(ask("set {tl_series(mass flow)}"), "0 1 0.5 2 0.25 3 1e-07");
  ask("unset tl_series; task_update");
  EXPECT_EQ(ask("info exists tl_series"), "0");
  residual->clearValues();
  residual->setValueCount(0);
  residual->mergeValues(1, x, y);
  ask("task_update");
  EXPECT_EQ(ask("set {tl_series(mass flow)}"), "0 1 0.5");
  ask("unset tl_series tl_series_wanted");
}

TEST_F(TLTaskCommandsTest, withoutATaskNothingIsAnswered) {
  setCurrentTask(nullptr);
  for (const char* command : {"get_task_name", "task_update", "stop_task",
                              "itf_check_kill_task_quorelcfd", "search_for_subtask_by_name x"}) {
    EXPECT_EQ(ask(command), "") << command;
  }
  setCurrentTask(new TLTaskChildren);
}

}  // namespace
