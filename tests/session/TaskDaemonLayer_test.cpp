#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>

#include "platform/TTempDir.h"
#include "session/TLScript.h"
#include "session/TLTestSession.h"

namespace fs = std::filesystem;

namespace {

using ::testing::EndsWith;
using ::testing::HasSubstr;

RWCString value(const RWCString& script) {
  EXPECT_EQ(evalScript(script), 0) << script << ": " << scriptResult();
  return scriptResult();
}

/// The shipped script layer in a session whose commands are played by the test.
class TaskDaemonLayerTest : public ::testing::Test {
 protected:
  void SetUp() override {
    testSession();
    value("set env(TL_PVM_USER_DIR) {" + directory_.string() + "}; set env(TL_UPDATE_MS) 5");
    value("proc get_task_name {} {return wing}; set cycles 0; set depth 0; set deepest 0");
    value(
        "proc task_update {} {incr ::cycles; incr ::depth;"
        " set ::deepest [expr {max($::deepest, $::depth)}]; after 12; update; incr ::depth -1}");
    if (value("namespace exists ::taskWindow") == "0") {
      EXPECT_EQ(sourceFile(RWCString(TL_TEST_SHARE) + "/_tcl/_taskManager/taskDaemon.tcl"), 0);
    }
  }

  /// Handles events until the script's expression holds.
  static bool until(const RWCString& expression) {
    value("set expired 0; set timer [after 20000 {set expired 1}]");
    while (value("expr {$expired || (" + expression + ")}") == "0") testSession().oneEvent();
    value("after cancel $timer");
    return value("set expired") == "0";
  }
  /// The list of what happened, as shown.
  static RWCString reports() {
    value("::growingText::flush $::taskWindow::view");
    return value("$::taskWindow::view.text get 1.0 end-1c");
  }

  const TTempDir files_;
  const fs::path directory_{files_.path()};
};

TEST_F(TaskDaemonLayerTest, cyclesFollowEachOtherAndNeverNest) {
  EXPECT_TRUE(until("$cycles >= 3"));
  EXPECT_EQ(value("set deepest"), "1");
}

TEST_F(TaskDaemonLayerTest, everyReportReadsAsASentence) {
  const std::pair<const char*, const char*> cases[] = {
      {"___________CANNOT_SPAWN", "A step could not be started."},
      {"_________REMOTE_COPY_FAILED", "The files could not be copied to the remote host."},
      {"\"FLOW SOLVER CRASHED\"", "The flow solver has crashed."},
      {"\"Transfer completed ! \\n\"", "The files are on the remote host."},
      {"REMOVE_SEMAPHORE_4711", "Semaphore 4711 of the crashed solver is being removed."},
      {"SUBTASK_0_MUST_BE_STOPPED", "Step 1 was stopped on request."},
      {"TASK_MUST_BE_STOPPED_-1", "The task was stopped on request."},
      {"TASK_IS_BEING_SUSPENDED3", "All steps were asked to save and end."},
      {"\"TL_virtual_machine_errcode x: bad host name\"",
       "Starting a process failed: x: bad host name"},
      {"start_status_ok", "A process was started."},
      {"\"iteration 7, residual 1e-3\"", "iteration 7, residual 1e-3"},
  };
  for (const auto& [report, sentence] : cases) {
    EXPECT_EQ(evalScript(RWCString("task_manager_receive_message ") + report), 0);
    EXPECT_THAT(reports(), EndsWith(RWCString("\t") + sentence));
  }
  value("task_manager_receive_message {Copy of /a to b:/c failed: no space}");
  EXPECT_THAT(reports(), EndsWith("\t✖\tCopy of /a to b:/c failed: no space"));
}

TEST_F(TaskDaemonLayerTest, reportOfEveryCycleTakesOneLine) {
  const RWCString before = reports();
  for (int i = 0; i < 5; ++i) {
    value("task_manager_receive_message WAITING_FOR_CONFIRMATION_TO_LAUNCH_PARALLEL");
  }
  const RWCString after = reports();
  EXPECT_THAT(after.substr(before.size()), EndsWith("says that it is up."));
  EXPECT_EQ(std::count(after.begin() + before.size(), after.end(), '\n'), before.empty() ? 0 : 1);
  EXPECT_THAT(value(".footer.text cget -text"), EndsWith("5)"));
}

TEST_F(TaskDaemonLayerTest, anyTextIsShownAsItIs) {
  value("task_manager_receive_message \"\\$x \\[exit\\] \\{open \\\\ \\\"quote\\\"\"");
  EXPECT_THAT(reports(), EndsWith("$x [exit] {open \\ \"quote\""));
  value("task_manager_receive_message \"bell\\a nul\\0 end\"");
  EXPECT_THAT(reports(), EndsWith("bell  nul  end"));
  value("task_manager_receive_message [string repeat w 100000]");
  EXPECT_LT(reports().size(), 50000u);
  value("for {set i 0} {$i < 20000} {incr i} {task_manager_receive_message \"line $i\"}");
  EXPECT_THAT(reports(), EndsWith("line 19999"));
  EXPECT_EQ(value("$::taskWindow::view.text index end-1c").substr(0, 5), "5000.");
}

TEST_F(TaskDaemonLayerTest, logIsFollowedThroughGrowthCutAndReplacement) {
  const fs::path log = directory_ / "run {1}.std";
  const auto lines = [&] {
    value("::tail::update_; ::growingText::flush $::tail::view");
    return value("$::tail::view.text get 1.0 end-1c");
  };
  value("task_manager_init_tail \"" + (directory_ / "run \\{1\\}.std").string() + "\"");
  value("task_manager_update_tail");
  EXPECT_EQ(lines(), "");
  std::ofstream(log) << "one\ntw";
  EXPECT_EQ(lines(), "one");
  std::ofstream(log, std::ios::app) << "o\r\nthree\n";
  EXPECT_EQ(lines(), "one\ntwo\nthree");
  std::ofstream(log) << "new\n";
  EXPECT_THAT(lines(), EndsWith("\nnew"));
  std::ofstream(directory_ / "other") << "replaced\n";
  fs::rename(directory_ / "other", log);
  EXPECT_THAT(lines(), EndsWith("\nreplaced"));
}

TEST_F(TaskDaemonLayerTest, stepsComeFromTheRecordOfTheRun) {
  value("set ::tail::path {}");
  const fs::path record = directory_ / ("task-" + value("pid") + ".json");
  std::ofstream(directory_ / "catchout") << "[t40002] hello\n";
  std::ofstream(record) << R"({"version":1,"log_file":")" << (directory_ / "catchout").string()
                        << R"(","host":"node17","task_file":"/a/plate.tsk","started":0.5,"steps":[
    {"name":"MESH","host":"node17","status":2,"started":1.5,"ended":63.25,"reason":""},
    {"name":"FAR","host":"node18","status":1,"started":63,"ended":0,"reason":"","last_text":"hello",
     "iteration":7,"iterations_asked":20,"silent_since":86400,
     "transfer":{"direction":"from","host":"node18","file":"/x/a.cgns","number":2,"count":3,
                 "bytes":50,"total":200,"problem":"","kept_directory":"/tmp/kept"}},
    {"name":"A \"b\" {c} é \\","host":"node18","status":4,"started":63,"ended":64,
     "reason":"killed by signal 9\nsee run.std"}]})";
  EXPECT_TRUE(until("[llength [$::taskWindow::list children {}]] == 3"));
  EXPECT_EQ(value("lindex [$::taskWindow::list item 0 -values] 4"), "0:01:01");
  EXPECT_EQ(value("lindex [$::taskWindow::list item 2 -values] 0"), "A \"b\" {c} é \\");
  EXPECT_THAT(reports(), HasSubstr("Step 3, A \"b\" {c} é \\, has crashed: killed by signal 9"));
  EXPECT_THAT(value(".header.what cget -text"),
              HasSubstr("3 steps: 1 running, 1 finished, 1 crashed"));
  // The one that went wrong comes up by itself; then the user chooses another.
  const RWCString detail = ".body.upper.steps.card.detail cget -text";
  EXPECT_THAT(value(detail), HasSubstr("crashed: killed by signal 9 see run.std"));
  value("$::taskWindow::list selection set 1; update");
  EXPECT_THAT(value(detail), HasSubstr("host node18 not answering since"));
  EXPECT_THAT(
      value(detail),
      EndsWith("; files from node18: 2 of 3 a.cgns (25 %); what could not be fetched lies in "
               "/tmp/kept on node18; iteration 7 of 20\nlast said: hello"));
  EXPECT_EQ(value("wm title ."), "wing – task");
  value("event generate . <F1>; update; event generate .tell <Escape>; update");
  EXPECT_EQ(value("winfo exists .tell"), "0");
  value("::tail::update_; ::growingText::flush $::tail::view");
  EXPECT_EQ(value("$::tail::view.text get 1.0 end-1c"), "[t40002] hello");
}

