#include "TEngineTest.h"

#include "platform/TLHostForm.h"

namespace {

class TaskFileTest : public TEngineTest {
 protected:
  int read(const std::string& text) {
    TLTextSource source(text);
    return task->read(source);
  }
  const TLSubTask& step(int i = 0) const { return *task->subTask(i); }
};

const char* const kWrittenStep =
    "      NAME                  unknown\n"
    "      PERF_CURVE_NAME       unknown\n"
    "      EXECUTABLE            unknown\n"
    "      HOSTNAME              unknown\n"
    "      ENABLED               1\n"
    "      REMOTETMPDIR          C:\\tmp\n"
    "      REMOTELOGIN           \n"
    "      STATUS                0\n"
    "      STARTING_DATE         -1\n"
    "      START_AFTER_TASK      \n"
    "      ENDING_DATE           -1\n"
    "      WAITING_task          1\n"
    "      AUTOMATIC_MEMORY_ESTIMATION  1\n"
    "      USER_SOLVER_PRECISION       0\n"
    "      INTEGER_SIZE          1000000\n"
    "      REAL_SIZE             1000000\n"
    "      TL_BEGIN process_arguments             \n"
    "      TL_END process_arguments             \n"
    "      TL_BEGIN load_balancing             \n";

TEST_F(TaskFileTest, WritesTheFixedLines) {
  add("unknown", "unknown");
  TLTextSink sink;
  task->write(sink);
  const std::string text = sink.text();
  EXPECT_TRUE(text.starts_with(kWrittenStep)) << text;
  const auto tail = text.find("      TEMPORARY");
  ASSERT_NE(tail, std::string::npos);
  EXPECT_TRUE(text.substr(0, tail).ends_with("      TL_END virtual_partition             \n"));
  EXPECT_TRUE(
      text.substr(tail).starts_with("      TEMPORARY              0\n"
                                    "      APPLY_TO_ALL_SUBTASKS  0\n"
                                    "      TASK_TYPE              0\n"
                                    "      LOCAL_COMPUTATION_PATH \n"
                                    "      COMPUTATION_FILE_NAME  \n"
                                    "      TL_BEGIN subtask             \n" +
                                    std::string(kWrittenStep)));
  EXPECT_TRUE(text.ends_with("      TL_END subtask             \n"));
}

TEST_F(TaskFileTest, WhatIsWrittenIsReadBack) {
  TLSubTask& original = add("LUMBRAKE", "lumbrakesp");
  original.hostName = "far";
  original.remoteLogin = "me";
  original.children = {7};
  original.status = 1;
  original.startingDate = -2;
  original.startAfterTask = "the other one";
  original.endingDate = 5;
  original.waitingTask = 0;
  original.integerSize = 41;
  original.realSize = 42;
  original.enabled = 0;
  original.userSolverPrecision = 1;
  original.arguments.append("-run", "/a b/c.run");
  original.loadBalancing.processNames = {"far", "near"};
  original.virtualPartition.setNbTasks(4);
  task->name = "a task";
  task->localComputationPath = "/data/my case/";
  task->computationFileName = "c.sim";
  const auto written = [&] {
    TLTextSink sink;
    task->write(sink);
    return sink.take();
  };
  const std::string text = written();
  ASSERT_EQ(read(text), 1);
  EXPECT_EQ(written(), text);
  EXPECT_EQ(step().loadBalancing.hostName, "far");
  EXPECT_EQ(step().loadBalancing.remoteLogin, "me");
  EXPECT_EQ(step().parentTask().get(), task.get());

  // What doesn't come back: children behind the first, more than 32 bits, and the task's end, whose
  // key the two sides spell differently.
  task->subTask(0)->children = {7, 8};
  task->subTask(0)->integerSize = 3000000000;
  task->endingDate = 9;
  const std::string more = written();
  task->endingDate = -1;
  ASSERT_EQ(read(more), 1);
  EXPECT_EQ(step().children, std::vector<std::int32_t>{7});
  EXPECT_NE(step().integerSize, 3000000000);
  EXPECT_EQ(task->endingDate, -1);
}

TEST_F(TaskFileTest, KeysStandAnywhereAndTheOrderOfTheTestsDecides) {
  ASSERT_EQ(read("# a comment\n"
                 "NAME  hostname\n"
                 "childrenId 5\nchildrenid 5\nchildrenId 6\n"
                 "  unknown key and value\n"
                 "TL_BEGIN subtask\n"
                 "name hostname\n"
                 "childrenId 5\nchildrenId 5\n"
                 "ENABLED 7\n"
                 "user_solver_precission 1\n"
                 "tl_end SubTask\n"
                 "TL_BEGIN subtask\nexecutable tltaskmgr\nremotelogin\nTL_END subtask\n"
                 "TL_BEGIN subtask\nexecutable tltaskmgr.exe\nTL_END subtask\n"
                 "TL_BEGIN subtask\nexecutable tltaskmgrx86_64\nTL_END subtask\n"
                 "TL_END task\n"
                 "NAME behind\n"),
            1);
  EXPECT_EQ(task->hostName, "hostname");
  EXPECT_EQ(task->name, "unknown");
  EXPECT_EQ(task->children, (std::vector<std::int32_t>{5, 6}));
  EXPECT_EQ(step(0).name, "hostname");
  EXPECT_EQ(step(0).children, (std::vector<std::int32_t>{5, 5}));
  EXPECT_EQ(step(0).enabled, 1);
  EXPECT_EQ(step(0).userSolverPrecision, 1);
  EXPECT_EQ(step(1).executable, "tltaskmgrx86_64.exe");
  EXPECT_EQ(step(2).executable, "tltaskmgrx86_64.exe");
  EXPECT_EQ(step(3).executable, "tltaskmgrx86_64");
}

TEST_F(TaskFileTest, AStartDateNeedsItsTask) {
  struct Case {
    const char* lines;
    std::int32_t date;
    const char* after;
  };
  const Case cases[] = {
      {"starting_Date -2\nstart_after_task the first\n", -2, "the first"},
      {"start_after_task the first\nstarting_Date -2\n", -1, ""},
      {"starting_Date -2\n", -1, ""},
      {"starting_Date 77\nstart_after_task the first\n", 77, ""},
  };
  for (const auto& test : cases) {
    SCOPED_TRACE(test.lines);
    task->startingDate = -1;
    task->startAfterTask.clear();
    ASSERT_EQ(read(std::string(test.lines) + "TL_BEGIN subtask\n" + test.lines), 1);
    EXPECT_EQ(task->startingDate, test.date);
    EXPECT_EQ(task->startAfterTask, test.after);
    EXPECT_EQ(step().startingDate, test.date);
    EXPECT_EQ(step().startAfterTask, test.after);
  }
}

TEST_F(TaskFileTest, AMissingValueFailsTheReading) {
  for (const char* bad : {"status", "hostname", "childrenId", "TL_BEGIN subtask\nname",
                          "TL_BEGIN subtask\nTL_BEGIN load_balancing\nPROCESS_NAME 2 a",
                          "TL_BEGIN process_arguments\nTL_BEGIN process_argument\nLOCAL_FILE"}) {
    EXPECT_EQ(read(std::string("name kept\nTL_BEGIN subtask\nTL_END subtask\n") + bad), 0) << bad;
    EXPECT_EQ(task->name, "kept");
    EXPECT_EQ(task->subTaskCount(), 1) << "a step that fails isn't added";
  }
  EXPECT_EQ(read("local_computation_path\ncomputation_file_name"), 1);
  EXPECT_EQ(read(""), 1);
  EXPECT_EQ(task->subTaskCount(), 0);
}

TEST_F(TaskFileTest, TheComputationPathComesFromTheMarineSolver) {
  const std::string solver =
      "TL_BEGIN subtask\nname QUOREL_CFD\nTL_BEGIN process_arguments\n"
      "TL_BEGIN process_argument\nTYPE -np\nVALUE 4\nTL_END process_argument\n"
      "TL_BEGIN process_argument\nTYPE none\nVALUE /data/case/c.sim\nTL_END process_argument\n"
      "TL_END process_arguments\nTL_END subtask\n";
  ASSERT_EQ(read(solver), 1);
  EXPECT_EQ(task->localComputationPath, "/data/case/");
  EXPECT_EQ(task->computationFileName, "c.sim");
  EXPECT_EQ(task->computationPath(), "/data/case/c.sim");
  ASSERT_EQ(read("local_computation_path /told\n" + solver), 1);
  EXPECT_EQ(task->localComputationPath, "/told");
  EXPECT_EQ(task->computationFileName, "");
  task->computationFileName = "c.sim";
  EXPECT_EQ(task->computationPath(), "/told/c.sim");

  auto former = exchangeHostForm(makeWin32Form());
  std::string far = solver;
  far.replace(far.find("/data/case/c.sim"), 16, "C:/data\\case/c.sim");
  ASSERT_EQ(read(far), 1);
  EXPECT_EQ(task->localComputationPath, "C:\\data\\case\\");
  EXPECT_EQ(task->computationPath(), "C:\\data\\case\\c.sim");
  exchangeHostForm(std::move(former));
}

TEST_F(TaskFileTest, HostKindComesFromTheVirtualMachine) {
  vm.hosts = {{1, "unix", "LINUX64", 1000, 0}};
  ASSERT_EQ(read("hostname unix\nTL_BEGIN subtask\nhostname unix\nTL_END subtask\n"), 1);
  EXPECT_EQ(task->isWin32Host, 0);
  EXPECT_EQ(step().isWin32Host, 1);  // settled at launch
  ASSERT_EQ(read("hostname nowhere"), 1);
  EXPECT_EQ(task->isWin32Host, 1);
}

TEST_F(TaskFileTest, AssignMakesACopyForANewRun) {
  TLSubTask& original = addRunning("LUMBRAKE", "lumbrakesp", {7});
  original.hostName = "far";
  original.remoteRunDir = "/tmp/.tm_1/";
  original.startingDate = -2;
  original.startAfterTask = "x";
  original.steeringAsked = 1;
  original.arguments.append("-a", "b");
  original.addParent(600);
  const auto copy = makeHandle<TLSubTask>();
  copy->addParent(700);
  copy->remoteRunDir = "/old";
  copy->assign(original);
  EXPECT_EQ(copy->parents, std::vector<std::int32_t>{kParent});
  EXPECT_EQ(copy->parentSteeringDirty, std::vector<std::int32_t>{0});
  EXPECT_EQ(copy->status, TLSubTask::Pending);
  EXPECT_EQ(copy->startingDate, -1);
  EXPECT_EQ(copy->startAfterTask, "");
  EXPECT_EQ(copy->remoteRunDir, "");
  EXPECT_EQ(copy->hostName, "far");
  EXPECT_EQ(copy->steeringAsked, 1);
  EXPECT_EQ(copy->parentTask().get(), task.get());
  original.arguments.at(0)->setValue("changed");
  EXPECT_EQ(copy->arguments.at(0)->value(), "b");
}

}  // namespace
