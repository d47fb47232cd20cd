#include <map>

#include "launching/TLMappingStrategy.h"
#include "launching/TLaunchFixture.h"
#include "taskengine/TLStatusFile.h"

namespace {

using testing::ElementsAre;

/// Knows the far name of some directories.
class Mapping : public TLMappingStrategy {
 public:
  bool mapPath(const RWCString& path, const RWCString& hostName, RWCString& result) override {
    const auto found = hostName == "far" ? names.find(path) : names.end();
    result = found == names.end() ? path : found->second;
    return found != names.end();
  }
  std::map<RWCString, RWCString> names;
};

class Marine : public TLaunchFixture {
 protected:
  Marine() : task(makeHandle<TLTask>()) {
    usePosix();
    task->localComputationPath = dir.path() + "/";
    task->computationFileName = "hull.sim";
    task->addSubTask(step);
    setMappingStrategy(&mapping);
  }
  ~Marine() override {
    setMappingStrategy(nullptr);
    task->clearSubTasks();
  }
  std::string at(const char* name) const { return dir.file(name); }

  Handle<TLTask> task;
  Mapping mapping;
};

TEST_F(Marine, SolverRunsInParallelByItsProcesses) {
  step->name = "QUOREL_CFD";
  step->executable = "quorelcfd.exe";
  step->loadBalancing.mpiType = 1;
  arguments({{"none", at("hull.sim")}, {"-np", "4"}});
  dir.write("machines.txt", "a\r\nb");
  EXPECT_EQ(launching().startMarineStep(*step), 0);
  EXPECT_EQ(started(), "quorelcfd_parallel on here:|" + at("hull.sim") + "|-np|4|-parendId|99|" +
                           "-machinefile|" + at("machines.txt") +
                           "|-display|TL_NO_DISPLAY|-intelmpi|");
  EXPECT_EQ(dir.read("machines.txt"), "a\nb\n");
  EXPECT_EQ(readStatusEntry("quorelcfd", "STATUS", at("hull.sim"), false), "running");
  EXPECT_EQ(step->status, TLSubTask::Running);
  EXPECT_TRUE(told("task_manager_init_tail {" + at("hull.std") + "}"));
  EXPECT_TRUE(told("after 3000"));
}

TEST_F(Marine, OneProcessEndsAParallelRun) {
  step->name = "QUOREL_CFD";
  step->executable = "quorelcfd";
  step->loadBalancing.parallel = 1;
  step->virtualPartition.setNbTasks(5);
  step->virtualPartition.setActivated(1);
  arguments({{"none", at("hull.sim")}, {"-np", "1"}});
  launching().startMarineStep(*step);
  EXPECT_EQ(started(),
            "quorelcfd on here:|" + at("hull.sim") + "|-parendId|99|-display|TL_NO_DISPLAY");
  EXPECT_EQ(step->loadBalancing.parallel, 0);
  EXPECT_EQ(step->virtualPartition.nbTasks(), 0);
  EXPECT_FALSE(step->virtualPartition.isActivated());
  step->loadBalancing.parallel = 1;
  arguments({{"none", at("hull.sim")}, {"-np", "0"}});
  launching().startMarineStep(*step);
  EXPECT_EQ(step->loadBalancing.parallel, 0);
  EXPECT_EQ(step->arguments.at(1)->type(), "-np");
}

TEST_F(Marine, WindowsHostsKeepTheirNames) {
  step->name = "QUOREL_CFD";
  step->hostName = "win";
  step->executable = "quorelcfd.exe";
  arguments({{"none", "C:\\other.sim"}, {"-np", "2"}});
  launching().startMarineStep(*step);
  EXPECT_EQ(started(), "quorelcfd_parallel.exe on win:|" + at("hull.sim") + "|-np|2|-parendId|99");
  EXPECT_FALSE(dir.has("machines.txt"));
}

TEST_F(Marine, PathsAreThoseOfTheHost) {
  mapping.names = {{dir.path() + "/", "/far/run/"}, {"/elsewhere/hull.sim", "/far/other.sim"}};
  const struct {
    const char* name;
    TPairs arguments;
    const char* expected;
  } cases[] = {
      {"PREMETIS", {{"none", "-sim=x"}}, "-sim=/far/run/hull.sim|-display|-parendId|99|-relative|"},
      {"BRAMOSH2QUOREL", {{"none", "-p=x"}}, "-p=/far/run|-display|-parendId|99|-relative|"},
      {"POSTMETIS",
       {{"none", "-sim=/elsewhere/hull.sim"}},
       "-sim=/far/other.sim|-display|-parendId|99|-relative|"},
      {"3dto2d", {{"none", "-sim=x"}}, "-sim=x|-display|-parendId|99|-relative|"},
      {"QUOREL_CFD",
       {{"none", "x"}, {"-machinefile", "y"}},
       "/far/run/hull.sim|-machinefile|/far/run/machines.txt|-display|-parendId|99|-local|"},
  };
  for (const auto& test : cases) {
    SCOPED_TRACE(test.name);
    recordedVirtualMachine().spawns.clear();
    step->name = test.name;
    step->hostName = "far";
    step->executable = "tool.EXE";
    arguments(test.arguments);
    step->arguments.append("-display", "none");
    step->arguments.append("-parendId", "undefined");
    EXPECT_EQ(launching().startMarineStep(*step), 0);
    EXPECT_EQ(started(), std::string("tool on far:|") + test.expected);
  }
}

TEST_F(Marine, LogOfEachKindIsFollowed) {
  const std::pair<const char*, std::string> cases[] = {
      {"PREMETIS", at("premetis.log")},  {"BRAMOSH2QUOREL", at("bramosh2quorel.log")},
      {"3dto2d", at("3dto2d.log")},      {"QUOREL2SORVIT", at("quorel2sorvit.log")},
      {"POSTMETIS", "/b/postmetis.log"}, {"CHECKSTATUS", ""},
  };
  for (const auto& [name, log] : cases) {
    SCOPED_TRACE(name);
    resetRecordedScript();
    step->name = name;
    step->executable = "tool";
    arguments({{"none", "-sim=/b/hull.sim"}});
    launching().startMarineStep(*step);
    EXPECT_EQ(told("task_manager_init_tail {" + log + "}"), !log.empty());
    EXPECT_EQ(told("task_manager_update_tail"), !log.empty());
  }
}

TEST_F(Marine, OnePartNeedsNoPartition) {
  step->name = "PREMETIS";
  arguments({{"none", "-npar=1"}});
  EXPECT_EQ(launching().startMarineStep(*step), 0);
  EXPECT_EQ(step->status, TLSubTask::FinishedOk);
  EXPECT_EQ(started(), "0 starts");
}

TEST_F(Marine, ConversionSetsThePartitionsBack) {
  createStatusFile(at("hull.sim"));
  writeStatusEntry("finished", "postmetis", "STATUS", at("hull.sim"));
  step->name = "BRAMOSH2QUOREL";
  step->executable = "bmh2quorel_no_interactive";
  launching().startMarineStep(*step);
  EXPECT_EQ(readStatusEntry("postmetis", "STATUS", at("hull.sim"), false), "pending");
  task->localComputationPath = dir.path();
  step->executable = "quorelcfd";
  launching().startMarineStep(*step);
  EXPECT_EQ(readStatusEntry("quorelcfd", "STATUS", at("hull.sim"), false), "running");
}

TEST_F(Marine, QueuedStepOnlyCountsAsRunning) {
  step->name = "PREMETIS";
  step->loadBalancing.queuingSystemActivated = 1;
  EXPECT_EQ(launching().startMarineStep(*step), 0);
  EXPECT_EQ(step->status, TLSubTask::Running);
  EXPECT_TRUE(step->children.empty());
  EXPECT_EQ(started(), "0 starts");
}

TEST_F(TLaunchFixture, ProbesToolStaysBesideTheDaemon) {
  usePosix();
  step->name = "PROBES2QVK";
  step->executable = "probes";
  step->hostName = "far";
  arguments({{"-view_log", "a.log"}, {"-view_log", "b.log"}});
  step->children = {7};
  EXPECT_EQ(launching().startProbesTool(*step), 0);
  EXPECT_EQ(started(), "probes on here:|-view_log|a.log|-view_log|b.log");
  EXPECT_EQ(step->children.size(), 1U);
  EXPECT_THAT(recordedScript().lines,
              ElementsAre("after 3000", "update", "task_manager_receive_message start_status_ok",
                          "update", "task_manager_receive_message \"Connect to the log\"",
                          "after 1000", "task_manager_init_tail \"b.log\"", "update",
                          "task_manager_update_tail", "update"));
  recordedVirtualMachine().spawnAnswers.push_back({-6, -6, "bad host name"});
  EXPECT_EQ(launching().startProbesTool(*step), -6);
  EXPECT_EQ(step->status, TLSubTask::FinishedKo);
  EXPECT_TRUE(told("task_manager_receive_message NOT_RUNNING"));
}

}  // namespace
