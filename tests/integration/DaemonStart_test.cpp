#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "integration/TestDaemon.h"
#include "integration/VirtualMachine.h"
#include "integration/Waiting.h"

namespace fs = std::filesystem;

namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;

TEST(DaemonStart, wrongStartsAreToldToTheParentOnly) {
  struct Case {
    std::string name;
    std::vector<std::string> words;
    std::int32_t tag;
    std::string text;
  };
  const fs::path broken = VirtualMachine::shared().directory() / "broken.tsk";
  std::ofstream(broken) << "TL_BEGIN task\nSTATUS\nTL_END task\n";
  const std::vector<Case> cases = {
      {"tltaskmgr", {"-parendId", "7"}, 10025, "Task Daemon: no task file specified as input"},
      {"tltaskmgrx86_64", {"-x"}, 10025, "Task Daemon: no task file specified as input"},
      {"tltaskmgr", {"-task", "-parendId"}, 10026, "Task Daemon: cannot open "},
      {"tltaskmgr.exe",
       {"-task", "/no/such file"},
       10026,
       "Task Daemon: cannot open /no/such file"},
      {"tltaskmgrx86_64.exe",
       {"-task", broken.string()},
       10027,
       "Task Daemon: " + broken.string() + " : wrong format"},
  };
  for (const Case& c : cases) {
    const TestDaemon daemon("", {.name = c.name, .words = c.words});
    ASSERT_GT(daemon.tid(), 0);
    const auto message = PvmPeer::receive(daemon.tid());
    ASSERT_TRUE(message) << c.name;
    EXPECT_EQ(message->tag, c.tag);
    EXPECT_THAT(message->values(), ElementsAre(TLWireItem(c.text)));
    EXPECT_TRUE(daemon.waitGone());
  }
}

TEST(DaemonStart, scriptIsEvaluatedBeforeTheTaskThenDrivesItAndEndsIt) {
  TestDaemon daemon(
      TestDaemon::task(TestDaemon::step("A", "none")),
      {.script = "note [list top [get_task_name] $argc [lindex $argv 0] [file tail $argv0]]"});
  EXPECT_TRUE(daemon.waitUpcall("top {} 4 -task tltaskmgr"));
  EXPECT_EQ(daemon.ask("get_task_name"), "test task");
  EXPECT_EQ(daemon.ask("info exists tcl_rcFileName"), "1");
  EXPECT_EQ(daemon.ask("expr {$cycles > 0}"), "1");
  EXPECT_EQ(daemon.ask("task_update"), "");
  EXPECT_EQ(daemon.ask("after 1 exit_taskmanagerc; set x 1"), "1");
  EXPECT_TRUE(daemon.waitGone());
}

TEST(DaemonStart, catchoutFileGoesWithTheDaemon) {
  TestDaemon daemon(TestDaemon::task(""));
  const auto files = [&] {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(daemon.directory() / "tmp")) {
      names.push_back(entry.path().filename().string());
    }
    return names;
  };
  EXPECT_EQ(daemon.poll().size(), 0u);
  const std::string pid = daemon.ask("pid");
  EXPECT_THAT(files(), ElementsAre("taskfile_catchout" + pid));
  const fs::path record = daemon.home() / ".talven/pvm" / ("task-" + pid + ".json");
  EXPECT_TRUE(fs::exists(record));
  PvmPeer::send(daemon.tid(), 3);
  EXPECT_TRUE(daemon.waitGone());
  EXPECT_THAT(files(), ElementsAre());
  EXPECT_FALSE(fs::exists(record));
}

TEST(DaemonStart, otherNamesOnlyRunTheirScript) {
  TestDaemon daemon("", {.name = "TLTASKMGR.EXE", .words = {"-parendId", "1"}});
  ASSERT_GT(daemon.tid(), 0);
  // No script: its error is printed, and the process waits in its event loop.
  EXPECT_TRUE(waitUntil(
      [] { return VirtualMachine::shared().log().find(" TCL ERROR ") != std::string::npos; }));
  EXPECT_THAT(VirtualMachine::shared().log(), HasSubstr("<***>   taskManager 7.1  -  Mar  7 2018"));
  EXPECT_TRUE(daemon.alive());
  EXPECT_THAT(daemon.upcalls(), ElementsAre());
}

TEST(DaemonStart, scriptErrorsLeaveTheDaemonRunning) {
  TestDaemon daemon(TestDaemon::task(TestDaemon::step("A", "none")),
                    {.script = "error {broken layer}"});
  EXPECT_EQ(daemon.ask("search_for_subtask_by_name A"), "0");
  EXPECT_THAT(VirtualMachine::shared().log(), HasSubstr("broken layer"));
}

}  // namespace
