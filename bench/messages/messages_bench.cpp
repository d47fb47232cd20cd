// What the daemon adds to bare PVM: relayed round trips, texts per second, a cycle with nothing to
// do, the start of a step. Each figure stands beside the bare program that does the same.
#include <benchmark/benchmark.h>
#include <pvm3.h>
#include <tcl.h>

#include <stdlib.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <map>
#include <string>
#include <vector>

#include "integration/PvmPeer.h"
#include "integration/TestDaemon.h"
#include "integration/VirtualMachine.h"
#include "launching/TLLaunching.h"
#include "messaging/TLProcessMessage.h"
#include "session/TLScript.h"
#include "session/TLTestSession.h"
#include "taskengine/TLTaskChildren.h"
#include "taskengine/TLTaskGlobals.h"

// Its header would bring the macros of X along.
extern "C" int Tk_Init(Tcl_Interp* interp);

namespace {

constexpr std::int32_t kEcho = 1;
constexpr std::int32_t kFlood = 2;
constexpr std::int32_t kEnd = 3;
using Clock = std::chrono::steady_clock;
constexpr int kTexts = 2000;

// On a machine with other work to do the fastest of several runs is the one that tells; the runs of
// all benches take turns (--benchmark_enable_random_interleaving=true), so that ratios hold.
void repeated(benchmark::internal::Benchmark* bench) {
  bench->Repetitions(9)->ReportAggregatesOnly(true)->ComputeStatistics(
      "min", [](const std::vector<double>& runs) { return *std::ranges::min_element(runs); });
}

// A process of this bench's own, ended with this object.
class Peer {
 public:
  Peer() : tid_(PvmPeer::spawn(TL_BENCH_PEER)) {}
  ~Peer() {
    PvmPeer::send(tid_, kEnd);
    PvmPeer::waitGone(tid_);
  }
  std::int32_t tid() const { return tid_; }

