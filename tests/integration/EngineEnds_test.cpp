// Why each step ended, as the record of the run tells it.
#include "integration/EngineDaemon.h"
#include "taskengine/TLRunState.h"

namespace {

using testing::HasSubstr;
using testing::StartsWith;

class EngineEnds : public EngineDaemon {};

TEST_F(EngineEnds, EveryEndHasItsReason) {
  const std::string host = VirtualMachine::shared().hostName();
  TestDaemon daemon(TestDaemon::task(
      step("a", "SOLVE", "velstraTurbo",
           {"started", "error no mesh", "print words here", "die SEGV"}) +
      step("b", "STATUS", "tool", {"exit 3"}) + step("c", "KILLED", "tool", {"die KILL"}) +
      step("d", "MISSING", "nosuchprogram", {}) + step("e", "ELSEWHERE", "tool", {}, "", "nohost") +
      step("f", "SKIPPED", "tool", {}, kDisabled) + step("g", "GOOD", "tool", {"exit 0"}) +
      step("h", "SAID", "velstraTurbo", {"started", "finished", "exit 1"}) +
      step("i", "STOPPED", "tool", {"wait 60"})));
  ASSERT_TRUE(daemon.waitStatuses({4, 2, 2, 3, 3, 2, 2, 2, 1}));
  PvmPeer::send(daemon.tid(), 2, PvmBody().integer(8));
  ASSERT_TRUE(daemon.waitStatuses({4, 2, 2, 3, 3, 2, 2, 2, 5}));
  std::vector<std::string> reasons;
  ASSERT_TRUE(waitUntil([&] {
    reasons.clear();
    const auto states = TLRunState::list((daemon.home() / ".talven/pvm").string());
    for (const auto& one : states.back().steps) reasons.push_back(one.reason);
    return !reasons.back().empty();
  }));
  const std::string on = " on host " + host;
  const std::string log = "; log: " + (daemon.directory() / "tmp").string();
  EXPECT_THAT(reasons[0], StartsWith("ended by signal 11 (SIGSEGV, bad memory access)" + on +
                                     " and never said that it was done; it had reported: no "
                                     "mesh; its last line: \"words here\"" +
                                     log));
  EXPECT_THAT(reasons[1], StartsWith("exited with status 3" + on + log));
  EXPECT_THAT(reasons[2], StartsWith("killed from outside by signal 9 (SIGKILL)" + on + log));
  EXPECT_EQ(reasons[3], "never started" + on +
                            ": nosuchprogram cannot be found in its directories for programs");
  EXPECT_EQ(reasons[4], "never started on host nohost: the virtual machine has no such host");
  EXPECT_EQ(reasons[5], "skipped: the step is disabled");
  EXPECT_EQ(reasons[6], "");
  EXPECT_THAT(reasons[7], HasSubstr("status 1" + on + ", after it had said that it was done"));
  EXPECT_EQ(reasons[8], "stopped on request" + on);
}

}  // namespace
