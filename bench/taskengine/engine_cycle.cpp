// A cycle of a task with one waiting step, which asks for every step before it: against the calls
// of the virtual machine that it cannot do without.
#include <benchmark/benchmark.h>
#include <pvm3.h>

#include <algorithm>
#include <vector>

#include "integration/PvmPeer.h"
#include "integration/VirtualMachine.h"
#include "taskengine/TLTaskChildren.h"

namespace {

constexpr std::int32_t kStrangers[] = {19, 10, 9};

void repeated(benchmark::internal::Benchmark* bench) {
  bench->Arg(10)->Arg(100)->Arg(1000)->UseRealTime()->Unit(benchmark::kMicrosecond);
  bench->Repetitions(9)->ReportAggregatesOnly(true)->ComputeStatistics(
      "min", [](const std::vector<double>& runs) { return *std::ranges::min_element(runs); });
}

std::int32_t livingTask() {
  VirtualMachine::shared();
  PvmPeer::tid();
  static const std::int32_t peer = PvmPeer::spawn(TL_BENCH_PEER);
  return peer;
}

void WaitingCycle_bare(benchmark::State& state) {
  const std::int32_t tid = livingTask();
  for (auto _ : state) {
    for (int step = 0; step < state.range(0); ++step) pvm_pstat(tid);
    for (int step = 0; step < state.range(0); ++step) pvm_nrecv(tid, -1);
    pvm_nrecv(0, -1);
    for (const std::int32_t tag : kStrangers) pvm_nrecv(-1, tag);
  }
}
BENCHMARK(WaitingCycle_bare)->Apply(repeated);

/// The last of the steps before the waiting one has ended, so that all the others are asked.
void WaitingCycle_daemon(benchmark::State& state) {
  const std::int32_t tid = livingTask();
  const auto task = makeHandle<TLTaskChildren>();
  for (int i = 0; i < state.range(0) + 2; ++i) task->addSubTask(makeHandle<TLSubTask>());
  task->start();
  for (int i = 0; i < state.range(0); ++i) {
    task->subTask(i)->status = TLSubTask::Running;
    task->subTask(i)->addChild(tid);
  }
  task->subTask(static_cast<std::int32_t>(state.range(0)))->status = TLSubTask::FinishedOk;
  for (auto _ : state) task->superviseOnce();
  task->clearSubTasks();
}
BENCHMARK(WaitingCycle_daemon)->Apply(repeated);

}  // namespace
