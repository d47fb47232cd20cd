#include <benchmark/benchmark.h>
#include <sys/resource.h>

#include <sstream>

#include "project/TLProject.h"
#include "support/Definitions.h"
#include "support/RunFileGenerator.h"

// Reading and writing a large run file, beside a plain loop of getline over the same
// text. Figures: the text's bytes per second, the process's peak memory as a multiple of the text
// (which the benchmark itself holds once more than a reader needs).

namespace {

const std::string& runText(bool unstructured) {
  static std::string texts[2];
  std::string& text = texts[unstructured ? 1 : 0];
  if (!text.empty()) return text;
  RunFileOptions options;
  options.blocks = unstructured ? std::array<int, 3>{10, 10, 20} : std::array<int, 3>{25, 20, 20};
  options.patchesPerFace = unstructured ? 1 : 5;
  options.unstructured = unstructured;
  options.furtherParameters = 240;
  text = RunFileGenerator(options).runFile();
  return text;
}

Handle<TLProject> newProject() {
  auto project = makeHandle<TLProject>();
  project->usesDefinitions = false;
  return project;
}

void report(benchmark::State& state, const std::string& text) {
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * text.size()));
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  state.counters["peak/size"] =
      static_cast<double>(usage.ru_maxrss) * 1024.0 / static_cast<double>(text.size());
}

void getlineLoop(benchmark::State& state, bool unstructured) {
  const auto& text = runText(unstructured);
  for (auto _ : state) {
    std::istringstream in(text);
    std::string line;
    std::size_t bytes = 0;
    while (std::getline(in, line)) bytes += line.size();
    benchmark::DoNotOptimize(bytes);
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * text.size()));
}

void readRunFile(benchmark::State& state, bool unstructured) {
  const auto& text = runText(unstructured);
  for (auto _ : state) {
    state.PauseTiming();
    TLTextSource source(text);
    auto project = newProject();
    state.ResumeTiming();
    if (project->read(source) != 1) state.SkipWithError("the run file was refused");
    state.PauseTiming();
    project.reset();
    state.ResumeTiming();
  }
  report(state, text);
}

void writeRunFile(benchmark::State& state, bool unstructured) {
  const auto& text = runText(unstructured);
  auto project = newProject();
  {
    TLTextSource source(text);
    project->read(source);
  }
  for (auto _ : state) {
    TLTextSink sink;
    project->write(sink);
    benchmark::DoNotOptimize(sink.text().data());
  }
  report(state, text);
}

BENCHMARK_CAPTURE(getlineLoop, structured, false)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(readRunFile, structured, false)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(writeRunFile, structured, false)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(getlineLoop, unstructured, true)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(readRunFile, unstructured, true)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(writeRunFile, unstructured, true)->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char** argv) {
  const Definitions definitions;
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  return 0;
}
