// What the processes of real launches are given, against the dry run of the same task.
#include "integration/EngineDaemon.h"
#include "launching/TLLaunchPlan.h"
#include "launching/TLLaunching.h"
#include "launching/TLRemPathMapping.h"
#include "taskengine/TLTask.h"

namespace {

struct Launched {
  const char* label;
  const char* name;
  const char* executable;
  std::string arguments;  ///< blocks of further arguments
  std::string lines;      ///< further lines of the step
  const char* runFile;    ///< text of the run file, null for none
  const char* program;    ///< the name under which it must be started
};
std::ostream& operator<<(std::ostream& out, const Launched& launched) {
  return out << launched.label;
}

class LaunchWords : public EngineDaemon, public testing::WithParamInterface<Launched> {
 protected:
  /// A program that writes down its words, each followed by a line of its own.
  void addRecorder(const std::string& name) {
    put(name, "#!/bin/sh\nfor word; do printf '%s\\n--\\n' \"$word\"; done > '" +
                  file("words.tmp") + "'\nmv '" + file("words.tmp") + "' '" +
                  file("words." + name) + "'\n");
    std::filesystem::permissions(file(name), std::filesystem::perms::owner_all);
    VirtualMachine::shared().addProgram(name, file(name));
  }
  std::string step(const Launched& launched, const std::string& run) const {
    std::string lines = launched.lines;
    const auto host = lines.find("@HOST@");
    if (host != std::string::npos) lines.replace(host, 6, VirtualMachine::shared().hostName());
    return TestDaemon::step(launched.name, launched.executable,
                            lines + argumentsText(argumentText("none", run) + launched.arguments));
  }
  static std::string recorded(const TLLaunchPlan& plan) {
    std::string text;
    for (const auto& word : plan.words) text += word + "\n--\n";
    return text;
  }
};

std::string parallelBlock(const std::string& more = {}) {
  return "  TL_BEGIN load_balancing\n    PARALLEL 1\n    PROCESS_NAME 2 a b\n" + more +
         "  TL_END load_balancing\n";
}

TEST_P(LaunchWords, AreThoseOfTheDryRun) {
  const Launched& launched = GetParam();
  addRecorder(launched.program);
  const std::string run = file("a b$HOME`id`\"'\\\xc3\xa9;|.run");
  if (launched.runFile != nullptr) {
    put(std::filesystem::path(run).filename().string(), launched.runFile);
  }
  const std::string text = TestDaemon::task(step(launched, run));
  put("plan.tsk", text);
  auto task = makeHandle<TLTask>();
  ASSERT_EQ(task->readFile(file("plan.tsk")), 1);
  TestDaemon daemon(text);
  ASSERT_TRUE(waitFile(std::string("words.") + launched.program));

  TLLaunchSite site = launchSite();
  site.tid = std::to_string(daemon.tid());
  TLRemPathMapping mapping("remote paths.txt", false);
  const TLLaunchPlan plan = planLaunch(
      *task->subTasks.at(0), [](const RWCString&) { return false; }, site, &readRunFileFacts,
      mapping);
  task->clearSubTasks();
  EXPECT_EQ(plan.program, launched.program);
  EXPECT_EQ(contentsOf(file(std::string("words.") + launched.program)), recorded(plan));
  EXPECT_NE(recorded(plan).find(run), std::string::npos);
}

constexpr const char* kStructured = "TALVEN_PROJECT_FILE   VERSION 1210\nPROJECT_TYPE STRUCTURED\n";
constexpr const char* kUnstructured =
    "TALVEN_PROJECT_FILE   VERSION 1210\nPROJECT_TYPE HEXA\nSOLVER_PRECISION double\n";

INSTANTIATE_TEST_SUITE_P(
    Steps, LaunchWords,
    testing::Values(
        Launched{"parallelSolver", "VELSTRA", "velstraTurbo",
                 argumentText("-steering", "/x y/a.steering"), parallelBlock("    MPI_TYPE 1\n"),
                 kStructured, "velstraTurbo_parallel"},
        Launched{"parallelUnstructured", "LUMBRAKE", "lumbrakesp",
                 argumentText("-empty", "undefined"),
                 "  TL_BEGIN load_balancing\n    PARALLEL 1\n    PROCESS_NAME 1 @HOST@\n"
                 "  TL_END load_balancing\n",
                 kUnstructured, "lumbrakedp_parallel"},
        Launched{"postProcessor", "POST", "sorvit", argumentText("-macro", "$(id) `id` ; \"x\""),
                 "", nullptr, "sorvit"}),
    [](const auto& info) { return std::string(info.param.label); });

}  // namespace
