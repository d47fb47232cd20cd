#include <gmock/gmock.h>
#include <unistd.h>

#include <csignal>
#include <sstream>

#include "doubles/TLScriptRecording.h"
#include "doubles/TLVirtualMachineRecording.h"
#include "launching/TLJobQueue.h"
#include "launching/TLJobScript.h"
#include "platform/TLConsole.h"
#include "platform/TLHostForm.h"
#include "platform/TTempDir.h"
#include "support/RecordingTool.h"
#include "taskengine/TLTask.h"

namespace {

using testing::HasSubstr;

/// A host whose queuing commands write down the words they got and answer what the test says.
class Jobs : public testing::Test {
 protected:
  Jobs() : step(makeHandle<TLSubTask>()) {
    resetRecordedScript();
    resetRecordedVirtualMachine();
    recordedVirtualMachine().ownHost = hostForm().hostName();
    for (const char* name : {"qsub", "qstat", "qdel", "bsub", "bjobs", "bkill", "tlrsh", "tlrcp"}) {
      dir.write(std::string("bin/") + name,
                recordingTool(dir.file("asked"),
                              "cat '" + dir.file("answer-") + name + "' 2>/dev/null\nexit 1\n"),
                true);
    }
    dir.write("tmp/.keep", "");
    dir.write("w/duct.run", "");
    step->name = "VELSTRA";
    step->executable = "velstraTurbo";
    step->hostName = hostForm().hostName();
    step->loadBalancing.queuingSystemQueue = "mpi";
    step->loadBalancing.nbQueuingSystemProcessor = 2;
    useRunFile(dir.file("w/duct.run"));
  }

  void useRunFile(const std::string& path) {
    step->arguments.clear();
    step->arguments.append("none", path);
    step->spawnArguments.assign(step->arguments);
  }
  void useKind(std::int32_t kind) {
    step->loadBalancing.queuingSystemActivated = kind;
    dir.write(std::string("w/duct") + extension(kind), kTemplate);
  }
  static const char* extension(std::int32_t kind) {
    return kind == 1 ? ".sge" : kind == 2 ? ".pbs" : ".lsf";
  }
  int submit(std::int32_t& job) {
    const TLConsoleRedirect redirect(told);
    return jobQueue().submit(*step, "dp", job);
  }
  void deleteJobs() {
    const TLConsoleRedirect redirect(told);
    jobQueue().deleteJobs(*step);
  }
  long filesInTmp() const {
    return std::distance(std::filesystem::directory_iterator(dir.file("tmp")),
                         std::filesystem::directory_iterator());
  }
  /// What was asked since the last call.
  std::string asked() {
    const std::string words = dir.read("asked");
    dir.write("asked", "");
    return words;
  }

