// The virtual machine of the daemon's host goes away; in a program of its own, since it takes the
// machine of all tests along.
#include <signal.h>

#include "integration/EngineDaemon.h"

namespace {

class EngineLostMachine : public EngineDaemon {
 protected:
  void TearDown() override {
    if (process_ > 0) ::kill(process_, SIGKILL);
  }
  /// As TestDaemon::ask, which would ask the lost machine whether the daemon lives.
  std::string ask(const TestDaemon& daemon, const std::string& script) const {
    const auto& where = daemon.directory();
    std::ofstream(where / "question.new") << script;
    std::filesystem::rename(where / "question.new", where / "question");
    if (!waitUntil([&] { return std::filesystem::exists(where / "answer"); })) return "TIMEOUT";
    const std::string answer = contentsOf(where / "answer");
    std::filesystem::remove(where / "answer");
    return answer;
  }
  int process_ = 0;
};

TEST_F(EngineLostMachine, WindowAndScriptGoOn) {
  TestDaemon daemon(TestDaemon::task(step("a", "SOLVE", "velstraTurbo", {"started", "wait 60"}) +
                                     step("b", "LATER", "tool", {"file " + file("b.done")})),
                    {.environment = {{"TL_UPDATE_MS", "5"}}});
  ASSERT_TRUE(daemon.waitUpcall(phrase("FLOW SOLVER STARTED")));
  process_ = PvmPeer::processOf(daemon.tid());
  ASSERT_GT(process_, 0);
  VirtualMachine::shared().kill();
  for (int i = 0; i < 3; ++i) {
    const std::string before = ask(daemon, "set cycles");
    EXPECT_TRUE(waitUntil([&] { return ask(daemon, "set cycles") != before; }));
  }
  EXPECT_TRUE(processExists(process_));
  EXPECT_EQ(daemon.upcallCount(
                phrase("The virtual machine of this host is gone: nothing can be heard or told")),
            1);
  EXPECT_EQ(ask(daemon, "winfo exists ."), "0 1");
  std::ofstream(daemon.directory() / "question") << "exit_taskmanagerc";
  EXPECT_TRUE(waitUntil([&] { return !processExists(process_); }));
}

}  // namespace
