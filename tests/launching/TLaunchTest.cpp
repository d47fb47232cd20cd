#include "launching/TLaunchFixture.h"

#include <functional>
#include <sstream>

#include "launching/TLLaunchPlan.h"
#include "launching/TLRunFileLaunch.h"
#include "platform/TLConsole.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;

/// One launch: how the step differs from a plain one, and what must be started.
struct Launch {
  const char* what;
  const char* executable;
  TPairs arguments;
  std::function<void(TLSubTask&)> change;
  const char* expected;
};

void parallel(TLSubTask& step) {
  step.loadBalancing.parallel = 1;
  step.loadBalancing.processNames = {"here", "far"};
}

class Launches : public TLaunchFixture {
 protected:
  void check(const Launch& launch) {
    SCOPED_TRACE(launch.what);
    auto& vm = recordedVirtualMachine();
    vm.spawns.clear();
    runFileDouble().facts = {true, 0, "single", true, 0};
    step = makeHandle<TLSubTask>();
    step->name = "VELSTRA";
    step->hostName = "here";
    step->executable = launch.executable;
    arguments(launch.arguments);
    launch.change(*step);
    const TLLaunchPlan plan =
        planLaunch(*step, &hostIsWin32, launchSite(), &readRunFileFacts, gMappingStrategy());
    EXPECT_EQ(launching().startStep(*step), 0);
    EXPECT_EQ(started(), launch.expected);
    EXPECT_EQ(plan.program + " on " + plan.host, recordedSpawn());
    EXPECT_EQ(plan.words, recordedVirtualMachine().spawns.at(0).words);
    EXPECT_EQ(step->status, TLSubTask::Running);
    EXPECT_EQ(step->children.size(), 1U);
  }
  static std::string recordedSpawn() {
    const auto& spawn = recordedVirtualMachine().spawns.at(0);
    return spawn.executable + " on " + spawn.host;
  }
  void check(const std::vector<Launch>& launches) {
    for (const auto& launch : launches) check(launch);
  }
};

const TPairs kPlain = {{"none", "/p/a.run"}};
const TPairs kRun = {{"none", "/p/a.run"}, {"-steering", "/p/a.steering"}};

TEST_F(Launches, OfSolversOnUnixHosts) {
  usePosix();
  check({
      {"sequential", "velstra", kRun, [](TLSubTask&) {},
       "velstraTurbo on "
       "here:|/p/a.run|-steering|/p/a.steering|-parendId|99|-display|TL_NO_DISPLAY"},
      {"double precision by the run file", "velstraTurbo", kRun,
       [](TLSubTask&) { runFileDouble().facts.userSolverPrecision = 1; },
       "velstraTurbodp on here:|/p/a.run|-steering|/p/a.steering|-parendId|99|-display|"
       "TL_NO_DISPLAY"},
      {"with a display and a parent",
       "velstraTurbo",
       {{"none", "/p/a.run"}, {"-display", ":0"}, {"-parendId", "x"}, {"-parendId", "y"}},
       [](TLSubTask&) {},
       "velstraTurbo on here:|/p/a.run|-display|:0|-parendId|99|-parendId|99"},
      {"parallel", "velstraTurbo_par", kRun, &parallel,
       "velstraTurbo_parallel on here:|-mapall|-machinefile|/p/a.machines|/p/a.run|-steering|"
       "/p/a.steering|-parendId|99|-p4pg|/p/a.p4pg|-display|TL_NO_DISPLAY"},
      {"parallel, Intel MPI, without steering", "velstraTurbo", kPlain,
       [](TLSubTask& step) {
         parallel(step);
         step.loadBalancing.mpiType = 1;
         runFileDouble().facts.userSolverPrecision = 1;
       },
       "velstraTurbodp_parallel on here:|-mapall|-machinefile|unknown|/p/a.run|-intelmpi||"
       "-parendId|99|-p4pg|/p/a.p4pg|-display|TL_NO_DISPLAY"},
      {"the mark of another MPI family is taken away",
       "velstraTurbo",
       {{"none", "/p/a.run"}, {"-intelmpi", ""}, {"-p4pg", "mine"}},
       &parallel,
       "velstraTurbo_parallel on here:|-mapall|-machinefile|unknown|/p/a.run|-p4pg|mine|"
       "-parendId|99|-display|TL_NO_DISPLAY"},
      {"of another precision keeps its name", "velstra", kPlain,
       [](TLSubTask& step) {
         parallel(step);
         runFileDouble().facts.userSolverPrecision = 2;
       },
       "velstra on here:|-mapall|-machinefile|unknown|/p/a.run|-parendId|99|-p4pg|/p/a.p4pg|"
       "-display|TL_NO_DISPLAY"},
      {"SGI MPI", "velstraTurbo", kPlain,
       [](TLSubTask& step) {
         parallel(step);
         step.loadBalancing.mpiSgi664 = 1;
       },
       "velstraTurbo_parallel_MPISGI664 on here:|-mapall|-machinefile|unknown|/p/a.run|-parendId|"
       "99|-np|3|-display|TL_NO_DISPLAY"},
      {"unstructured, sequential", "lumbrakesp", kPlain,
       [](TLSubTask& step) {
         step.name = "LUMBRAKE";
         runFileDouble().facts = {true, 2, "hybrid", true, 0};
       },
       "lumbrakehp on here:|/p/a.run|-parendId|99|-display|TL_NO_DISPLAY"},
      {"unstructured, of an unknown precision", "lumbrakedp", kPlain,
       [](TLSubTask& step) {
         step.name = "LUMBRAKE";
         runFileDouble().facts = {true, 2, "triple", true, 0};
       },
       "lumbrakesp on here:|/p/a.run|-parendId|99|-display|TL_NO_DISPLAY"},
      {"unstructured, parallel, moves to its first process",
       "lumbrakesp",
       {{"none", "/p/a.run"}, {"-steering", "/p/a.other"}},
       [](TLSubTask& step) {
         parallel(step);
         step.name = "DORVEX";
         step.loadBalancing.processNames = {"far"};
         runFileDouble().facts = {true, 2, "double", true, 0};
       },
       "lumbrakedp_parallel on far:|-mapall|-machinefile|unknown|/p/a.run|-steering|/p/a.other|"
       "-parendId|99|-p4pg|/p/a.p4pg|-display|TL_NO_DISPLAY"},
      {"undefined and empty values",
       "velstraTurbo",
       {{"none", "/p/a b$`\"'\\\xc3\xa9.run"}, {"-x", "undefined"}, {"-y", "none"}, {"-z", ""}},
       [](TLSubTask&) {},
       "velstraTurbo on here:|/p/a b$`\"'\\\xc3\xa9.run|-y|-z||-parendId|99|-display|"
       "TL_NO_DISPLAY"},
  });
}

