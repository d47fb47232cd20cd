// Either side of a task dies, and the other goes on with a new one.
#include <signal.h>

#include "integration/EngineDaemon.h"

namespace {

class EngineReconnect : public EngineDaemon {
 protected:
  /// Ends a task as the system would, without a word to the virtual machine.
  static void kill(std::int32_t tid) {
    const int process = PvmPeer::processOf(tid);
    ASSERT_GT(process, 0);
    ::kill(process, SIGKILL);
    PvmPeer::waitGone(tid);
  }
};

TEST_F(EngineReconnect, ATaskOutlivesItsInterface) {
  TestDaemon first(TestDaemon::task(""));  // installs the program under its name
  put("task.tsk",
      TestDaemon::task(step("a", "FIRST", "tool", {"finished of the first"}) +
                       step("b", "SOLVE", "velstraTurbo", {"started", "finished of the solver"}) +
                       step("c", "LAST", "tool", {"wait 60"})));
  const auto interface = PvmPeer::spawn(
      TL_INTERFACE_PEER, {file("tid"), "tltaskmgr", "-task", file("task.tsk"), "-parendId", "1"});
  ASSERT_GT(interface, 0);
  ASSERT_TRUE(waitFile("tid"));
  const std::int32_t daemon = std::stoi(contentsOf(directory / "tid"));
  kill(interface);

  PvmPeer::send(daemon, 10);
  const auto statuses = [&](std::size_t position) -> std::int32_t {
    PvmPeer::send(daemon, 1);
    const auto answer = PvmPeer::receive(daemon, 1);
    return answer ? std::get<std::int32_t>(answer->values().at(position)) : -1;
  };
  ASSERT_TRUE(waitUntil([&] { return statuses(2) == 1; }));
  EXPECT_EQ(statuses(0), 2);
  EXPECT_EQ(statuses(1), 2);
  while (PvmPeer::receive(daemon, 5, 0)) {  // those that came after the message 10
  }
  PvmPeer::send(daemon, 6);
  EXPECT_EQ(heard(5), "of the first 0");
  EXPECT_EQ(heard(5), "of the solver 1");
  EXPECT_EQ(heard(6), "");
  PvmPeer::send(daemon, 6);
  EXPECT_EQ(heard(6), "");
  EXPECT_FALSE(PvmPeer::receive(daemon, 5, 0)) << "once only";
  PvmPeer::send(daemon, 19);
  PvmPeer::send(daemon, 2, PvmBody().integer(-1));
  EXPECT_EQ(heard(2), "");
  EXPECT_EQ(statuses(2), 5);
  PvmPeer::send(daemon, 3);
  EXPECT_TRUE(PvmPeer::waitGone(daemon));
  EXPECT_EQ(first.upcallCount(received("RECONNECTED_TO_PARENT")), 1);
  EXPECT_EQ(first.upcallCount(received("RECONNECTED_TO_OTHER_MIRE_SESSION")), 1);
}

TEST_F(EngineReconnect, ASolverOutlivesItsDaemon) {
  std::string task = TestDaemon::task(step("a", "SOLVE", "velstraTurbo", {"started", "wait 60"}) +
                                      step("b", "OTHER", "tool", {"wait 60"}, kBeside));
  std::vector<std::int32_t> orphans;
  {
    TestDaemon lost(task);
    ASSERT_TRUE(lost.waitStatuses({1, 1}));
    ASSERT_TRUE(waitUntil([&] { return tools(lost).size() == 2; }));
    orphans = tools(lost);
    kill(lost.tid());
  }
  for (const auto tid : orphans) EXPECT_TRUE(PvmPeer::alive(tid));

  TestDaemon daemon(task);
  ASSERT_TRUE(daemon.waitStatuses({1, 1}));
  // This process plays the solver that was left.
  PvmPeer::send(daemon.tid(), 9, PvmBody().text("-x").text(file("other.run")));
  PvmPeer::send(daemon.tid(), 9, PvmBody().text(file("a.run")).text("-steering"));
  ASSERT_TRUE(daemon.waitUpcall(received("RECONNECTED_TO_CHILDREN")));
  EXPECT_EQ(daemon.upcallCount(received("RECONNECTED_TO_CHILDREN")), 1);
  EXPECT_EQ(daemon.upcallCount(received("TRY_RECONNECTION_TO_CHILDREN")), 2);
  PvmPeer::send(daemon.tid(), 20, PvmBody().text(file("a.run")).integer(4711));
  EXPECT_TRUE(daemon.waitUpcall(received("RECEIVE_PROCESS_ID")));
  PvmPeer::send(daemon.tid(), 7, PvmBody().text("from the solver"));
  EXPECT_TRUE(daemon.waitUpcall(phrase("from the solver")));
}

TEST_F(EngineReconnect, AnInterfaceDiesInTheMiddleOfItsPoll) {
  TestDaemon daemon(TestDaemon::task(step("a", "STEP", "tool", {"wait 60"})));
  ASSERT_TRUE(daemon.waitStatuses({1}));
  for (int i = 0; i < 5; ++i) {
    const auto dying =
        PvmPeer::spawn(TL_FAKETOOL, {"-parendId", std::to_string(daemon.tid()), "-do", "send 10",
                                     "-do", "send 1", "-do", "send 6", "-do", "die KILL"});
    ASSERT_GT(dying, 0);
    PvmPeer::waitGone(dying);
  }
  EXPECT_TRUE(daemon.waitStatuses({1}));
  PvmPeer::send(daemon.tid(), 2, PvmBody().integer(-1));
  EXPECT_EQ(heard(2), "");
}

}  // namespace
