#include "session/TLPollNotifier.h"

#include <gmock/gmock.h>
#include <tcl.h>
#include <time.h>
#include <unistd.h>

#include <chrono>
#include <thread>

#include "session/TCLInterp.h"

namespace {

using Clock = std::chrono::steady_clock;

class PollNotifier : public testing::Test {
 protected:
  std::string eval(const char* script) {
    Tcl_Eval(interp.get(), script);
    return Tcl_GetStringResult(interp.get());
  }
  TCLInterp interp;
};

double processorSeconds() {
  timespec time = {};
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
  return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
}

TEST_F(PollNotifier, TimersAndChannelsAreServed) {
  EXPECT_EQ(eval("set log {}; after 20 {lappend log c; set done 1}; after 5 {lappend log b};"
                 "after idle {lappend log a}; vwait done; set log"),
            "a b c");
  EXPECT_EQ(
      eval("set log {}; set p [open {|sh -c {echo one; sleep 0.05; echo two}}];"
           "fconfigure $p -blocking 0;"
           "fileevent $p readable {if {[gets $p line] >= 0} {lappend log $line} elseif {[eof $p]}"
           " {close $p; set done 1}}; vwait done; set log"),
      "one two");
}

// Handlers that take themselves or each other out while both are ready.
struct Pair {
  int ends[2][2];
  int calls = 0;
};

void takeBothOut(ClientData data, int /*mask*/) {
  auto* pair = static_cast<Pair*>(data);
  ++pair->calls;
  for (auto& end : pair->ends) Tcl_DeleteFileHandler(end[0]);
}

TEST_F(PollNotifier, HandlersMayRemoveOthersThatAreReady) {
  Pair pair;
  for (auto& end : pair.ends) {
    ASSERT_EQ(pipe(end), 0);
    ASSERT_EQ(write(end[1], "x", 1), 1);
    Tcl_CreateFileHandler(end[0], TCL_READABLE, takeBothOut, &pair);
  }
  while (Tcl_DoOneEvent(TCL_ALL_EVENTS | TCL_DONT_WAIT) != 0) {
  }
  EXPECT_EQ(pair.calls, 1);
  for (auto& end : pair.ends) {
    close(end[0]);
    close(end[1]);
  }
}

TEST_F(PollNotifier, DescriptorsClosedBehindItsBackDontKeepItBusy) {
  int ends[2];
  ASSERT_EQ(pipe(ends), 0);
  Pair pair;
  Tcl_CreateFileHandler(ends[0], TCL_READABLE, takeBothOut, &pair);
  close(ends[0]);
  close(ends[1]);
  const double before = processorSeconds();
  eval("after 300 {set done 3}; vwait done");
  EXPECT_LT(processorSeconds() - before, 0.1);
  EXPECT_EQ(pair.calls, 0);
  Tcl_DeleteFileHandler(ends[0]);
}

TEST_F(PollNotifier, AnotherThreadEndsTheWait) {
  const Tcl_ThreadId waiting = Tcl_GetCurrentThread();
  bool served = false;
  struct Event {
    Tcl_Event header;
    bool* served;
  };
  std::thread other([&] {
    auto* event = reinterpret_cast<Event*>(Tcl_Alloc(sizeof(Event)));
    event->header.proc = [](Tcl_Event* e, int) {
      *reinterpret_cast<Event*>(e)->served = true;
      return 1;
    };
    event->served = &served;
    Tcl_ThreadQueueEvent(waiting, &event->header, TCL_QUEUE_TAIL);
    Tcl_ThreadAlert(waiting);
  });
  const auto begin = Clock::now();
  eval("after 20000 {set late 1}");
  while (!served && Clock::now() - begin < std::chrono::seconds(20)) {
    Tcl_DoOneEvent(TCL_ALL_EVENTS);
  }
  other.join();
  EXPECT_TRUE(served);
}

}  // namespace
