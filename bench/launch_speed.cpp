#include <fmt/format.h>

#include <algorithm>
#include <cstdlib>
#include <sstream>

#include "Timing.h"
#include "launching/TLLaunchPlan.h"
#include "launching/TLLaunching.h"
#include "launching/TLRemPathMapping.h"
#include "launching/TLRunFile.h"
#include "platform/TLConsole.h"
#include "project/TLProject.h"
#include "support/Definitions.h"
#include "support/RunFileGenerator.h"
#include "taskengine/TLTask.h"

// What a launch adds to its files: the run file of some 20 MB read and written three times, against
// one reading and one writing; and the dry run of a task of 500 steps. The exit status tells
// whether both figures hold.

namespace {

constexpr int kSteps = 500;

bool report(const char* what, double measured, double wanted) {
  fmt::print("{:<34} {:>8.2f}  wanted <= {:>5.2f}  {}\n", what, measured, wanted,
             measured <= wanted ? "ok" : "MISSED");
  return measured <= wanted;
}

void onceReadOnceWritten(const RWCString& path) {
  TLProject project;
  if (project.read(path) != 1 || project.write(path) != 1) std::exit(2);
}

void asALaunchDoes(const RWCString& path, std::int32_t processes) {
  const auto file = makeRunFile();
  if (!file->read(path, false).good) std::exit(2);
  file->write();
  file->setTaskCount(processes);
  file->setCommunication(2);
  file->setProcesses([processes](std::int32_t block) { return block % processes + 1; });
  file->write();
  file->setMemory(1000000 + processes, 2000000);
  file->storeSteering(nullptr);
  file->write();
}

bool measureRunFile(const TTempDir& dir) {
  RunFileOptions options;
  options.blocks = {20, 16, 16};
  options.solverParameters = "VELSTRA,L,1,0, 2\nNTASK,I,1,1,0\n 9\nICOMP,I,1,1,0\n 7\n";
  const std::string text = RunFileGenerator(options).runFile();
  const std::string path = dir.write("big.run", text);
  fmt::print("run file of {:.1f} MB\n", static_cast<double>(text.size()) / 1e6);
  const double plain = bestOf(3, [&] { onceReadOnceWritten(path); });
  std::int32_t processes = 2;  // another number each time, so that everything changes
  const double launch = bestOf(3, [&] { asALaunchDoes(path, ++processes); });
  return report("  launch / one read and one write", launch / plain, 2.0);
}

bool measurePlan() {
  auto task = makeHandle<TLTask>();
  for (int i = 0; i < kSteps; ++i) {
    auto step = makeHandle<TLSubTask>();
    step->name = "VELSTRA";
    step->executable = "velstraTurbo";
    for (int word = 0; word < 20; ++word) step->arguments.append("-option", "value");
    task->addSubTask(step);
  }
  const TLLaunchSite site = launchSite();
  TLRemPathMapping mapping("remote paths.txt", false);
  const TLHostKindTest isWin32 = [](const RWCString&) { return false; };
  const double seconds = secondsOf([&] {
    for (const auto& step : task->subTasks) {
      planLaunch(*step, isWin32, site, &readRunFileFacts, mapping);
    }
  });
  task->clearSubTasks();
  return report("  dry run of 500 steps, seconds", seconds, 1.0);
}

}  // namespace

int main() {
  const TTempDir dir;
  const Definitions definitions;
  std::ostringstream unheard;
  const TLConsoleRedirect redirect(unheard);
  const bool runFile = measureRunFile(dir);
  const bool plan = measurePlan();
  return runFile && plan ? 0 : 1;
}
