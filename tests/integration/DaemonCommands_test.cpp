#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>

#include "integration/TestDaemon.h"

namespace fs = std::filesystem;

namespace {

std::string contents(const fs::path& file) {
  std::ifstream in(file);
  return {std::istreambuf_iterator<char>(in), {}};
}

std::string argument(const std::string& type, const std::string& value) {
  return "TL_BEGIN process_argument\n TYPE " + type + "\n VALUE " + value +
         "\nTL_END process_argument\n";
}

std::string arguments(const std::string& list) {
  return "TL_BEGIN process_arguments\n" + list + "TL_END process_arguments\n";
}

/// A daemon whose script asks for no cycle, so that nothing is launched: what a step is set to
/// stays. A status in the task file isn't kept by the start; the steps are pending.
TestDaemonOptions withoutCycles() {
  TestDaemonOptions options;
  options.script = "set period 0";
  return options;
}

TEST(DaemonCommands, namesAndTimes) {
  TestDaemon daemon(
      TestDaemon::task(TestDaemon::step("FIRST", "none") + TestDaemon::step("SECOND", "none") +
                           TestDaemon::step("FIRST", "none"),
                       "STARTING_DATE 1234\n"),
      withoutCycles());
  EXPECT_EQ(daemon.ask("get_task_name"), "test task");
  EXPECT_EQ(daemon.ask("get_task_time"), "1234");
  EXPECT_EQ(daemon.ask("get_task_host_name"), "");
  EXPECT_EQ(daemon.ask("search_for_subtask_by_name FIRST"), "0");
  EXPECT_EQ(daemon.ask("search_for_subtask_by_name SECOND"), "1");
  EXPECT_EQ(daemon.ask("search_for_subtask_by_name first"), "-1");
  EXPECT_EQ(daemon.ask("search_for_subtask_by_name"), "-1");
  EXPECT_EQ(daemon.ask("task_update"), "");
}

TEST(DaemonCommands, marineCommandsWithoutARunningSolver) {
  TestDaemon daemon(
      TestDaemon::task(TestDaemon::step("OTHER", "none") +
                       TestDaemon::step("QUOREL_CFD", "quorelcfd",
                                        arguments(argument("-a", "/x/machines.txt")))),
      withoutCycles());
  EXPECT_EQ(daemon.ask("itf_check_kill_task_quorelcfd"), "-1");
  EXPECT_EQ(daemon.ask("itf_check_suspend_task_quorelcfd"), "1 1");
  EXPECT_EQ(daemon.ask("itf_stop_subtask_quorelcfd 1"), "0");
  EXPECT_EQ(daemon.ask("itf_stop_subtask_quorelcfd 0"), "0");
}

TEST(DaemonCommands, suspendCheckWithoutTheSolverStep) {
  TestDaemon daemon(TestDaemon::task(TestDaemon::step("OTHER", "none")), withoutCycles());
  EXPECT_EQ(daemon.ask("itf_check_suspend_task_quorelcfd"), "-1 -1");
  EXPECT_EQ(daemon.ask("itf_check_kill_task_quorelcfd"), "-1");
}

TEST(DaemonCommands, marineStatusIsReadFromTheComputation) {
  TestDaemon daemon(TestDaemon::task(""), withoutCycles());
  const std::string path = (daemon.directory() / "computation.sim").string();
  EXPECT_EQ(daemon.ask("itf_check_marine_subtask_status premetis {" + path + "}"), "pending");
  EXPECT_TRUE(fs::exists(daemon.directory() / "status.dat"));
  EXPECT_EQ(daemon.ask("itf_check_marine_subtask_status nothing {" + path + "}"), "not_found");
  EXPECT_EQ(daemon.ask("itf_check_marine_subtask_status premetis"), "undefined");
}

TEST(DaemonCommands, stopAsksTheUser) {
  TestDaemon daemon(TestDaemon::task(TestDaemon::step("A", "none")), withoutCycles());
  EXPECT_EQ(daemon.ask("set confirmed 0; stop_task"), "no");
  EXPECT_EQ(daemon.ask("set confirmed yes; stop_task"), "no");
  EXPECT_EQ(daemon.ask("set confirmed 1; stop_task"), "yes");
  EXPECT_EQ(daemon.upcallCount("confirm { this will kill the task }"), 3);
  EXPECT_EQ(daemon.ask("set period 5"), "5");
  EXPECT_TRUE(daemon.waitStatuses({5}));
}

TEST(DaemonCommands, marineEndStopsPendingStepsToo) {
  TestDaemon daemon(TestDaemon::task(TestDaemon::step("A", "none") + TestDaemon::step("B", "none")),
                    withoutCycles());
  EXPECT_EQ(daemon.ask("itf_kill_current_task_marine; set period 5"), "5");
  EXPECT_TRUE(daemon.waitStatuses({5, 5}));
}

TEST(DaemonCommands, recordOfTheRunFollowsTheTask) {
  TestDaemon daemon(TestDaemon::task(TestDaemon::step("A", "none")), withoutCycles());
  const std::string pid = daemon.ask("pid");
  const fs::path record = daemon.home() / ".talven/pvm" / ("task-" + pid + ".json");
  EXPECT_THAT(contents(record), ::testing::HasSubstr("\"status\": 0"));
  EXPECT_THAT(contents(record), ::testing::HasSubstr("\"tid\": " + std::to_string(daemon.tid())));
  EXPECT_EQ(daemon.ask("stop_task"), "yes");
  EXPECT_THAT(contents(record), ::testing::HasSubstr("\"status\": 5"));
}

}  // namespace