TEST_F(Launches, OfOtherProgramsOnUnixHosts) {
  usePosix();
  const TPairs script = {{"-script", "/p/a.py"}};
  check({
      {"mesher", "zyv.exe", script, [](TLSubTask&) {},
       "zyv.exe on here:|-script|/p/a.py|-parendId|99|-display|TL_NO_DISPLAY"},
      {"post-processor gets no parent", "sorvit", script, [](TLSubTask&) {},
       "sorvit on here:|-script|/p/a.py|-display|TL_NO_DISPLAY"},
      {"the older post-processor does", "sorvitx86_64", script, [](TLSubTask&) {},
       "sorvitx86_64 on here:|-script|/p/a.py|-parendId|99|-display|TL_NO_DISPLAY"},
      {"hybrid mesher gets no parent", "bramoshhybrid", script, [](TLSubTask&) {},
       "bramoshhybrid on here:|-script|/p/a.py|-display|TL_NO_DISPLAY"},
      {"a name of another case is no solver", "VELSTRA", script, &parallel,
       "VELSTRA on here:|-script|/p/a.py|-parendId|99|-display|TL_NO_DISPLAY"},
  });
}

TEST_F(Launches, OfSolversOnWindowsHosts) {
  useWin32({"velstrax86_64.exe", "lumbrakedpx86_64.exe"});
  const TPairs plain = {{"none", "C:\\p\\a.run"}};
  const TPairs run = {{"none", "C:\\p\\a.run"}, {"-steering", "C:\\p\\a.steering"}};
  const auto onWin = [](const std::function<void(TLSubTask&)>& more) {
    return [more](TLSubTask& step) {
      step.hostName = "win";
      more(step);
    };
  };
  check({
      {"sequential", "velstra", run, onWin([](TLSubTask&) {}),
       "velstrax86_64.exe on win:|C:\\p\\a.run|-steering|C:\\p\\a.steering|-parendId|99"},
      {"sequential, other builds", "velstra", run,
       onWin([](TLSubTask& step) { step.loadBalancing.compilerChoice = 2; }),
       "velstra_mpich2x86_64.exe on win:|C:\\p\\a.run|-steering|C:\\p\\a.steering|-parendId|99"},
      {"parallel: the launcher on this host", "velstra", run, onWin(&parallel),
       "mpiexec.exe on here:|-mapall|-machinefile|C:\\p\\a.machines|-n|3|"
       "C:\\suite\\bin64\\velstrax86_64.exe|C:\\p\\a.run|-steering|C:\\p\\a.steering|-parendId|99"},
      {"parallel, double precision by the run file", "velstra", plain, onWin([](TLSubTask& step) {
         parallel(step);
         runFileDouble().facts.userSolverPrecision = 1;
       }),
       "mpiexec.exe on here:|-mapall|-machinefile|unknown|-n|3|"
       "C:\\suite\\bin64\\velstradpx86_64.exe|C:\\p\\a.run|-parendId|99"},
      {"parallel, unstructured, Intel MPI", "lumbrakesp", plain, onWin([](TLSubTask& step) {
         parallel(step);
         step.loadBalancing.processNames = {"win", "far"};
         step.name = "LUMBRAKE";
         step.loadBalancing.mpiType = 1;
         runFileDouble().facts = {true, 2, "hybrid", true, 0};
       }),
       "mpiexec.exe on here:|-mapall|-machinefile|unknown|-n|2|"
       "C:\\suite\\bin64\\lumbrakehp_impix86_64.exe|C:\\p\\a.run|-parendId|99"},
      {"sequential, unstructured", "lumbrakesp", plain, onWin([](TLSubTask& step) {
         step.name = "LUMBRAKE";
         runFileDouble().facts = {true, 2, "double", true, 0};
       }),
       "lumbrakedpx86_64.exe on win:|C:\\p\\a.run|-parendId|99|-seq|"},
      {"the second file of the test serves too", "velstra", plain,
       onWin([](TLSubTask& step) { step.userSolverPrecision = 7; }),
       "velstrax86_64.exe on win:|C:\\p\\a.run|-parendId|99"},
      {"a host that nobody knows",
       "zyv",
       {{"none", "x"}},
       [](TLSubTask& step) { step.hostName = "nowhere"; },
       "zyv.exe on nowhere:|x|-parendId|99"},
  });
  EXPECT_FALSE(dir.has("p/a.bat"));
}

