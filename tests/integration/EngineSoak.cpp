// Starts tasks, polls them, lets their tools talk, crash and end, and begins again, for as many
// minutes as TL_SOAK_MINUTES says (20). Beside them one daemon lives through it all, with a solver
// that never stops talking. Fails when its memory or anybody's descriptors grow, or when a process
// is left behind.
#include <chrono>
#include <cstdio>

#include "integration/EngineDaemon.h"

namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

constexpr double kPageKilobytes = 4.0;
constexpr double kAllowedGrowth = 2048;  // KB, of a process of several tens of MB
constexpr int kAllowedDescriptors = 2;   // in use at the moment of the look

/// What a process holds.
struct Held {
  double kilobytes = 0;
  int descriptors = 0;
};

Held heldBy(int process) {
  const fs::path proc = "/proc/" + std::to_string(process);
  Held held;
  double size = 0;
  std::ifstream(proc / "statm") >> size >> held.kilobytes;
  held.kilobytes *= kPageKilobytes;
  std::error_code gone;
  held.descriptors = static_cast<int>(std::distance(fs::directory_iterator(proc / "fd", gone), {}));
  return held;
}

class EngineSoak : public EngineDaemon {
 protected:
  /// A whole task: a tool, a solver that crashes or ends well, a step that is stopped.
  void oneRound(bool crash) const {
    TestDaemon daemon(TestDaemon::task(
        step("tool", "TOOL", "tool", {"text first", "finished"}) +
        step("solver", "SOLVER", "velstraTurbo",
             {"started", "flood 200 text", "error a reason", crash ? "die SEGV" : "finished"}) +
        step("last", "LAST", "tool", {"wait 60"})));
    ASSERT_TRUE(daemon.waitStatuses({2, crash ? 4 : 2, 1}));
    PvmPeer::send(daemon.tid(), 10);
    PvmPeer::send(daemon.tid(), 6);
    ASSERT_TRUE(PvmPeer::receive(daemon.tid(), 6));
    PvmPeer::send(daemon.tid(), 2, PvmBody().integer(-1));
    ASSERT_TRUE(PvmPeer::receive(daemon.tid(), 2));
    PvmPeer::send(daemon.tid(), 3);
    ASSERT_TRUE(daemon.waitGone());
    while (PvmPeer::receive(daemon.tid(), -1, 0)) {
    }
  }
};

TEST_F(EngineSoak, NothingGrowsAndNothingIsLeftBehind) {
  const char* told = std::getenv("TL_SOAK_MINUTES");
  const double minutes = told == nullptr ? 20 : std::atof(told);
  Lines talk = {"started"};
  for (int i = 0; i < minutes * 60 * 10 + 600; ++i) {
    talk.insert(talk.end(), {"flood 20 iteration", "wait 0.1"});
  }
  TestDaemon daemon(TestDaemon::task(step("long", "LONG", "velstraTurbo", talk)));
  ASSERT_TRUE(daemon.waitStatuses({1}));
  const int process = PvmPeer::processOf(daemon.tid());
  const auto begin = Clock::now();
  const auto passed = [&] {
    return std::chrono::duration<double>(Clock::now() - begin).count() / 60;
  };
  const std::pair<const char*, int> watched[] = {
      {"daemon", process}, {"pvmd", VirtualMachine::shared().pid()}, {"interface", getpid()}};
  Held first[3];
  double next = 1;
  for (int rounds = 1; passed() < minutes; ++rounds) {
    ASSERT_NO_FATAL_FAILURE(oneRound(rounds % 2 == 1));
    ASSERT_TRUE(waitUntil([] { return PvmPeer::others().size() == 2; })) << "a process is left";
    ASSERT_EQ(daemon.poll(), Statuses{1}) << "the long run was lost";
    if (passed() < next) continue;
    std::printf("soak: minute %3.0f, %5d rounds", next, rounds);
    for (int i = 0; i < 3; ++i) {
      const Held now = heldBy(watched[i].second);
      std::printf("; %s %.0f KB %d descriptors", watched[i].first, now.kilobytes, now.descriptors);
      // After the first two minutes nothing has a reason to grow any more.
      if (next <= 2) first[i] = now;
      ASSERT_LE(now.kilobytes, first[i].kilobytes + kAllowedGrowth) << watched[i].first;
      ASSERT_LE(now.descriptors, first[i].descriptors + kAllowedDescriptors) << watched[i].first;
    }
    std::printf("\n");
    std::fflush(stdout);
    ++next;
  }
}

}  // namespace
