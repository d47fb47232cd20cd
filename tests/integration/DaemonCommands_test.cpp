#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "integration/TestDaemon.h"
#include "platform/TTempDir.h"

namespace {

using testing::HasSubstr;

// Its script asks for no cycle, so that nothing is launched: what a step is set to stays. A status
// in the task file is not kept by the start; the steps are pending.
TEST(DaemonCommands, AnswerAndKeepTheRecordOfTheRun) {
  TestDaemon daemon(
      TestDaemon::task(TestDaemon::step("FIRST", "none") +
                           TestDaemon::step("QUOREL_CFD", "quorelcfd",
                                            argumentsText(argumentText("-a", "/machines.txt"))) +
                           TestDaemon::step("FIRST", "none"),
                       "STARTING_DATE 1234\n"),
      {.script = "set period 0"});
  const std::string path = " {" + (daemon.directory() / "computation.sim").string() + "}";
  const std::pair<std::string, const char*> cases[] = {
      {"get_task_name", "test task"},
      {"get_task_time", "1234"},
      {"get_task_host_name", ""},
      {"search_for_subtask_by_name FIRST", "0"},
      {"search_for_subtask_by_name QUOREL_CFD", "1"},
      {"search_for_subtask_by_name first", "-1"},
      {"search_for_subtask_by_name", "-1"},
      {"itf_check_kill_task_quorelcfd", "-1"},
      {"itf_check_suspend_task_quorelcfd", "1 1"},
      {"itf_stop_subtask_quorelcfd 1", "0"},
      {"itf_stop_subtask_quorelcfd 0", "0"},
      {"itf_check_marine_subtask_status premetis" + path, "pending"},
      {"itf_check_marine_subtask_status nothing" + path, "not_found"},
      {"itf_check_marine_subtask_status premetis", "undefined"},
      {"set confirmed 0; stop_task", "no"},
      {"set confirmed yes; stop_task", "no"},
  };
  for (const auto& [command, answer] : cases) EXPECT_EQ(daemon.ask(command), answer) << command;
  EXPECT_TRUE(std::filesystem::exists(daemon.directory() / "status.dat"));
  const auto record = daemon.home() / ".talven/pvm" / ("task-" + daemon.ask("pid") + ".json");
  EXPECT_THAT(contentsOf(record), HasSubstr("\"status\": 0"));
  EXPECT_THAT(contentsOf(record), HasSubstr("\"tid\": " + std::to_string(daemon.tid())));
  EXPECT_EQ(daemon.ask("set confirmed 1; stop_task"), "yes");
  EXPECT_THAT(contentsOf(record), HasSubstr("\"status\": 5"));
  EXPECT_EQ(daemon.upcallCount("confirm { this will kill the task }"), 3);
  EXPECT_EQ(daemon.ask("set period 5"), "5");
  EXPECT_TRUE(daemon.waitGone()) << "a marine task whose steps have ended ends";
}

}  // namespace
