#include "session/TLRunRecorder.h"

#include <gtest/gtest.h>

#include "messaging/TLSteeringParameters.h"
#include "messaging/TLVirtualMachine.h"
#include "platform/TLHostForm.h"
#include "platform/TTempDir.h"
#include "taskengine/TLTaskChildren.h"
#include "taskengine/TLTaskGlobals.h"

namespace {

TEST(RunRecorder, LeavesWhatWasCarriedAndHowASolverConverged) {
  TTempDir files;
  gTaskFileName = files.file("fan.task");
  gCatchoutFileName = files.write("catchout", "[t40001] hello\n");
  const Handle<TLTaskChildren> task(new TLTaskChildren);
  auto* step = new TLSubTask;
  step->name = "SOLVE";
  step->arguments.append("-iterations", "1000");
  task->addSubTask(step);
  TLRunState killed;
  killed.pid = 1 << 30;
  killed.host = ownHostName();
  killed.taskFile = gTaskFileName;
  killed.save(files.file(""));
  TLRunRecorder recorder;
  recorder.begin(*task, files.file(""));

  const auto carry = [&](const char* direction, const char* file, int number, long bytes) {
    step->transfer.direction = direction;
    step->transfer.host = "n1";
    step->transfer.file = file;
    step->transfer.number = number;
    step->transfer.bytes = bytes;
    recorder.update(*task);
  };
  step->transfer.total = 700;
  carry("to", "fan.run", 1, 0);
  carry("to", "fan.mesh", 2, 100);
  carry("", "", 0, 0);
  step->transfer.total = 0;
  step->transfer.problem = "no room";
  carry("from", "*.cgns", 1, 300);
  carry("", "", 0, 0);

  const auto rms = step->steering->parameter(0);
  rms->name = "rms";
  const auto told = [&](std::vector<float> x, std::vector<float> y) {
    rms->mergeValues(static_cast<std::int32_t>(x.size()), x.data(), y.data());
    step->residuals.take(*step->steering);
  };
  told({10, 20}, {1.0F, 0.5F});
  step->steering->clearAllValues();  // an interface has fetched them
  told({30}, {0.25F});
  told({}, {});
  step->status = TLSubTask::Crashed;
  step->endReason = "ended without a word; log: " + gCatchoutFileName;
  recorder.end(*task);

  const auto kept = TLKeptRun::load(TLKeptRun::fileName(files.file(""), gTaskFileName));
  ASSERT_TRUE(kept && kept->steps.size() == 1);
  EXPECT_TRUE(TLRunState::list(files.file("")).empty());
  const auto& copies = kept->steps[0].copies;
  ASSERT_EQ(copies.size(), 2U);
  EXPECT_EQ(copies[0].names, (std::vector<std::string>{"fan.run", "fan.mesh"}));
  EXPECT_EQ(copies[0].bytes, 700);
  EXPECT_EQ(copies[1].direction, "from");
  EXPECT_EQ(copies[1].bytes, 300);
  EXPECT_EQ(copies[1].problem, "no room");
  const TLRunStateStep& state = kept->run.steps[0];
  EXPECT_EQ(state.iteration, 30);
  EXPECT_EQ(state.iterationsAsked, 1000);
  EXPECT_EQ(state.residuals, (std::vector<TLRunStateResidual>{{"rms", 1.0, 0.25}}));
  ASSERT_EQ(kept->steps[0].residuals.size(), 1U);
  EXPECT_EQ(kept->steps[0].residuals[0].size(), 3U);
  EXPECT_EQ(state.reason, "ended without a word; log: " + kept->run.logFile);
  EXPECT_EQ(hostForm().readFile(kept->run.logFile), "[t40001] hello\n");
  task->clearSubTasks();
  gTaskFileName.clear();
  gCatchoutFileName.clear();
}

}  // namespace
