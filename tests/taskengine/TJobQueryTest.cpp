#include "../platform/TTempDir.h"
#include "TEngineTest.h"
#include "platform/TLHostForm.h"
#include "support/RecordingTool.h"
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
    EXPECT_EQ(sgeJobState(test.answer).state, test.sge);
    EXPECT_EQ(pbsJobState(test.answer, 42).state, test.pbs);
    EXPECT_EQ(lsfJobState(test.answer).state, test.lsf);
  }
}

// Answers of Grid Engine 8.1.9 and of the faces of Slurm 22.05, shortened.
TEST(JobStateTest, TellsTheQueuesOwnWordAndWhatIsOdd) {
  const std::string sge = "=====\njob_number:                 7\njob_name:    comp042\n";
  struct Case {
    TLJobAnswer answer;
    TLJobState state;
    const char* word;
    const char* said;
    bool odd;
  };
  const Case cases[] = {
      {sgeJobState(sge), TLJobState::running, "qw", "=====", false},
      {sgeJobState(sge + "usage         1:   cpu=00:00:00\n"), TLJobState::running, "r",
       "=====", false},
      {sgeJobState(sge + "error reason    1:  can't open /x\n"), TLJobState::running, "Eqw",
       "error reason    1:  can't open /x", true},
      {sgeJobState("error: commlib error: got select error (Connection refused)\n"),
       TLJobState::running, "", "error: commlib error: got select error (Connection refused)",
       true},
      {sgeJobState("Following jobs do not exist: \n7\n"), TLJobState::finished, "",
       "Following jobs do not exist: ", true},
      {pbsJobState("Job id  Name\n------ ----\n7.vm  comp042 me 00:00:00 Q batch\n", 7),
       TLJobState::running, "Q", "7.vm  comp042 me 00:00:00 Q batch", false},
      {pbsJobState("Connection refused, port 15007\n", 7), TLJobState::running, "",
       "Connection refused, port 15007", true},
      {pbsJobState("qstat: Unknown Job Id 7.vm\n", 7), TLJobState::finished, "",
       "qstat: Unknown Job Id 7.vm", true},
      {lsfJobState("JOBID USER STAT\n7 me PEND batch vm comp042\n"), TLJobState::running, "PEND",
       "7 me PEND batch vm comp042", false},
      {lsfJobState("Job <7> is not found\n"), TLJobState::unknown, "", "Job <7> is not found",
       true},
  };
  for (const auto& test : cases) {
    SCOPED_TRACE(test.said);
    EXPECT_EQ(test.answer.state, test.state);
    EXPECT_EQ(test.answer.word, test.word);
    EXPECT_EQ(test.answer.said, test.said);
    EXPECT_EQ(test.answer.odd, test.odd);
  }
}

class JobQueryTest : public TEngineTest {
 protected:
  TTempDir dir_;
  TVariable path_{"PATH", dir_.path() + ":" + std::getenv("PATH")};
  TVariable tmp_{"TMP_DIR", dir_.path() + "/out/"};
};

TEST_F(JobQueryTest, AsksTheQueueAndKeepsNoFile) {
  for (const char* name : {"qstat", "bjobs"}) {
    dir_.write(
        name,
        recordingTool(dir_.file("asked"), "cat " + dir_.file("answer") + "\nls " +
                                              dir_.file("out") + " > " + dir_.file("names") + "\n"),
        true);
  }
  dir_.write("out/kept", "");
  TLSubTask& step = addRunning("LUMBRAKE", "lumbrakesp", {42});
  step.hostName = hostForm().hostName();
  step.loadBalancing.queuingSystemActivated = 1;
  dir_.write("answer", "job_number: 42\n");
  EXPECT_TRUE(step.isRunning());
  EXPECT_NE(dir_.read("names").find("tmpout_SGE_qstat42"), std::string::npos);
  EXPECT_TRUE(dir_.has("out/kept") && std::filesystem::remove(dir_.file("out/kept")));
  EXPECT_TRUE(std::filesystem::is_empty(dir_.file("out")));
  step.loadBalancing.queuingSystemActivated = 2;
  dir_.write("answer", "nothing on it");
  EXPECT_TRUE(step.isRunning()) << "no news is no end";
  dir_.write("answer", "42 has finished");
  EXPECT_FALSE(step.isRunning());
  EXPECT_EQ(step.status, TLSubTask::FinishedOk);
  step.loadBalancing.queuingSystemActivated = 3;
  dir_.write("answer", "JOBID USER STAT\n42 me RUN\n");
  EXPECT_TRUE(step.isRunning()) << "a job is asked for whatever was known of it";
  EXPECT_EQ(dir_.read("asked"), "qstat|-j|42\nqstat|-J|42\nqstat|-J|42\nbjobs|42\n");
  step.children = {0};
  EXPECT_FALSE(step.isRunning());
  step.loadBalancing.queuingSystemActivated = 4;
  step.children = {42};
  EXPECT_TRUE(step.isRunning());
}

TEST_F(JobQueryTest, AQueuedSolverJustEnds) {
  const char* const words[] = {"", "SGE", "PBS", "LSF"};
  for (std::int32_t kind = 1; kind <= 3; ++kind) {
    TLSubTask& step = addRunning("A", "velstra", {7});
    step.loadBalancing.queuingSystemActivated = kind;
    step.status = TLSubTask::FinishedKo;
    task->checkEnded(step, 4);
    EXPECT_EQ(step.status, TLSubTask::FinishedOk);
    EXPECT_EQ(said(), Lines());
    EXPECT_EQ(sent(), Lines{std::string("500:5 '") + words[kind] + " process terminated' 4"});
    EXPECT_EQ(launched(), Lines{"retrieveResults A!"});
  }
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