 private:
  std::int32_t tid_;
};

void useMachine() {
  VirtualMachine::shared();
  PvmPeer::tid();
}

Tcl_Interp* useScript() {
  Tcl_Interp* interp = testSession().interp();
  Tcl_Eval(interp, "proc task_manager_receive_message {args} {}");
  return interp;
}

void roundTrips(benchmark::State& state, std::int32_t tid) {
  for (auto _ : state) {
    if (!PvmPeer::send(tid, kEcho) || !PvmPeer::receive(tid, kEcho)) {
      state.SkipWithError("no answer");
      break;
    }
  }
}

void RoundTrip_bare(benchmark::State& state) {
  useMachine();
  const Peer peer;
  roundTrips(state, peer.tid());
}
BENCHMARK(RoundTrip_bare)->UseRealTime()->Apply(repeated);

// The script's timer decides how long a message waits; here it leaves no pause.
void RoundTrip_daemon(benchmark::State& state) {
  TestDaemonOptions options;
  options.script = "proc beat {} { task_update; after 0 beat }";
  const TestDaemon daemon(TestDaemon::task(""), options);
  daemon.poll();  // waits for its start
  roundTrips(state, daemon.tid());
}
BENCHMARK(RoundTrip_daemon)->UseRealTime()->Apply(repeated);

// Receives the texts of one flood by `take`, which answers false after the last.
template <class Take>
void texts(benchmark::State& state, Take take) {
  const Peer peer;
  for (auto _ : state) {
    PvmPeer::send(peer.tid(), kFlood, PvmBody().integer(kTexts));
    while (take(peer.tid())) {
    }
  }
  state.SetItemsProcessed(state.iterations() * kTexts);
}

// The text of a code 7, or none after another code.
bool bareText(std::int32_t from, std::string& text) {
  int buffer = 0;
  while (buffer == 0) buffer = pvm_nrecv(from, -1);
  int bytes = 0;
  int tag = 0;
  int source = 0;
  pvm_bufinfo(buffer, &bytes, &tag, &source);
  if (tag != TL_MSG_TEXT) return false;
  int fields[3] = {};
  pvm_upkint(fields, 3, 1);
  text.resize(static_cast<std::size_t>(fields[2]) + 1);
  pvm_upkstr(text.data());
  text.resize(static_cast<std::size_t>(fields[2]));
  return true;
}

void Texts_bareReceive(benchmark::State& state) {
  useMachine();
  std::string text;
  texts(state, [&](std::int32_t from) { return bareText(from, text); });
}
BENCHMARK(Texts_bareReceive)->UseRealTime()->Unit(benchmark::kMillisecond)->Apply(repeated);

// An interpreter as it comes, with a window.
Tcl_Interp* bareScript() {
  static Tcl_Interp* const interp = [] {
    testSession();  // has started Tcl
    Tcl_Interp* made = Tcl_CreateInterp();
    if (Tcl_Init(made) != TCL_OK || Tk_Init(made) != TCL_OK) std::abort();
    Tcl_Eval(made, "proc task_manager_receive_message {args} {}");
    return made;
  }();
  return interp;
}

void Texts_bareScript(benchmark::State& state) {
  useMachine();
  Tcl_Interp* interp = bareScript();
  std::string text;
  texts(state, [&](std::int32_t from) {
    if (!bareText(from, text)) return false;
    Tcl_Eval(interp, ("task_manager_receive_message \"" + text + "\"").c_str());
    Tcl_Eval(interp, "update");
    return true;
  });
}
BENCHMARK(Texts_bareScript)->UseRealTime()->Unit(benchmark::kMillisecond)->Apply(repeated);

void Texts_daemon(benchmark::State& state) {
  useMachine();
  useScript();
  const auto step = makeHandle<TLSubTask>();
  texts(state, [&](std::int32_t from) {
    gLaunchConfirmed = 0;
    step->pollMessages(from, -1);  // message 4, the last, confirms
    return gLaunchConfirmed == 0;
  });
}
BENCHMARK(Texts_daemon)->UseRealTime()->Unit(benchmark::kMillisecond)->Apply(repeated);

void IdleCycle_bare(benchmark::State& state) {
  useMachine();
  for (auto _ : state) {
    for (int child = 0; child < state.range(0); ++child) pvm_nrecv(0x50000 + child, -1);
    for (const int tag : {19, 10, 9}) pvm_nrecv(-1, tag);  // from strangers
  }
}
BENCHMARK(IdleCycle_bare)->Arg(1)->Arg(100)->Arg(1000)->Apply(repeated);

void IdleCycle_daemon(benchmark::State& state) {
  useMachine();
  const auto task = makeHandle<TLTaskChildren>();
  const auto step = makeHandle<TLSubTask>();
  task->addSubTask(step);
  task->start();
  step->status = TLSubTask::Running;
  for (int child = 0; child < state.range(0); ++child) step->addChild(0x50000 + child);
  for (auto _ : state) task->superviseOnce();
  task->clearSubTasks();
}
BENCHMARK(IdleCycle_daemon)->Arg(1)->Arg(100)->Arg(1000)->Apply(repeated);

void endTask(benchmark::State& state, std::int32_t tid) {
  state.PauseTiming();
  PvmPeer::kill(tid);
  PvmPeer::waitGone(tid);
  state.ResumeTiming();
}

void Spawn_bare(benchmark::State& state) {
  useMachine();
  for (auto _ : state) endTask(state, PvmPeer::spawn(TL_BENCH_PEER));
}
BENCHMARK(Spawn_bare)->UseRealTime()->Unit(benchmark::kMicrosecond)->Apply(repeated);

void Spawn_daemon(benchmark::State& state) {
  useMachine();
  useScript();
  installLaunching();
  const auto step = makeHandle<TLSubTask>();
  step->executable = TL_BENCH_PEER;
  step->hostName = VirtualMachine::shared().hostName();
  for (auto _ : state) {
    if (step->start() != 0 || step->status != TLSubTask::Running) {
      state.SkipWithError("not started");
      break;
    }
    endTask(state, step->child(0));
    step->status = TLSubTask::Pending;
  }
}
BENCHMARK(Spawn_daemon)->UseRealTime()->Unit(benchmark::kMicrosecond)->Apply(repeated);

// From the start of a process to the first message 1 from it: the daemon answers the question that
// waits for it in its first cycle.
void firstAnswer(benchmark::State& state, std::int32_t tid, Clock::time_point begin) {
  if (!PvmPeer::receive(tid, kEcho)) state.SkipWithError("no answer");
  state.SetIterationTime(std::chrono::duration<double>(Clock::now() - begin).count());
}

void Start_bare(benchmark::State& state) {
  useMachine();
  testDisplay();
  setenv("PVM_EXPORT", "DISPLAY", 1);
  for (auto _ : state) {
    const std::int32_t tid = PvmPeer::spawn(TL_BENCH_BARE_SCRIPT);
    firstAnswer(state, tid, Clock::now());
    PvmPeer::waitGone(tid);
  }
}
BENCHMARK(Start_bare)->UseManualTime()->Unit(benchmark::kMillisecond)->Apply(repeated);

void Start_daemon(benchmark::State& state) {
  for (auto _ : state) {
    const TestDaemon daemon(TestDaemon::task(""));
    const auto begin = Clock::now();
    PvmPeer::send(daemon.tid(), kEcho);
    firstAnswer(state, daemon.tid(), begin);
  }
}
BENCHMARK(Start_daemon)->UseManualTime()->Unit(benchmark::kMillisecond)->Apply(repeated);

// Keeps the fastest run of each bench and tells how the daemon's compare with the bare ones.
class RatioReporter : public benchmark::ConsoleReporter {
 public:
  void ReportRuns(const std::vector<Run>& runs) override {
    benchmark::ConsoleReporter::ReportRuns(runs);
    for (const auto& run : runs) {
      if (run.aggregate_name != "min") continue;
      std::string name = run.run_name.function_name;
      if (!run.run_name.args.empty()) name += '/' + run.run_name.args;
      fastest_[name] = run.GetAdjustedRealTime();
    }
  }

