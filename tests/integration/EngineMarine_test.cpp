// The marine chain over a real status file, with tools that write it.
#include "integration/EngineDaemon.h"

#include "taskengine/TLStatusFile.h"

namespace {

class EngineMarine : public EngineDaemon {
 protected:
  std::string marineTask(const std::string& steps) const {
    return TestDaemon::task(steps, "  LOCAL_COMPUTATION_PATH " + directory.string() +
                                       "\n  COMPUTATION_FILE_NAME case.sim\n");
  }
  /// A step whose tool follows `commands`; its first argument leads to this directory.
  std::string marine(const std::string& name, const std::string& executable,
                     const Lines& commands) const {
    return scripted(name, name, executable, commands,
                    argumentText("none", "-sim=" + file("case.sim")));
  }
  std::string status(const std::string& block, const std::string& word) const {
    return "status " + block + " " + word + " " + file("case.sim");
  }
  std::string statusOf(const std::string& block) const {
    return readStatusEntry(block, "STATUS", file("case.sim"), true);
  }
  /// Polls until the daemon has ended: nobody else asks for the end of a last step.
  static bool endsWhilePolled(const TestDaemon& daemon) {
    return waitUntil(
        [&] {
          daemon.poll(0.1);
          return !daemon.alive();
        },
        60);
  }
  Lines works(const std::string& block, const std::string& end = "finished") const {
    return {status(block, "running"), "file " + file(block + ".began"), "wait 0.3",
            status(block, end)};
  }
};

TEST_F(EngineMarine, TheChainRunsToItsEndAndEndsTheDaemon) {
  put("status.dat", "not a status file");
  TestDaemon daemon(
      marineTask(marine("PREMETIS", "premetis", works("premetis")) +
                 marine("QUOREL_CFD", "quorelcfd", works("quorelcfd")) +
                 marine("POSTMETIS", "postmetis", works("postmetis")) +
                 marine("CHECKSTATUS", "tool", {"file " + file("checked"), "wait 60"})),
      {.script = kWithoutPauses});
  EXPECT_TRUE(daemon.waitGone(60));
  EXPECT_EQ(statusOf("premetis") + statusOf("quorelcfd") + statusOf("postmetis"),
            "finishedfinishedfinished");
  EXPECT_TRUE(waitFile("checked"));
  EXPECT_FALSE(has("lockStatus"));
}

TEST_F(EngineMarine, AFreshFailureAndAMismatchDisableWhatFollows) {
  for (const char* word : {"failed", "mismatch"}) {
    std::filesystem::remove(file("status.dat"));
    std::filesystem::remove(file("premetis.began"));
    TestDaemon daemon(marineTask(marine("PREMETIS", "premetis", works("premetis", word)) +
                                 marine("QUOREL_CFD", "quorelcfd", works("quorelcfd"))),
                      {.script = kWithoutPauses});
    EXPECT_TRUE(daemon.waitGone(60)) << word;
    EXPECT_TRUE(has("premetis.began")) << word;
    EXPECT_FALSE(has("quorelcfd.began")) << word;
  }
}

TEST_F(EngineMarine, AStaleEntryLeavesTheProcessToDecide) {
  TestDaemon daemon(marineTask(marine("PREMETIS", "premetis",
                                      {"entry premetis DATE 1/1/2020 " + file("case.sim"),
                                       "entry premetis STATUS finished " + file("case.sim"),
                                       "file " + file("stale"), "await 21 60"}) +
                               marine("QUOREL_CFD", "quorelcfd", works("quorelcfd"))),
                    {.script = kWithoutPauses});
  ASSERT_TRUE(waitFile("stale"));
  EXPECT_TRUE(daemon.waitStatuses({1, 0}));
  PvmPeer::send(daemon.tid(), 21, PvmBody().integer(0));
  EXPECT_TRUE(endsWhilePolled(daemon));
  EXPECT_EQ(statusOf("quorelcfd"), "finished");
}

TEST_F(EngineMarine, AKilledToolsLockHoldsNobodyUp) {
  TestDaemon daemon(
      marineTask(marine("PREMETIS", "premetis",
                        {"lock " + file("case.sim"), "file " + file("locked"), "die KILL"}) +
                 marine("QUOREL_CFD", "quorelcfd", works("quorelcfd"))),
      {.script = kWithoutPauses});
  ASSERT_TRUE(waitFile("locked"));
  EXPECT_TRUE(endsWhilePolled(daemon));
  EXPECT_EQ(statusOf("quorelcfd"), "finished");
}

TEST_F(EngineMarine, ALockedFileIsWaitedFor) {
  TestDaemon daemon(
      marineTask(marine("PREMETIS", "premetis",
                        {"lock " + file("case.sim"), "file " + file("locked"), "wait 1",
                         "file " + file("unlocking"), "unlock", "wait 60"})),
      {.script = kWithoutPauses});
  ASSERT_TRUE(waitFile("locked"));
  EXPECT_EQ(daemon.poll(), Statuses{1});  // answered after the lock was given back
  EXPECT_TRUE(has("unlocking"));
}

TEST_F(EngineMarine, TwoDaemonsShareOneDirectory) {
  const auto chain = [&] {
    return marineTask(marine("PREMETIS", "premetis", works("premetis")) +
                      marine("QUOREL_CFD", "quorelcfd", works("quorelcfd")));
  };
  TestDaemon one(chain(), {.script = kWithoutPauses});
  TestDaemon two(chain(), {.script = kWithoutPauses});
  EXPECT_TRUE(endsWhilePolled(one));
  EXPECT_TRUE(endsWhilePolled(two));
  EXPECT_EQ(statusOf("quorelcfd"), "finished");
  EXPECT_FALSE(has("lockStatus"));
}

TEST_F(EngineMarine, AStatusFileOfRandomBytesIsMadeAnew) {
  std::string noise;
  for (int i = 0; i < 100000; ++i) noise += static_cast<char>(i * 7919 >> 3);
  put("status.dat", "TL_BEGIN status\n" + noise);
  TestDaemon daemon(marineTask(marine("QUOREL_CFD", "quorelcfd", {"wait 60"})),
                    {.script = kWithoutPauses});
  EXPECT_TRUE(daemon.waitStatuses({1})) << "an entry that isn't there: the process decides";
  put("status.dat", noise);
  EXPECT_TRUE(daemon.waitStatuses({1}));
  EXPECT_EQ(statusOf("quorelcfd"), "pending");
}

TEST_F(EngineMarine, TheProbesToolIsFollowedBesideItsLog) {
  const std::string probes =
      scripted("probes", "PROBES2QVK", "probes", {"wait 60"},
               argumentText("-log", file("x.log")) + argumentText("-view_log", file("x.log.view")));
  TestDaemon daemon(TestDaemon::task(probes), {.script = kWithoutPauses});
  EXPECT_TRUE(daemon.waitUpcall(phrase("Connect to the log")));
  EXPECT_TRUE(daemon.waitUpcall("task_manager_init_tail " + file("x.log.view")));
  EXPECT_TRUE(daemon.waitStatuses({1}));
  writeStatusEntry("finished", "probes2sorvit", "STATUS", file("x"));
  EXPECT_TRUE(daemon.waitStatuses({2}));
}

}  // namespace
