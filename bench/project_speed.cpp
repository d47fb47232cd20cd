#include <fmt/format.h>
#include <sys/resource.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include "Timing.h"
#include "platform/TLConsole.h"
#include "project/TLProject.h"
#include "support/Definitions.h"
#include "support/RunFileGenerator.h"

// Reading and writing a whole run file of some 100 MB, structured and unstructured, against a plain
// loop over its lines. Prints one line a figure: what, measured, wanted, whether it holds. The exit
// status tells whether all hold.

namespace {

double peakMegabytes() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  return static_cast<double>(usage.ru_maxrss) / 1024.0;
}

bool report(const char* what, double measured, const char* unit, bool atLeast, double wanted) {
  const bool holds = atLeast ? measured >= wanted : measured <= wanted;
  fmt::print("{:<28} {:>9.1f} {:<5} wanted {} {:>6.0f}  {}\n", what, measured, unit,
             atLeast ? ">=" : "<=", wanted, holds ? "ok" : "MISSED");
  return holds;
}

std::size_t countLines(const std::string& file) {
  std::ifstream stream(file);
  std::string line;
  std::size_t bytes = 0;
  while (std::getline(stream, line)) bytes += line.size();
  return bytes;
}

bool measure(const std::string& name, const RunFileOptions& options, const TTempDir& dir) {
  const std::string file = dir.file(name + ".run");
  {
    std::ofstream out(file, std::ios::binary);
    out << RunFileGenerator(options).runFile();
  }
  const double megabytes = static_cast<double>(std::filesystem::file_size(file)) / 1e6;
  fmt::print("{}: {:.1f} MB\n", name, megabytes);
  std::ostringstream unheard;
  TLConsoleRedirect redirect(unheard);
  const double getline = bestOf(3, [&] { countLines(file); });
  const double read = bestOf(3, [&] {
    if (makeHandle<TLProject>()->read(file) != 1) std::exit(2);
  });
  auto project = makeHandle<TLProject>();
  project->read(file);
  const double write = bestOf(3, [&] {
    TLTextSink sink;
    project->write(sink);
  });
  bool good = report("  read", megabytes / read, "MB/s", true, 200);
  good &= report("  read / getline time", read / getline, "", false, 12);
  good &= report("  write", megabytes / write, "MB/s", true, 250);
  return good;
}

// Peak memory of a read in a process of its own: the parent's would count what it generated.
bool measureMemory(const std::string& file) {
  const double megabytes = static_cast<double>(std::filesystem::file_size(file)) / 1e6;
  std::ostringstream unheard;
  TLConsoleRedirect redirect(unheard);
  TLProject project;
  if (project.read(RWCString(file)) != 1) return false;
  return report("  peak memory / file size", peakMegabytes() * 1.048576 / megabytes, "", false, 6);
}

}  // namespace

int main(int argc, char** argv) {
  const Definitions definitions;
  if (argc == 2) return measureMemory(argv[1]) ? 0 : 1;
  const TTempDir dir;
  RunFileOptions structured;
  structured.blocks = {25, 20, 20};
  structured.patchesPerFace = 5;
  RunFileOptions unstructured;
  unstructured.blocks = {20, 20, 15};
  unstructured.unstructured = true;
  unstructured.furtherParameters = 20;
  bool good = true;
  const std::pair<const char*, RunFileOptions> cases[] = {{"structured", structured},
                                                          {"unstructured", unstructured}};
  for (const auto& [name, options] : cases) {
    good &= measure(name, options, dir);
    std::fflush(stdout);
    good &= std::system(
                (std::string(argv[0]) + ' ' + dir.file(name + std::string(".run"))).c_str()) == 0;
  }
  return good ? 0 : 1;
}