TEST_F(Launches, OnWindowsHostsWithout64BitPrograms) {
  useWin32({});
  dir.write("p/.keep", "");
  dir.write("p/a.machines", "node1\n");
  step->hostName = "win";
  step->executable = "velstra";
  step->loadBalancing.parallel = 0;
  arguments({{"none", "C:\\p\\a.run"}, {"-steering", "C:\\p\\a b.steering"}, {"-x", "none"}});
  EXPECT_EQ(launching().startStep(*step), 0);
  EXPECT_EQ(started(),
            "velstra.exe on win:|C:\\p\\a.run|-steering|C:\\p\\a b.steering|-x|-parendId|99");
  EXPECT_EQ(dir.read("p/a.bat"),
            "C:\\suite\\bin64\\velstra.exe \"C:\\p\\a.run\" -steering \"C:\\p\\a b.steering\" -x "
            "-batch ");
  EXPECT_EQ(step->executable, "velstra");

  recordedVirtualMachine().spawns.clear();
  std::ostringstream console;
  const TLConsoleRedirect redirect(console);
  parallel(*step);
  arguments({{"none", "C:\\p\\a.run"}, {"-steering", "C:\\p\\a.steering"}});
  EXPECT_EQ(launching().startStep(*step), 0);
  EXPECT_EQ(
      started(),
      "mpirun.exe on here:|-mapall|C:\\p\\a.machines|-machinefile|\"\\\"C:\\p\\a.machines\\\"\"|"
      "C:\\p\\a.p4pg|C:\\p\\a.run|-steering|C:\\p\\a.steering|-parendId|99");
  EXPECT_EQ(console.str(), "hostname win localHost here\n");
  EXPECT_THAT(dir.read("p/a.machines"),
              testing::StartsWith("C:\\suite\\bin64\\mpirun.exe -mapall \"C:\\p\\a.machines\" "));
  EXPECT_EQ(dir.read("p/a.machines.orig"), "node1\n");
}

TEST_F(TLaunchFixture, ScriptLinesOfALaunch) {
  usePosix();
  step->executable = "zyv";
  step->remoteLogin = "alice";
  arguments({{"-script", "C:\\p\\\"a\"$x[y].py"}, {"-batch", "none"}});
  launching().startStep(*step);
  EXPECT_THAT(
      recordedScript().lines,
      ElementsAre("task_manager_receive_message \"Try to spawn zyv on here OS: UNIX with Login: "
                  "alice\"",
                  "update",
                  "task_manager_receive_message \"Argument 1: -script  "
                  "C:\\\\p\\\\\\\"a\\\"\\$x\\[y].py\"",
                  "update", "task_manager_receive_message \"Argument 2: -batch  none\"", "update",
                  "task_manager_receive_message \"Argument 3: -parendId  99\"", "update",
                  "task_manager_receive_message start_status_ok", "update"));
}

