// Starts tasks, polls them, lets their tools talk, crash and end, and begins again, for as many
// minutes as the first argument says (20). Beside them one daemon lives through it all, with a
// solver that never stops talking. Fails when its memory or anybody's descriptors grow, or when a
// process is left behind.
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "integration/PvmPeer.h"
#include "integration/TestDaemon.h"
#include "integration/VirtualMachine.h"
#include "integration/Waiting.h"

namespace fs = std::filesystem;

namespace {

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

class Soak {
 public:
  explicit Soak(double minutes) : minutes_(minutes) {
    for (const char* program : {"tool", "velstraTurbo"}) {
      VirtualMachine::shared().addProgram(program, TL_FAKETOOL);
    }
    PvmPeer::tid();
    directory_ = VirtualMachine::shared().directory() / "soak";
    fs::create_directories(directory_);
  }

  int run() {
    std::string talk = "started\n";
    for (int i = 0; i < minutes_ * 60 * 10 + 600; ++i) talk += "flood 20 iteration\nwait 0.1\n";
    TestDaemon daemon(TestDaemon::task(step("long", "velstraTurbo", talk)));
    if (!daemon.waitStatuses({1})) return fail("the long run does not start");
    const int process = PvmPeer::processOf(daemon.tid());
    const std::size_t base = 2;  // the daemon and its solver
    const auto begin = Clock::now();
    double next = 1;
    Held first[3];
    int rounds = 0;
    while (passed(begin) < minutes_) {
      if (!oneRound(rounds++ % 2 == 0)) return fail("a round went wrong");
      if (!waitUntil([&] { return PvmPeer::others().size() == base; })) {
        return fail("a process was left behind");
      }
      if (daemon.poll() != std::vector<std::int32_t>{1}) return fail("the long run was lost");
      if (passed(begin) < next) continue;
      const Held now[3] = {heldBy(process), heldBy(VirtualMachine::shared().pid()),
                           heldBy(getpid())};
      tell(next, rounds, now);
      if (next == 2) std::copy(std::begin(now), std::end(now), first);
      if (next > 2 && grown(first, now)) return fail("something grows");
      ++next;
    }
    std::printf("soak: %d rounds in %.1f minutes, nothing grew, nothing was left behind\n", rounds,
                passed(begin));
    return 0;
  }

 private:
  using Clock = std::chrono::steady_clock;
  static double passed(Clock::time_point begin) {
    return std::chrono::duration<double>(Clock::now() - begin).count() / 60;
  }

  static int fail(const char* what) {
    std::printf("soak: FAILED: %s\n", what);
    return 1;
  }

  static void tell(double minute, int rounds, const Held (&held)[3]) {
    std::printf("soak: minute %3.0f, %5d rounds", minute, rounds);
    const char* const names[] = {"daemon", "pvmd", "interface"};
    for (int i = 0; i < 3; ++i) {
      std::printf("; %s %.0f KB %d descriptors", names[i], held[i].kilobytes, held[i].descriptors);
    }
    std::printf("\n");
    std::fflush(stdout);
  }

  /// After the first two minutes nothing has a reason to grow any more.
  static bool grown(const Held (&first)[3], const Held (&now)[3]) {
    bool any = false;
    for (int i = 0; i < 3; ++i) {
      any = any || now[i].kilobytes > first[i].kilobytes + kAllowedGrowth ||
            now[i].descriptors > first[i].descriptors + kAllowedDescriptors;
    }
    return any;
  }

  std::string step(const std::string& label, const std::string& program,
                   const std::string& commands) const {
    std::ofstream(directory_ / (label + ".fake")) << commands;
    return TestDaemon::step(
        label, program,
        argumentsText(argumentText("none", (directory_ / (label + ".run")).string()) +
                      argumentText("-script", (directory_ / (label + ".fake")).string())));
  }

  /// A whole task: a tool, a solver that crashes or ends well, a step that is stopped.
  bool oneRound(bool crash) const {
    const std::string solver = "started\nflood 200 text\nerror a reason\n";
    TestDaemon daemon(TestDaemon::task(
        step("tool", "tool", "text first\nfinished\n") +
        step("solver", "velstraTurbo", solver + (crash ? "die SEGV\n" : "finished well\n")) +
        step("last", "tool", "wait 60\n")));
    if (!daemon.waitStatuses({2, crash ? 4 : 2, 1})) return false;
    PvmPeer::send(daemon.tid(), 10);
    PvmPeer::send(daemon.tid(), 6);
    if (!PvmPeer::receive(daemon.tid(), 6)) return false;
    PvmPeer::send(daemon.tid(), 2, PvmBody().integer(-1));
    if (!PvmPeer::receive(daemon.tid(), 2)) return false;
    PvmPeer::send(daemon.tid(), 3);
    const bool ended = daemon.waitGone();
    while (PvmPeer::receive(daemon.tid(), -1, 0)) {
    }
    return ended;
  }

  double minutes_;
  fs::path directory_;
};

}  // namespace

int main(int argc, char** argv) {
  const double minutes = argc > 1 ? std::atof(argv[1]) : 20;
  return Soak(minutes).run();
}
