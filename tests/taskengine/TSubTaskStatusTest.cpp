#include <ctime>

#include "../platform/TTempDir.h"
#include "TEngineTest.h"
#include "platform/TLHostForm.h"
#include "taskengine/TLStatusFile.h"

namespace {

using S = TLSubTask;

class SubTaskStatusTest : public TEngineTest {};

TEST_F(SubTaskStatusTest, TheProcessDecides) {
  struct Case {
    std::int32_t before;
    std::int32_t answer;
    std::int32_t after;
    bool running;
  };
  const Case cases[] = {
      {S::Pending, 0, S::Running, true},         {S::Pending, kGone, S::Pending, false},
      {S::Pending, -14, S::Pending, false},      {S::Running, 0, S::Running, true},
      {S::Running, kGone, S::FinishedOk, false}, {S::Running, -14, S::FinishedKo, false},
      {S::FinishedOk, 0, S::FinishedOk, false},  {S::FinishedKo, 0, S::FinishedKo, false},
      {S::Crashed, 0, S::Crashed, false},        {S::Stopped, 0, S::Stopped, false},
  };
  TLSubTask& step = add("A");
  for (const auto& test : cases) {
    SCOPED_TRACE(testing::Message() << test.before << " with " << test.answer);
    step.children = {7};
    step.status = test.before;
    vm.statuses[7] = test.answer;
    EXPECT_EQ(step.isRunning(), test.running);
    EXPECT_EQ(step.status, test.after);
  }
  for (const std::vector<std::int32_t>& none : {std::vector<std::int32_t>{}, {0}, {-1, 7}}) {
    step.children = none;
    step.status = S::Running;
    EXPECT_FALSE(step.isRunning());
    EXPECT_EQ(step.status, S::Running);
  }
}

TEST_F(SubTaskStatusTest, BehindALauncherTheSecondChildIsWatched) {
  struct Case {
    const char* executable;
    std::int32_t parallel;
    std::int32_t watched;
  };
  for (const Case& test :
       {Case{"velstraTurbo", 0, 8}, Case{"sculpt3d", 0, 7}, Case{"sculpt3d", 1, 8}}) {
    TLSubTask& step = addRunning("A", test.executable, {7, 8, 9});
    step.loadBalancing.parallel = test.parallel;
    vm.statusAsked.clear();
    EXPECT_TRUE(step.isRunning());
    EXPECT_EQ(vm.statusAsked, std::vector<std::int32_t>{test.watched}) << test.executable;
  }
}

TEST_F(SubTaskStatusTest, ArgumentsMustBeDefined) {
  TLSubTask& step = add("A");
  EXPECT_TRUE(step.argumentsDefined());
  argument(step, "-a", "Unknown");
  EXPECT_TRUE(task->argumentsDefined());
  EXPECT_EQ(gLastError, "");
  argument(add("B"), "-b", "undefined");
  EXPECT_FALSE(task->argumentsDefined());
  EXPECT_EQ(gLastError, "SubTask arguments not yet defined");
}

/// Steps that report through the status file.
class MarineStatusTest : public TEngineTest {
 protected:
  MarineStatusTest() { task->localComputationPath = dir_.path(); }

  void put(const std::string& block, const std::string& status, int age = 0,
           const std::string& directory = "") {
    dir_.write(directory + "status.dat",
               "TL_BEGIN status\nTL_BEGIN " + block + "\nSTATUS = " + status +
                   "\nDATE = " + formatStatusDate(std::time(nullptr) - age) + "\n");
  }

  TTempDir dir_;
};

TEST_F(MarineStatusTest, TheEntryDecidesBeforeTheProcess) {
  struct Case {
    const char* word;
    int age;
    std::int32_t answer;  // of the virtual machine
    std::int32_t after;
    bool running;
    std::int32_t before = S::Running;
  };
  const Case cases[] = {
      {"running", 99, kGone, S::Running, true, S::Pending},
      {"finished", 0, 0, S::FinishedOk, false, S::Pending},
      {"running", 99, kGone, S::Running, true},
      {"pending", 0, 0, S::Running, true},
      {"pending", 0, kGone, S::FinishedOk, false},
      {"finished", 0, 0, S::FinishedOk, false},
      {"finished", 60, 0, S::Running, true},
      {"finished", 60, -14, S::FinishedKo, false},
      {"mismatch", 0, 0, S::Running, true},
      {"mismatch", 0, kGone, S::FinishedOk, false},
      {"failed", 0, 0, S::FinishedKo, false},
      {"failed", 60, 0, S::Running, true},
      {"", 0, 0, S::FinishedKo, false},
  };
  for (const auto& test : cases) {
    SCOPED_TRACE(testing::Message() << test.word << " of age " << test.age);
    TLSubTask& step = addRunning("PREMETIS", "premetis", {7});
    step.status = test.before;
    put("premetis", test.word, test.age);
    vm.statuses[7] = test.answer;
    EXPECT_EQ(step.isRunning(), test.running);
    EXPECT_EQ(step.status, test.after);
  }
}

TEST_F(MarineStatusTest, EachStepHasItsBlockAndPlace) {
  struct Case {
    const char* name;
    const char* block;
    bool byArgument;
  };
  const Case cases[] = {
      {"QUOREL_CFD", "quorelcfd", false},
      {"PREMETIS", "premetis", false},
      {"BRAMOSH2QUOREL", "bramosh2quorel", false},
      {"QUOREL2SORVIT", "quorel2sorvit", false},
      {"POSTMETIS", "postmetis", true},
      {"3dto2d", "3dto2d", true},
  };
  for (const auto& test : cases) {
    SCOPED_TRACE(test.name);
    TLSubTask& step = addRunning(test.name, "tool", {7});
    argument(step, "none", "-sim=" + dir_.file("other/x.sim"));
    put(test.block, "finished", 0, test.byArgument ? "other/" : "");
    put("none", "running", 0, test.byArgument ? "" : "other/");
    EXPECT_FALSE(step.isRunning());
    EXPECT_EQ(step.status, S::FinishedOk);
  }
  TLSubTask& check = addRunning("CHECKSTATUS", "tool", {7});
  EXPECT_FALSE(check.isRunning());
  EXPECT_EQ(check.status, S::FinishedOk);
}

TEST_F(MarineStatusTest, TheWin32FormHasItsOwnPaths) {
  auto former = exchangeHostForm(makeWin32Form(dir_.path()));
  task->localComputationPath = "C:/sub";
  task->computationFileName = "x.sim";
  put("premetis", "finished", 0, "sub/");
  TLSubTask& step = addRunning("PREMETIS", "premetis", {7});
  EXPECT_FALSE(step.isRunning());
  EXPECT_FALSE(dir_.has("sub/lockStatus"));
  put("postmetis", "failed", 0, "other/");
  TLSubTask& post = addRunning("POSTMETIS", "postmetis", {8});
  argument(post, "none", "-sim=C:\\other\\x.sim");
  EXPECT_FALSE(post.isRunning());
  exchangeHostForm(std::move(former));
  EXPECT_EQ(step.status, S::FinishedOk);
  EXPECT_EQ(post.status, S::FinishedKo);
}

TEST_F(MarineStatusTest, OtherwiseTheProcessDecides) {
  TLSubTask& step = addRunning("PREMETIS", "sculpt3d", {7});
  put("premetis", "failed");
  EXPECT_TRUE(step.isRunning()) << "this program never asks the file";
  step.executable = "premetis";
  task->localComputationPath = dir_.file("gone");
  EXPECT_TRUE(step.isRunning());
}

}  // namespace