TEST_F(TLaunchFixture, FailedStart) {
  usePosix();
  step->executable = "velstraTurbo_par";
  arguments({{"none", "/p/a.run"}});
  recordedVirtualMachine().spawnAnswers.push_back({-7, -7, "cannot be found"});
  EXPECT_EQ(launching().startStep(*step), -7);
  EXPECT_EQ(step->status, TLSubTask::FinishedKo);
  EXPECT_TRUE(step->children.empty());
  EXPECT_EQ(step->executable, "velstraTurbo_par");
  EXPECT_TRUE(told("task_manager_receive_message ___________CANNOT_SPAWN"));
}

TEST_F(TLaunchFixture, DisabledStepIsFinishedWithoutAStart) {
  step->enabled = 0;
  EXPECT_EQ(launching().startStep(*step), 0);
  EXPECT_EQ(step->status, TLSubTask::FinishedOk);
  EXPECT_EQ(started(), "0 starts");
}

TEST_F(TLaunchFixture, NoStepStartsWithoutTheFilesItNeeds) {
  usePosix();
  step->hostName = "far";
  step->executable = "zyv";
  arguments({{"-script", "/p/a.py"}});
  step->arguments.at(0)->setLocalFile(1);
  EXPECT_EQ(launching().startStep(*step), -100);
  EXPECT_EQ(step->status, TLSubTask::Pending);
  EXPECT_TRUE(told("task_manager_receive_message _________REMOTE_COPY_FAILED"));
  EXPECT_EQ(started(), "0 starts");
}

TEST(RunFileDistribution, IsThatOfTheProcessesOrOfTheQueue) {
  struct Case {
    std::int32_t queue, parallel, processors;
    int automatic;
    const char* distribution;
  };
  const Case cases[] = {
      {0, 0, 4, 1, "2"},
      {0, 1, 4, 1, "2 communicating distributed"},
      {0, 2, 4, 1, "9 communicating distributed"},
      {1, 1, 4, 1, "4 communicating balanced distributed"},
      {1, 1, 4, 0, "4 communicating distributed"},
      {1, 0, 4, 1, "4 communicating"},
      {1, 1, 1, 1, "1"},
  };
  for (const auto& test : cases) {
    TLLoadBalancing balancing;
    balancing.processNames = {"here", "far"};
    balancing.queuingSystemActivated = test.queue;
    balancing.parallel = test.parallel;
    balancing.nbQueuingSystemProcessor = test.processors;
    balancing.automaticLoadBalancing = test.automatic;
    const auto found = distributionOf(balancing, 9, 5);
    EXPECT_EQ(std::to_string(found.taskCount) + (found.communication == 2 ? " communicating" : "") +
                  (found.balance ? " balanced" : "") + (found.processes ? " distributed" : ""),
              test.distribution);
  }
  TLLoadBalancing parallel;
  parallel.parallel = 1;
  EXPECT_FALSE(distributionOf(parallel, 9, 0).processes) << "no blocks";
}

TEST_F(TLaunchFixture, ShapeOptimiser) {
  usePosix();
  step->name = "Sculpt3d";
  step->executable = "sculpt3d";
  arguments({{"-run", dir.file("o.run")}});
  EXPECT_EQ(launching().startStep(*step), 0);
  EXPECT_THAT(started(), HasSubstr("sculpt3d on here:|-run|"));
  EXPECT_THAT(dir.read("o.proc_distrib"),
              testing::StartsWith("SCULPT3D\n# written by TLSubTask\nGEOM_GENERATOR 1\n0\n"
                                  "MESH_GENERATOR 1\n0\nFLOW_SOLVER 1\n"));
  recordedVirtualMachine().spawns.clear();
  step->loadBalancing.designGenerations = {"g1", "g2"};
  step->loadBalancing.geomGeneration = {{"hostA"}, {"hostA", "hostB"}};
  arguments({{"-run", dir.file("o.run")}});
  EXPECT_EQ(launching().startStep(*step), 0);
  EXPECT_EQ(started(), "sculpt3d_parallel on here:|-run|" + dir.file("o.run") +
                           "|-parendId|99|-p4pg|" + dir.file("o.p4pg") +
                           "|-parallel_mode||-display|TL_NO_DISPLAY");
  EXPECT_THAT(dir.read("o.proc_distrib"),
              HasSubstr("GEOM_GENERATOR 2\n1 hostA\n2 hostA hostB\nMESH_GENERATOR 2\n0\n0\n"));
  EXPECT_THAT(dir.read("o.proc_distrib"), testing::EndsWith("FEA_POST_PROCESSING 2\n0\n0\n"));
}

TEST_F(TLaunchFixture, StopKillsEveryChildFromTheLast) {
  step->children = {5, 0, 7};
  EXPECT_EQ(launching().stopSubTask(*step), 1);
  EXPECT_THAT(recordedVirtualMachine().kills, ElementsAre(7, 5));
  EXPECT_EQ(step->status, TLSubTask::Stopped);
}

}  // namespace
