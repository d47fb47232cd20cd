// Sequencing, messages and ends of steps over real processes.
#include "integration/EngineDaemon.h"

namespace {

class EngineRun : public EngineDaemon {};

TEST_F(EngineRun, StepsFollowOneAnotherAndReport) {
  TestDaemon daemon(TestDaemon::task(
      step("a", "MESH", "tool", {"text first\\step", "file " + file("a.done")}) +
      step("b", "SOLVE", "velstraTurbo",
           {"started", "text iterating", "file " + file("b.done"), "await 21 60",
            "finished all well"}) +
      step("c", "SKIPPED", "tool", {}, kDisabled) + step("d", "LAST", "tool", {"wait 60"})));
  ASSERT_TRUE(waitFile("b.done"));
  EXPECT_TRUE(has("a.done"));
  EXPECT_TRUE(daemon.waitStatuses({2, 1, 0, 0}));
  EXPECT_TRUE(daemon.waitUpcall(received("iterating")));
  PvmPeer::send(daemon.tid(), 21, PvmBody().integer(1));
  EXPECT_TRUE(daemon.waitStatuses({2, 2, 2, 1}));
  EXPECT_EQ(heard(5), "all well 1");
  const Lines told = {phrase("first\\step"), phrase("FLOW SOLVER STARTED"), received("iterating"),
                      received("SUBTASK_PROMPTS_TO_SAVE_SOLUTION"), phrase("FLOW SOLVER FINISHED")};
  EXPECT_EQ(order(daemon, told), told);
  EXPECT_EQ(daemon.upcallCount(phrase("FLOW SOLVER CRASHED")), 0);
}

TEST_F(EngineRun, AStepBesideASolverWaitsForItsConfirmation) {
  TestDaemon daemon(TestDaemon::task(
      step("a", "SOLVE", "velstraTurbo", {"await 21 60", "started", "await 11 60"}) +
      step("b", "BESIDE", "tool", {"file " + file("b.done"), "await 11 60"}, kBeside)));
  const std::string waiting = received("WAITING_FOR_CONFIRMATION_TO_LAUNCH_PARALLEL");
  ASSERT_TRUE(waitUntil([&] { return daemon.upcallCount(waiting) > 2; }));
  EXPECT_FALSE(has("b.done"));
  EXPECT_TRUE(daemon.waitStatuses({1, 0}));
  PvmPeer::send(daemon.tid(), 21, PvmBody().integer(0));  // lets the solver go on
  EXPECT_TRUE(waitFile("b.done"));
  EXPECT_TRUE(daemon.waitStatuses({1, 1}));
}

TEST_F(EngineRun, AFailedStartDoesNotHoldTheTask) {
  TestDaemon daemon(TestDaemon::task(TestDaemon::step("NONE", "no_such_program") +
                                     TestDaemon::step("NONE", "no_such_program") +
                                     step("c", "NEXT", "tool", {"await 11 60"}) +
                                     step("d", "NEVER", "tool", {}, "  WAITING_TASK 2\n")));
  EXPECT_TRUE(daemon.waitStatuses({3, 3, 1, 0}));
  EXPECT_EQ(daemon.upcallCount(received("___________CANNOT_SPAWN")), 2);
  EXPECT_EQ(daemon.upcallCount(received("Cleaning_REMOTE_TMP_directory")), 1);
  EXPECT_EQ(
      daemon.upcallCount(phrase("TL_virtual_machine_errcode no_such_program cannot be found")), 2);
}

TEST_F(EngineRun, AnEndInAPollIsReportedOnceWithItsReasons) {
  struct Case {
    const char* executable;
    Lines commands;
    std::int32_t status;
    std::string upcall;
    std::string report;
  };
  const std::string crash = phrase("FLOW SOLVER CRASHED");
  const std::string ended = received("PROCESS_TERMINATED");
  const Case cases[] = {
      {"velstraTurbo", {}, 4, crash, "FLOW SOLVER : RUN TIME ERROR 0"},
      {"velstraTurbo", {"started", "text on"}, 4, crash, "FLOW SOLVER : RUN TIME ERROR 0"},
      {"velstraTurbo", {"error no mesh", "error line 2"}, 4, crash, "no mesh line 2 0"},
      {"fwh", {}, 4, phrase("FWH CRASHED"), "FWH : RUN TIME ERROR 0"},
      {"zyv", {}, 2, ended, "KelMark terminated ! 0"},
      {"sculpt3d", {}, 4, phrase("SCULPT3D CRASHED"), "SCULPT3D : RUN TIME ERROR 0"},
  };
  for (const auto& test : cases) {
    SCOPED_TRACE(test.executable);
    Lines commands = test.commands;
    commands.insert(commands.begin(), "await 21 60");
    commands.emplace_back("die KILL");
    TestDaemon daemon(TestDaemon::task(step("a", "STEP", test.executable, commands)));
    ASSERT_TRUE(daemon.waitStatuses({1}));
    PvmPeer::send(daemon.tid(), 21, PvmBody().integer(0));
    EXPECT_TRUE(daemon.waitStatuses({test.status}));
    EXPECT_EQ(heard(5, 5), test.report);
    EXPECT_TRUE(daemon.waitStatuses({test.status}));
    EXPECT_FALSE(PvmPeer::receive(-1, 5, 0));
    EXPECT_EQ(daemon.upcallCount(test.upcall), 1);
  }
}

TEST_F(EngineRun, ACycleSeesTheEndWhenAStepWaits) {
  TestDaemon daemon(
      TestDaemon::task(step("a", "SHAPE", "sculpt3d", {"await 21 60", "die SEGV"}) +
                       step("b", "NEXT", "tool", {"file " + file("b.done"), "await 11 60"})));
  ASSERT_TRUE(waitUntil([&] { return !tools(daemon).empty(); }));
  PvmPeer::send(daemon.tid(), 21, PvmBody().integer(0));
  ASSERT_TRUE(waitFile("b.done"));
  EXPECT_TRUE(daemon.waitUpcall(received("PROCESS_TERMINATED")));
  EXPECT_TRUE(daemon.waitStatuses({2, 1}));
  EXPECT_EQ(daemon.upcallCount(phrase("SCULPT3D CRASHED")), 0);
}

TEST_F(EngineRun, StopOfOneAndOfAll) {
  TestDaemon daemon(TestDaemon::task(step("a", "ONE", "velstraTurbo", {"started", "wait 60"}) +
                                     step("b", "TWO", "tool", {"wait 60"}, kBeside) +
                                     step("c", "THREE", "tool", {"file " + file("c.done")})));
  ASSERT_TRUE(daemon.waitStatuses({1, 1, 0}));
  EXPECT_EQ(tools(daemon).size(), 2U);
  PvmPeer::send(daemon.tid(), 2, PvmBody().integer(0));
  EXPECT_TRUE(daemon.waitStatuses({5, 1, 0}));
  EXPECT_TRUE(waitUntil([&] { return tools(daemon).size() == 1; }));
  EXPECT_EQ(daemon.upcallCount(received("SUBTASK_0_MUST_BE_STOPPED")), 1);
  PvmPeer::send(daemon.tid(), 2, PvmBody().integer(-1));
  EXPECT_EQ(heard(2), "");
  EXPECT_TRUE(daemon.waitStatuses({5, 5, 5}));
  EXPECT_TRUE(waitUntil([&] { return tools(daemon).empty(); }));
  EXPECT_EQ(daemon.upcallCount(received("TASK_MUST_BE_STOPPED_-1")), 1);
  EXPECT_EQ(daemon.upcallCount(phrase("FLOW SOLVER CRASHED")), 0);
  EXPECT_FALSE(has("c.done"));
}

TEST_F(EngineRun, SuspendingEndsTheDaemonWithTheSolver) {
  TestDaemon daemon(TestDaemon::task(step("a", "SOLVE", "velstraTurbo", {"started", "wait 60"})));
  ASSERT_TRUE(daemon.waitUpcall(phrase("FLOW SOLVER STARTED")));
  PvmPeer::send(daemon.tid(), 30);
  EXPECT_TRUE(daemon.waitGone());
  EXPECT_EQ(daemon.upcallCount(received("TASK_IS_BEING_SUSPENDED")), 1);
  EXPECT_EQ(daemon.upcallCount(phrase("FLOW SOLVER FINISHED")), 1);
}

TEST_F(EngineRun, SuspendingByPositionLeavesTheDaemon) {
  TestDaemon daemon(TestDaemon::task(step("a", "SOLVE", "velstraTurbo", {"started", "wait 60"}) +
                                     step("b", "AFTER", "tool", {"wait 60"})));
  ASSERT_TRUE(daemon.waitUpcall(phrase("FLOW SOLVER STARTED")));
  PvmPeer::send(daemon.tid(), 11, PvmBody().integer(0));
  EXPECT_EQ(heard(5), "suspended 0");
  EXPECT_TRUE(daemon.waitStatuses({2, 1}));
  EXPECT_EQ(daemon.upcallCount(received("SUBTASK_IS_BEING_SUSPENDED")), 1);
  PvmPeer::send(daemon.tid(), 11, PvmBody().integer(1));
  EXPECT_TRUE(daemon.waitUpcall(received("TASK_IS_BEING_SUSPENDED1")));
}

TEST_F(EngineRun, ExitLeavesTheStepsAlone) {
  TestDaemon daemon(TestDaemon::task(step("a", "STEP", "tool", {"wait 60"})));
  ASSERT_TRUE(daemon.waitStatuses({1}));
  ASSERT_TRUE(waitUntil([&] { return tools(daemon).size() == 1; }));
  const auto left = tools(daemon);
  PvmPeer::send(daemon.tid(), 3);
  EXPECT_TRUE(daemon.waitGone());
  EXPECT_TRUE(PvmPeer::alive(left[0]));
}

}  // namespace
