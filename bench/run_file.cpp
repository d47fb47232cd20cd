#include <benchmark/benchmark.h>
#include <sys/resource.h>

#include <sstream>

#include "project/TLGrid.h"
#include "project/TLProjectType.h"
#include "support/RunFileGenerator.h"

// Reading and writing the mesh of a large run file, beside a plain loop of getline over the same
// text. Figures: MB/s, the ratio of getline's time to the reader's, the process's peak memory as a
// multiple of the text (which the benchmark itself holds once more than a reader needs).

namespace {

const std::string& meshText(bool unstructured) {
  static std::string texts[2];
  std::string& text = texts[unstructured ? 1 : 0];
  if (!text.empty()) return text;
  RunFileOptions options;
  options.blocks = unstructured ? std::array<int, 3>{10, 10, 20} : std::array<int, 3>{25, 20, 20};
  options.patchesPerFace = unstructured ? 1 : 5;
  options.unstructured = unstructured;
  options.furtherParameters = 240;
  text = RunFileGenerator(options).grid();
  return text;
}

std::int32_t typeOf(bool unstructured) {
  return unstructured ? TLProjectType::hexa : TLProjectType::structured;
}

void report(benchmark::State& state, const std::string& text) {
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * text.size()));
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  state.counters["peak/size"] =
      static_cast<double>(usage.ru_maxrss) * 1024.0 / static_cast<double>(text.size());
}

void getlineLoop(benchmark::State& state, bool unstructured) {
  const auto& text = meshText(unstructured);
  for (auto _ : state) {
    std::istringstream in(text);
    std::string line;
    std::size_t bytes = 0;
    while (std::getline(in, line)) bytes += line.size();
    benchmark::DoNotOptimize(bytes);
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * text.size()));
}

void readMesh(benchmark::State& state, bool unstructured) {
  const auto& text = meshText(unstructured);
  for (auto _ : state) {
    state.PauseTiming();
    TLTextSource source(text);
    auto grid = makeHandle<TLGrid>(typeOf(unstructured));
    state.ResumeTiming();
    if (grid->read(source) == 0) state.SkipWithError("the mesh was refused");
    state.PauseTiming();
    grid.reset();
    state.ResumeTiming();
  }
  report(state, text);
}

void writeMesh(benchmark::State& state, bool unstructured) {
  const auto& text = meshText(unstructured);
  TLTextSource source(text);
  TLGrid grid(typeOf(unstructured));
  grid.read(source);
  for (auto _ : state) {
    TLTextSink sink;
    grid.write(sink);
    if (sink.text() != text) state.SkipWithError("the mesh was written otherwise than read");
  }
  report(state, text);
}

BENCHMARK_CAPTURE(getlineLoop, structured, false)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(readMesh, structured, false)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(writeMesh, structured, false)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(getlineLoop, unstructured, true)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(readMesh, unstructured, true)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(writeMesh, unstructured, true)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
