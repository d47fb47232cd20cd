#include <gmock/gmock.h>

#include <chrono>

#include "launching/TLJobListing.h"
#include "launching/TLJobScript.h"
#include "platform/TLHostForm.h"
#include "platform/TTempDir.h"

namespace {

TLJobScriptValues values(std::int32_t kind, std::int32_t processors = 4) {
  TLJobScriptValues result;
  result.kind = kind;
  result.hostName = "far.net";
  result.runFile = "/w/duct/duct_1.run";
  result.precision = "dp";
  result.queue = "mpi";
  result.processors = processors;
  result.executable = "velstraTurbodp";
  result.number = "042";
  return result;
}

const char* const kSettings =
    "##################################\n"
    "# COMPUTATION SETTINGS ... START #\n"
    "##################################\n"
    "\n"
    "TL_SUBMISSION_HOST=far.net\n"
    "RUN_FILE=/w/duct/duct_1.run\n"
    "STEERING1=-steering\n"
    "STEERING2=/w/duct/duct_1.steering\n"
    "PREC=dp\n"
    "\n"
    "##################################\n"
    "# COMPUTATION SETTINGS ... END   #\n"
    "##################################\n"
    "\n";

TEST(JobScript, TakesTheLinesOfEachSystemAndTheSettings) {
  const std::string redirection = "# standard output redirection\n";
  const std::string same = " standard error redirected in the same file as the standard output\n";
  const std::string lines[] = {"#$ -pe mpi 5\n#$ -N comp042\n" + redirection + "# -j y" + same +
                                   "#$ -o /w/duct/duct_1.std -j y \n",
                               "#PBS -q mpi -lselect=5:ncpus=1\n#PBS -N comp042\n" + redirection +
                                   "# -j oe" + same + "#PBS -o /w/duct/duct_1.std -j oe\n",
                               "#BSUB -q mpi -n 5\n#BSUB -J comp042\n" + redirection +
                                   "#BSUB -oo /w/duct/duct_1.std -eo /w/duct/duct_1.std\n"};
  const std::string text =
      "#!/bin/sh\r\nset -e   \n  \r\n# COMPUTATION and SETTINGS here\necho COMPUTATION SETTINGS\n"
      "# SETTINGS\n\nrun $RUN_FILE";
  for (std::int32_t kind = 1; kind <= 3; ++kind) {
    const std::string filled = filledJobScript(text, values(kind));
    EXPECT_EQ(filled, "#!/bin/sh\nset -e\n# Specify a MPI job on 4 processors \n" +
                          lines[kind - 1] + "\n\n" + kSettings +
                          "echo COMPUTATION SETTINGS\n# SETTINGS\n\nrun $RUN_FILE\n");
    EXPECT_EQ(jobNameIn(filled, kind), "comp042");
    EXPECT_EQ(jobNameIn(filled, kind % 3 + 1), "");
    EXPECT_TRUE(isFilledJobScript(filled));
  }
  auto former = exchangeHostForm(makeWin32Form());
  EXPECT_EQ(filledJobScript("# COMPUTATION SETTINGS", values(1)), kSettings) << "a UNIX host's";
  exchangeHostForm(std::move(former));
  EXPECT_EQ(filledJobScript("#!/bin/sh\nexit\n", values(1)), "#!/bin/sh\nexit\n");
  EXPECT_EQ(filledJobScript("", values(1)), "");
  EXPECT_EQ(filledJobScript("# SETTINGS COMPUTATION", values(1)), kSettings);
  EXPECT_FALSE(isFilledJobScript(text));
  EXPECT_EQ(jobNameIn("#$ -N mine\n#$ -N comp001\n", 1), "mine");
}

TEST(JobScript, AsksForOneSlotMoreWhereALauncherRuns) {
  EXPECT_EQ(jobSlots(1, "velstraTurbo"), 1);
  EXPECT_EQ(jobSlots(4, "velstraTurbodp_parallel"), 5);
  EXPECT_EQ(jobSlots(4, "velstradp.exe"), 5);
  EXPECT_EQ(jobSlots(0, "velstra.exe"), 1);
  EXPECT_EQ(jobSlots(4, "lumbrakesp"), 4);
  EXPECT_EQ(jobNumberText(7), "007");
  EXPECT_EQ(jobNumberText(42), "042");
  EXPECT_EQ(jobNumberText(9999), "9999");
  EXPECT_EQ(jobScriptPath(2, "/a.runs/b.run"), "/a.pbss/b.run");
  EXPECT_EQ(jobScriptPath(3, "b.run"), "b.lsf");
}

TEST(JobScript, ValuesArriveAsData) {
  const TTempDir dir;
  const std::string names[] = {"a;touch x.run",     "$(touch x).run", "`touch x`.run",
                               "it's \"one\".run",  "a  b.run",       "a\\b|c&d.run",
                               "a\ntouch x\n#.run", "*.run",          "~.run"};
  for (const auto& name : names) {
    SCOPED_TRACE(name);
    TLJobScriptValues hostile = values(1);
    hostile.runFile = dir.file(name);
    hostile.hostName = name;
    const std::string script = filledJobScript(
        "# COMPUTATION SETTINGS\ncd '" + dir.path() +
            "'\nprintf '%s|%s|%s' \"$TL_SUBMISSION_HOST\" \"$RUN_FILE\" \"$STEERING2\" > out\n",
        hostile);
    hostForm().runWords({"/bin/sh", "-c", script});
    const std::string stem = hostile.runFile.substr(0, hostile.runFile.size() - 4);
    EXPECT_EQ(dir.read("out"), name + "|" + hostile.runFile + "|" + stem + ".steering");
    EXPECT_FALSE(dir.has("x"));
    EXPECT_FALSE(dir.has("x.run"));
  }
}

TEST(JobScript, WordsForTheQueueStayOneWord) {
  TLJobScriptValues hostile = values(1);
  hostile.queue = "mpi 4 -o /etc/x";
  hostile.runFile = "/w/a b.run";
  EXPECT_THAT(filledJobScript("\n", hostile),
              testing::AllOf(testing::HasSubstr("#$ -pe \"mpi 4 -o /etc/x\" 5\n"),
                             testing::HasSubstr("#$ -j y -o \"/w/a b.std\"\n")));
  hostile.queue = "a \"b";
  EXPECT_THAT(filledJobScript("\n", hostile), testing::HasSubstr("#$ -pe 'a \"b' 5\n"));
  EXPECT_EQ(jobScriptFault(hostile), "");
  hostile.queue = "a 'b' \"c";
  EXPECT_THAT(jobScriptFault(hostile), testing::StartsWith("the queue's name holds blanks and"));
  hostile.queue = "mpi\n#$ -S /bin/evil";
  EXPECT_THAT(jobScriptFault(hostile), testing::StartsWith("the queue's name holds a line end"));
  hostile.queue = "mpi";
  hostile.runFile = "a\nb.run";
  EXPECT_THAT(jobScriptFault(hostile), testing::StartsWith("the run file's name holds a line end"));
}

const char* const kSgeListing =
    "job-ID  prior   name       user         state submit/start at     queue             slots\n"
    "-----------------------------------------------------------------------------------------\n"
    "      1 0.50000 comp042    root         r     11/21/2026 09:16:33 all.q@localhost       1\n"
    "      2 0.50000 comp123456 root         qw    11/21/2026 09:16:33                       1\n"
    "     17 0.50000 comp042    root         Eqw   11/21/2026 09:16:33                       1\n";
const char* const kPbsListing =
    "Job id              Name             Username        Time Use S Queue          \n"
    "------------------- ---------------- --------------- -------- - ---------------\n"
    "1.head.cluster      comp042          root            00:00:00 C batch          \n"
    "23.head.cluster     comp042          root            00:00:00 Q batch          \n"
    "24                  comp043          root            00:00:00 R batch          \n";
const char* const kLsfListing =
    "JOBID   USER    STAT  QUEUE      FROM_HOST   EXEC_HOST   JOB_NAME   SUBMIT_TIME\n"
    "31      root    PEND  batch      vm                      comp042    Nov 21 09:16\n"
    "32      root    RUN   batch      vm          vm          comp042    Nov 21 09:16\n";
const char* const kMasterDown =
    "error: commlib error: got select error (Connection refused)\n"
    "unable to send message to qmaster using port 6444 on host \"localhost\": got send error\n";

TEST(JobListing, FindsTheJobByItsName) {
  struct Case {
    std::int32_t kind;
    const char* listing;
    const char* name;
    std::int32_t number;
    const char* state;
  };
  const Case cases[] = {
      {1, kSgeListing, "comp042", 17, "Eqw"},
      {1, kSgeListing, "comp1234567", 0, ""},
      {1, kSgeListing, "", 0, ""},
      {1, "", "comp042", 0, ""},
      {1, kMasterDown, "comp042", 0, ""},
      {2, kPbsListing, "comp042", 23, "Q"},
      {2, kPbsListing, "comp043", 24, "R"},
      {2, "qstat: cannot connect to server\n", "comp042", 0, ""},
      {3, kLsfListing, "comp042", 31, "PEND"},
      {3, kLsfListing, "", 31, "PEND"},
      {3, "Job <comp042> is not found\n", "comp042", 0, ""},
      {3, "JOBID", "comp042", 0, ""},
  };
  for (const auto& test : cases) {
    SCOPED_TRACE(std::string(test.name) + "\n" + test.listing);
    const TLListedJob job = jobInListing(test.kind, test.listing, test.name);
    EXPECT_EQ(job.number, test.number);
    EXPECT_EQ(job.state, test.state);
  }
}

TEST(JobListing, OfManyJobsIsReadAtOnce) {
  std::string listing;
  for (int job = 1; job <= 50000; ++job) {
    listing += "  " + std::to_string(job) + " 0.50000 comp" + std::to_string(job % 9000) +
               " root         qw    11/21/2026 09:16:33                       1        \n";
  }
  const auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(jobInListing(1, listing, "comp4999").number, 49999);
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(1));
}

}  // namespace
