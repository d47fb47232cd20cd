// The shipped window on a display, over the real daemon and real processes.
#include "integration/EngineDaemon.h"

namespace {

class EngineWindow : public EngineDaemon {};

TEST_F(EngineWindow, ShowsARunAndItsCrashAndStopsTheRest) {
  put("load.steering", contentsOf(std::string(TL_EXAMPLES) + "/heat/heat.steering"));
  put("load.steering.binary", "");
  // The window's own timer drives the cycles; the layer below it goes on answering.
  const TestDaemonOptions options = {
      .script = "set period 0; source {" TL_SHARE "/_tcl/_taskManager/taskDaemon.tcl}",
      .environment = {{"TL_UPDATE_MS", "20"}}};
  const std::string solver = scripted(
      "a", "SOLVE", "velstraTurbo",
      {"started", "text hello \\ window", "values residual 1 0.5 2 0.25", "print a line of the log",
       "await 21 60", "die SEGV"},
      argumentText("none", file("a.run")) + argumentText("-steering", file("load.steering")));
  TestDaemon daemon(TestDaemon::task(solver + step("b", "REST", "tool", {"wait 60"})), options);
  const auto shows = [&](const std::string& script, const std::string& text) {
    std::string answer;
    const bool found = waitUntil([&] {
      answer = daemon.ask(script);
      return answer.find(text) != std::string::npos;
    });
    EXPECT_TRUE(found) << text << " is not in: " << answer;
  };
  const std::string detail = ".body.upper.steps.card.detail cget -text";
  shows("$::taskWindow::view.text get 1.0 end", "hello \\ window");
  shows("$::taskWindow::list item 0 -values", "running");
  shows("$::tail::view.text get 1.0 end", "a line of the log");
  shows("::plot::y0 range 0 end", "0.5 0.25");
  shows("winfo ismapped $::plot::graph", "1");
  PvmPeer::send(daemon.tid(), 21, PvmBody().integer(0));
  shows("$::taskWindow::list item 1 -values", "running");
  shows(detail, "SOLVE, crashed: ended by signal 11 (SIGSEGV, bad memory access) on host " +
                    VirtualMachine::shared().hostName());
  shows("$::taskWindow::view.text get 1.0 end", "The flow solver has crashed.");
  EXPECT_EQ(daemon.ask("after 200 {.ask.f.buttons.b0 invoke}; event generate . <Alt-s>; update"),
            "");
  EXPECT_TRUE(daemon.waitStatuses({5, 5}));
  EXPECT_TRUE(waitUntil([&] { return tools(daemon).empty(); }));
  shows(".footer.text cget -text", "All steps have ended");
  shows(detail, "SOLVE, stopped: ended by signal 11");
  daemon.ask("$::taskWindow::list selection set 1");
  shows(detail, "REST, stopped: stopped from the task's window");
}

}  // namespace
