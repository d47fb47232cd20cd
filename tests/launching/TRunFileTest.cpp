#include "launching/TLRunFile.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>
#include <regex>
#include <set>
#include <sstream>

#include "doubles/TLScriptRecording.h"
#include "doubles/TLVirtualMachineRecording.h"
#include "launching/TLLaunching.h"
#include "launching/TLRunFileLaunch.h"
#include "platform/TLConsole.h"
#include "platform/TTempDir.h"
#include "support/Definitions.h"
#include "support/RunFileGenerator.h"
#include "taskengine/TLSubTask.h"

namespace {

using testing::HasSubstr;

/// The words behind each line that holds `key`.
std::vector<std::string> valuesOf(const std::string& text, const std::string& key) {
  std::vector<std::string> values;
  const std::regex line("(^|\\n)[ \\t]*" + key + "[ \\t\\n]+([^\\n]*)");
  for (std::sregex_iterator i(text.begin(), text.end(), line); i != std::sregex_iterator(); ++i) {
    values.push_back((*i)[2]);
  }
  return values;
}

/// A step of the structured solver on this host with a real run file of eight blocks.
class RunFiles : public testing::Test {
 protected:
  RunFiles() {
    resetRecordedScript();
    resetRecordedVirtualMachine();
    recordedVirtualMachine().hosts = {{1, "here", "LINUX64", 1000, 1}};
    recordedVirtualMachine().ownHost = "here";
    step->name = "VELSTRA";
    step->hostName = "here";
    step->executable = "velstraTurbo";
    step->loadBalancing.processNames = {"here", "far", "far"};
    step->loadBalancing.blockProcess = {0, 1, 2, 1};
    step->integerSize = 111;
    step->realSize = 222;
  }

  void launch(const std::string& text) {
    dir.write("a.run", text);
    step->arguments.clear();
    step->arguments.append("none", dir.file("a.run"));
    EXPECT_EQ(launching().startStep(*step), 0);
  }

  static std::string runFile() {
    RunFileOptions options;
    options.computationLines = "    USER_SOLVER_PRECISION            1\n";
    options.solverParameters = "VELSTRA,L,1,0, 2\nNTASK,I,1,1,0\n 9\nICOMP,I,1,1,0\n 7\n";
    return RunFileGenerator(options).runFile();
  }

  const Definitions definitions;
  TTempDir dir;
  Handle<TLSubTask> step = makeHandle<TLSubTask>();
};

TEST_F(RunFiles, HoldTheDistributionAfterALaunch) {
  step->loadBalancing.parallel = 1;
  launch(runFile());
  const std::string text = dir.read("a.run");
  EXPECT_THAT(valuesOf(text, "NTASK,I,1,1,0"), testing::ElementsAre(HasSubstr("3")));
  EXPECT_THAT(valuesOf(text, "ICOMP,I,1,1,0"), testing::ElementsAre(HasSubstr("2")));
  EXPECT_THAT(valuesOf(text, "PROCESS_ID"),
              testing::ElementsAre("1", "2", "3", "2", "1", "1", "1", "1"));
  EXPECT_THAT(valuesOf(text, "MEMORY_ESTIMATION_INTEGER"), testing::ElementsAre("111"));
  EXPECT_THAT(valuesOf(text, "MEMORY_ESTIMATION_REAL"), testing::ElementsAre("222"));
  EXPECT_EQ(recordedVirtualMachine().spawns.at(0).executable, "velstraTurbodp_parallel");
  EXPECT_EQ(dir.count(), 1);
}

TEST_F(RunFiles, AreBalancedForTheQueue) {
  step->loadBalancing.parallel = 1;
  step->loadBalancing.queuingSystemActivated = 1;
  step->loadBalancing.nbQueuingSystemProcessor = 4;
  step->arguments.append("none", dir.write("a.run", runFile()));
  step->isWin32Host = 0;
  TLLaunchDraft draft = draftOf(*step);
  std::ostringstream trace;
  const TLConsoleRedirect redirect(trace);
  launchWithRunFile(*step, draft, launchSite());
  const std::string text = dir.read("a.run");
  EXPECT_THAT(valuesOf(text, "NTASK,I,1,1,0"), testing::ElementsAre(HasSubstr("4")));
  const auto processes = valuesOf(text, "PROCESS_ID");
  EXPECT_EQ(std::set<std::string>(processes.begin(), processes.end()),
            (std::set<std::string>{"1", "2", "3", "4"}));
  EXPECT_EQ(draft.arguments.count(), 1) << "no machines for a job";
}

TEST_F(RunFiles, SequentialRunsKeepTheirBlocks) {
  launch(runFile());
  const std::string text = dir.read("a.run");
  EXPECT_THAT(valuesOf(text, "NTASK,I,1,1,0"), testing::ElementsAre(HasSubstr("3")));
  EXPECT_THAT(valuesOf(text, "ICOMP,I,1,1,0"), testing::ElementsAre(HasSubstr("0")));
  EXPECT_THAT(valuesOf(text, "PROCESS_ID"), testing::Not(testing::Contains("2")));
  EXPECT_THAT(valuesOf(text, "MEMORY_ESTIMATION_REAL"), testing::Not(testing::Contains("222")));
}

TEST_F(RunFiles, OfUnstructuredProjectsStayAsTheyAre) {
  step->name = "LUMBRAKE";
  step->executable = "lumbrakesp";
  RunFileOptions options;
  options.unstructured = true;
  const std::string text = RunFileGenerator(options).runFile();
  launch(text);
  EXPECT_EQ(dir.read("a.run"), text);
  EXPECT_THAT(recordedVirtualMachine().spawns.at(0).executable, testing::StartsWith("lumbrake"));
}

TEST_F(RunFiles, ThatAreNoneAreKeptBeside) {
  dir.write("a.run.unreadable", "other");
  launch("not a run file\n");
  EXPECT_EQ(dir.read("a.run.unreadable"), "other");
  EXPECT_EQ(dir.read("a.run.unreadable2"), "not a run file\n");
  EXPECT_THAT(dir.read("a.run"), testing::StartsWith("TALVEN_PROJECT_FILE   VERSION 1210\n"));
  EXPECT_THAT(recordedScript().lines,
              testing::Contains("task_manager_receive_message CANNOT_OPEN_RUN_FILE"));
}

/// A console that puts the solver's definition in its place as soon as it is waited for.
class WaitingConsole : public std::stringbuf {
 public:
  WaitingConsole(std::string path, std::string text)
      : path_(std::move(path)), text_(std::move(text)) {}

 protected:
  int sync() override {
    if (str().find("Waiting for ") != std::string::npos) std::ofstream(path_) << text_;
    return 0;
  }

 private:
  std::string path_;
  std::string text_;
};

TEST_F(RunFiles, WaitForTheDefinitionsOfTheSolver) {
  const std::string path = definitions.directory() + "/velstra.def";
  const std::string text = contentsOf(path);
  std::filesystem::remove(path);
  WaitingConsole waiting(path, text);
  std::ostream stream(&waiting);
  const TLConsoleRedirect redirect(stream);
  launch(runFile());
  EXPECT_THAT(recordedScript().lines, testing::Contains(HasSubstr("The launch waits for")));
  EXPECT_EQ(recordedVirtualMachine().spawns.at(0).executable, "velstraTurbodp");
  EXPECT_EQ(valuesOf(dir.read("a.run"), "NTASK,I,1,1,0"), std::vector<std::string>{"3"});
}

}  // namespace