  // 0 when each ratio that has a limit keeps it.
  int ratios() const {
    struct Figure {
      const char* daemon;
      const char* bare;
      double limit;  // 0: told only
    };
    constexpr Figure kFigures[] = {
        {"RoundTrip_daemon", "RoundTrip_bare", 0},
        {"Texts_daemon", "Texts_bareScript", 1 / 0.85},
        {"Texts_daemon", "Texts_bareReceive", 0},
        {"IdleCycle_daemon/1", "IdleCycle_bare/1", 0},
        {"IdleCycle_daemon/100", "IdleCycle_bare/100", 1.3},
        {"IdleCycle_daemon/1000", "IdleCycle_bare/1000", 1.3},
        {"Spawn_daemon", "Spawn_bare", 1.2},
        {"Start_daemon", "Start_bare", 0},
    };
    int missed = 0;
    for (const auto& [daemon, bare, limit] : kFigures) {
      if (!fastest_.contains(daemon) || !fastest_.contains(bare)) continue;
      const double ratio = fastest_.at(daemon) / fastest_.at(bare);
      const bool holds = limit == 0 || ratio <= limit;
      std::printf("%-22s takes %6.2f times %s%s\n", daemon, ratio, bare,
                  limit == 0 ? ""
                  : holds    ? ": holds"
                             : ": TOO MUCH");
      if (!holds) ++missed;
    }
    return missed == 0 ? 0 : 1;
  }

 private:
  std::map<std::string, double> fastest_;
};

}  // namespace

int main(int argc, char** argv) {
  std::vector<char*> words(argv, argv + argc);
  std::string turns = "--benchmark_enable_random_interleaving=true";
  std::string time = "--benchmark_min_time=0.05";
  words.insert(words.begin() + 1, {turns.data(), time.data()});
  int count = static_cast<int>(words.size());
  benchmark::Initialize(&count, words.data());
  RatioReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  return reporter.ratios();
}
