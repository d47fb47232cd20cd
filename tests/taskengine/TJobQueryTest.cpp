#include "../platform/TTempDir.h"
#include "TEngineTest.h"
#include "platform/TLHostForm.h"
#include "taskengine/TLJobQuery.h"

namespace {

TEST(JobStateTest, IsReadAsEachSystemSaysIt) {
  struct Case {
    const char* answer;
    TLJobState sge;
    TLJobState pbs;
    TLJobState lsf;
  };
  constexpr auto unknown = TLJobState::unknown;
  constexpr auto running = TLJobState::running;
  constexpr auto finished = TLJobState::finished;
  const Case cases[] = {
      {"", unknown, unknown, unknown},
      {"Following jobs do not exist: \n42\n", finished, running, unknown},
      {"job_number: 42\nFollowing\n", finished, running, unknown},
      {"following\n", running, unknown, unknown},
      {"qstat: Unknown Job Id 42.server\n", running, finished, unknown},
      {"Job 42 HAS FINISHED, use -x\n42 again", running, finished, unknown},
      {"Unknown\n42 R\n", running, running, unknown},
      {"JOBID USER STAT\n42 me DONE\n", running, running, finished},
      {"JOBID USER STAT\n42 me EXIT\n", running, running, finished},
      {"x\nJOBID USER STAT\n42 me RUN\n42 me DONE\n", running, running, running},
      {"JOBID USER STAT", running, unknown, unknown},
      {"JOBIDS USER STAT\n42 me DONE\n", running, running, unknown},
  };
  for (const auto& test : cases) {
    SCOPED_TRACE(test.answer);
    EXPECT_EQ(sgeJobState(test.answer), test.sge);
    EXPECT_EQ(pbsJobState(test.answer, 42), test.pbs);
    EXPECT_EQ(lsfJobState(test.answer), test.lsf);
  }
}

class JobQueryTest : public TEngineTest {
 protected:
  TTempDir dir_;
  TVariable path_{"PATH", dir_.path() + ":" + std::getenv("PATH")};
  TVariable tmp_{"TMP_DIR", dir_.path() + "/out/"};
};

TEST_F(JobQueryTest, AsksTheQueueAndKeepsNoFile) {
  dir_.write("qstat",
             "#!/bin/sh\necho qstat \"$@\" >> " + dir_.file("asked") + "\ncat " +
                 dir_.file("answer") + "\nls " + dir_.file("out") + " > " + dir_.file("names") +
                 "\n",
             true);
  dir_.write("bjobs",
             "#!/bin/sh\necho bjobs \"$@\" >> " + dir_.file("asked") + "\ncat " +
                 dir_.file("answer") + "\n",
             true);
  dir_.write("out/kept", "");
  TLSubTask& step = addRunning("LUMBRAKE", "lumbrakesp", {42});
  step.hostName = hostForm().hostName();
  step.loadBalancing.queuingSystemActivated = 1;
  dir_.write("answer", "job_number: 42\n");
  EXPECT_TRUE(step.isRunning());
  EXPECT_NE(dir_.read("names").find("tmpout_SGE_qstat42"), std::string::npos);
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(dir_.file("out")),
                          std::filesystem::directory_iterator()),
            1);
  step.loadBalancing.queuingSystemActivated = 2;
  dir_.write("answer", "nothing on it");
  EXPECT_TRUE(step.isRunning()) << "no news is no end";
  dir_.write("answer", "42 has finished");
  EXPECT_FALSE(step.isRunning());
  EXPECT_EQ(step.status, TLSubTask::FinishedOk);
  step.loadBalancing.queuingSystemActivated = 3;
  dir_.write("answer", "JOBID USER STAT\n42 me RUN\n");
  EXPECT_TRUE(step.isRunning()) << "a job is asked for whatever was known of it";
  EXPECT_EQ(dir_.read("asked"), "qstat -j 42\nqstat -J 42\nqstat -J 42\nbjobs 42\n");
  step.children = {0};
  EXPECT_FALSE(step.isRunning());
  step.loadBalancing.queuingSystemActivated = 4;
  step.children = {42};
  EXPECT_TRUE(step.isRunning());
}

TEST_F(JobQueryTest, AStopFileStandsBesideTheRunFile) {
  TLSubTask& step = addRunning("LUMBRAKE", "lumbrakesp", {42});
  step.hostName = hostForm().hostName();
  TLTaskChildren::touchStopFile(step);
  for (const char* name : {"a.run", "$(touch oops) b.run.run", "norun"}) {
    step.spawnArguments.clear();
    step.spawnArguments.append("none", dir_.file(name));
    TLTaskChildren::touchStopFile(step);
  }
  EXPECT_TRUE(dir_.has("a.stop"));
  EXPECT_TRUE(dir_.has("$(touch oops) b.stop.run"));
  EXPECT_TRUE(dir_.has("norun"));
  EXPECT_FALSE(dir_.has("a.run"));
}

}  // namespace