TEST_F(TaskDaemonLayerTest, residualsAreDrawnAsTheyCome) {
  EXPECT_EQ(value("set tl_series_wanted"), "1");
  value("set {tl_series(x \"mom\" \\[1\\])} {0 1 0.5 2 0.25}; ::plot::update_");
  value("set {tl_series(x \"mom\" \\[1\\])} {2 3 0.125}");
  EXPECT_EQ(value("::plot::update_"), "1");
  EXPECT_EQ(value("::plot::update_"), "0");
  EXPECT_EQ(value("::plot::x0 range 0 end"), "1.0 2.0 3.0");
  EXPECT_EQ(value("::plot::y0 range 0 end"), "0.5 0.25 0.125");
  value("::look::showPlot; update");
  EXPECT_EQ(value("winfo ismapped $::plot::graph"), "1");
  value(
      "set points 0; for {set i 0} {$i < 20001} {incr i} {lappend points $i 1};"
      " set {tl_series(x \"mom\" \\[1\\])} $points; ::plot::update_");
  EXPECT_EQ(value("::plot::x0 length"), "10001");
}

TEST_F(TaskDaemonLayerTest, confirmAnswersTheButton) {
  value("after 50 {.ask.f.buttons.b0 invoke}");
  EXPECT_EQ(value("confirm { this will kill the task }"), "1");
  value("after 50 {.ask.f.buttons.b1 invoke}");
  EXPECT_EQ(value("confirm { this will kill the task }"), "0");
  value("after 50 {event generate .ask <Escape>}");
  EXPECT_EQ(value("confirm { this will kill the task }"), "0");
}

TEST_F(TaskDaemonLayerTest, failureIsShownWithoutHoldingUp) {
  showError("Warning: the execution of the command: x failed");
  EXPECT_EQ(value(".banner.text cget -text"), "Warning: the execution of the command: x failed");
  EXPECT_THAT(reports(), EndsWith("Warning: the execution of the command: x failed"));
}

}  // namespace