  static constexpr const char* kTemplate = "#!/bin/sh\n\n# COMPUTATION SETTINGS\n";
  TTempDir dir;
  TVariable path{"PATH", dir.file("bin") + ":" + std::getenv("PATH")};
  TVariable tmp{"TMP_DIR", dir.file("tmp") + "/"};
  TVariable suite{"TALVEN_DIR", dir.path()};
  Handle<TLSubTask> step;
  std::ostringstream told;
};

TEST_F(Jobs, AreSubmittedFoundAndDeleted) {
  // The listing answers with whatever name the script was given.
  dir.write("bin/list",
            "#!/bin/sh\nname=$(sed -n 's/.*\\(comp[0-9]*\\)$/\\1/p' '" + dir.file("w/duct.") +
                "'\"$1\")\nprintf \"$2\" \"$name\"\n",
            true);
  struct Case {
    std::int32_t kind;
    const char* tool;
    const char* row;
    const char* submission;
    const char* listing;
    const char* deletion;
    const char* state;
  };
  const Case cases[] = {
      {1, "qstat", "  77 0.5 %s me qw now\\n", "qsub|SCRIPT\n", "qstat|-g|d\n",
       "qdel|78\nqdel|77\n", "qw"},
      {2, "qstat", "77.head %s me 0 R batch\\n", "qsub|-C|#PBS|SCRIPT\n", "qstat\n",
       "qdel|78\nqdel|77\n", "R"},
      {3, "bjobs", "JOBID USER STAT\\n77 me PEND %s\\n", "bsub\n", "bjobs|-J|",
       "bkill|78\nbkill|77\n", "PEND"},
  };
  for (const auto& test : cases) {
    SCOPED_TRACE(test.tool);
    useKind(test.kind);
    const std::string script = std::string("w/duct") + extension(test.kind);
    dir.write(std::string("bin/") + test.tool,
              recordingTool(dir.file("asked"), std::string("list ") + (extension(test.kind) + 1) +
                                                   " '" + test.row + "'\n"),
              true);
    std::int32_t job = -1;
    EXPECT_EQ(submit(job), 0);
    EXPECT_EQ(job, 77);
    EXPECT_EQ(step->queueState, test.state);
    const std::string name = jobNameIn(dir.read(script), test.kind);
    EXPECT_TRUE(name.starts_with("comp") && name.size() >= 7) << name;
    std::string submission = test.submission;
    if (const auto at = submission.find("SCRIPT"); at != std::string::npos) {
      submission.replace(at, 6, dir.file(script));
    }
    const std::string listing = test.listing + (test.kind == 3 ? name + "\n" : "");
    EXPECT_EQ(asked(), (test.kind == 3 ? "bjobs\n" : listing) + submission + listing);
    EXPECT_EQ(dir.read(script + ".orig"), kTemplate);
    EXPECT_THAT(dir.read(script), HasSubstr("RUN_FILE=" + dir.file("w/duct.run") + "\n"));
    step->children = {job, 78};
    deleteJobs();
    EXPECT_EQ(asked(), test.deletion);
    EXPECT_EQ(filesInTmp(), 1) << "nothing but what was there";
  }
}

TEST_F(Jobs, RefusedByTheQueueHaveNoNumber) {
  useKind(1);
  dir.write("answer-qstat", "error: commlib error: no master\n");
  std::int32_t job = -1;
  EXPECT_EQ(submit(job), 0);
  EXPECT_EQ(job, 0);
  EXPECT_THAT(told.str(), HasSubstr("its listing begins with: error: commlib error: no master"));
  step->loadBalancing.queuingSystemActivated = 3;
  step->children = {0};
  asked();
  deleteJobs();
  EXPECT_EQ(asked(), "") << "the number 0 would remove all jobs of the user";
}

TEST_F(Jobs, UntouchedTemplateIsKeptOnce) {
  useKind(2);
  std::int32_t job = 0;
  submit(job);
  dir.write("w/duct.pbs", "#!/bin/sh\n# another\n\n");
  submit(job);
  EXPECT_EQ(dir.read("w/duct.pbs.orig"), kTemplate);
  EXPECT_THAT(dir.read("w/duct.pbs"), HasSubstr("# another\n# Specify a MPI job on 2"));
}

TEST_F(Jobs, HostileNamesArriveAsData) {
  for (const char* name : {"a;b", "$(touch x)", "it's", "a \"b\"", "a b", "`x`"}) {
    SCOPED_TRACE(name);
    useKind(1);
    const std::string run = dir.write("w/" + std::string(name) + ".run", "");
    dir.write("w/" + std::string(name) + ".sge", kTemplate);
    useRunFile(run);
    std::int32_t job = 0;
    asked();
    EXPECT_EQ(submit(job), 0);
    EXPECT_THAT(asked(), HasSubstr("\nqsub|" + dir.file("w/") + name + ".sge\n"));
    EXPECT_EQ(dir.read("w/" + std::string(name) + ".sge.orig"), kTemplate);
  }
  useKind(1);
  useRunFile(dir.file("w/duct.run"));
  step->hostName = "far;touch x\n$(y)";
  step->remoteLogin = "me'\"";
  asked();
  std::int32_t job = 0;
  submit(job);
  EXPECT_THAT(asked(),
              HasSubstr("tlrsh|-l|me'\"|far;touch x\n$(y)|qsub " + dir.file("w/duct.sge")));
  step->loadBalancing.queuingSystemQueue = "mpi\nrm -rf x";
  useKind(1);
  EXPECT_EQ(submit(job), TLJobQueue::kNothingToSubmit);
  EXPECT_EQ(dir.read("w/duct.sge"), kTemplate) << "refused, and left as it was";
  EXPECT_THAT(told.str(), HasSubstr("the queue's name holds a line end"));
}

TEST_F(Jobs, FilesOfTheCarriedStepGoAlong) {
  recordedVirtualMachine().ownHost = "elsewhere";
  useKind(1);
  step->spawnArguments.at(0)->setLocalFile(1);
  std::int32_t job = 0;
  EXPECT_EQ(submit(job), TLJobQueue::kCopyFailed) << "no transfer in this program";
  EXPECT_THAT(recordedScript().lines,
              testing::Contains("task_manager_receive_message _________REMOTE_COPY_FAILED"));
  step->hostName = "far";
  step->remoteLogin = "me";
  step->isWin32Host = 0;
  step->spawnArguments.at(0)->setValue("/far/.tm_7/duct.run");
  useKind(1);
  asked();
  EXPECT_EQ(submit(job), 0) << "the launch has carried the run file already";
  EXPECT_EQ(asked(), "tlrsh|-l|me|far|qstat -g d \ntlrcp|-b|" + dir.file("w/duct.sge") +
                         "|far.me:/far/.tm_7/duct.sge\n"
                         "tlrsh|-l|me|far|qsub /far/.tm_7/duct.sge\n"
                         "tlrsh|-l|me|far|qstat -g d \n");
  EXPECT_THAT(dir.read("w/duct.sge"), HasSubstr("RUN_FILE=/far/.tm_7/duct.run\n"));
  // A Windows host, as one that nobody knows is.
  step->isWin32Host = 1;
  step->spawnArguments.at(0)->setValue("C:\\tmp\\tm_7duct.run");
  useKind(1);
  submit(job);
  EXPECT_THAT(asked(), HasSubstr("|far|qsub C:\\tmp\\tm_7duct.sge\n"));
  EXPECT_THAT(dir.read("w/duct.sge"), HasSubstr("RUN_FILE=C:\\tmp\\tm_7duct.run\n"));
}

TEST_F(Jobs, LinksInThePlaceOfOutputFilesAreRefused) {
  useKind(1);
  const std::string victim = dir.write("victim", "kept");
  std::filesystem::create_symlink(victim,
                                  dir.file("tmp/tmpfile" + std::to_string(hostForm().processId())));
  std::int32_t job = 0;
  EXPECT_EQ(submit(job), TLJobQueue::kNothingToSubmit);
  EXPECT_EQ(dir.read("w/duct.sge"), kTemplate);
  std::filesystem::create_symlink(victim, dir.file("tmp/tmpout_sge_qdel_5"));
  step->children = {5};
  deleteJobs();
  EXPECT_EQ(dir.read("victim"), "kept");
  EXPECT_THAT(told.str(), HasSubstr("tmpout_sge_qdel_5 is a symbolic link: refused"));
}

using JobsDeathTest = Jobs;

TEST_F(JobsDeathTest, MissingTemplateEndsTheProcess) {
  useKind(3);
  const std::string script = dir.file("w/duct.lsf");
  std::filesystem::remove(script);
  std::int32_t job = 0;
  const auto run = [&] {
    dup2(2, 1);
    jobQueue().submit(*step, "", job);
  };
  EXPECT_EXIT(run(), testing::KilledBySignal(SIGABRT),
              "The template of the job script, .*duct.lsf, can't be read: .*\n"
              "\\*\\*\\*\\* Cannot Open SGE script file, Check the file \n.*duct.lsf\n");
  const TVariable none("TMP_DIR", nullptr);
  EXPECT_EXIT(run(), testing::ExitedWithCode(0),
              "\\*\\*\\*\\* TLLoadBalancing::create_queuing_system_script, ERROR: Check TMP_DIR "
              "env. variable \n");
}

}  // namespace
