// Steps through real queuing systems: Grid Engine, and Slurm behind the commands of PBS and LSF.
// The engines belong to the machine: only one program at a time uses them.
#include <fcntl.h>
#include <sys/file.h>

#include <cstdlib>
#include <iostream>
#include <map>

#include "integration/EngineDaemon.h"
#include "platform/TLFileDescriptor.h"
#include "taskengine/TLRunState.h"

namespace {

using testing::HasSubstr;

struct Engine {
  const char* name;
  std::int32_t kind;
  const char* extension;
  const char* script;  ///< that brings it up and takes it down
  const char* faces;   ///< directory of its commands; empty: the system's
  const char* list;
  const char* waiting;  ///< its words for the state of a job
  const char* running;
  const char* slots;  ///< what asks for three of them
  const char* masterDown;
};

constexpr Engine kEngines[] = {
    {"SGE", 1, ".sge", "sge", "", "qstat -g d", "qw", "r", "#$ -pe mpi 3\n",
     "error: commlib error"},
    {"PBS", 2, ".pbs", "slurm", "pbs", "qstat", "Q", "R", "#PBS -q mpi -lselect=3:ncpus=1\n",
     "qstat: cannot connect to server"},
    {"LSF", 3, ".lsf", "slurm", "lsf", "bjobs", "PEND", "RUN", "#BSUB -q mpi -n 3\n",
     "Failed in an LSF library call"},
};

/// Prints as its name.
std::ostream& operator<<(std::ostream& out, const Engine& engine) {
  return out << engine.name;
}

/// The engines that this program has brought up; taken down at its end.
class Engines : public testing::Environment {
 public:
  /// True when the engine is up. One that can't be had is told once.
  bool have(const Engine& engine) {
    const auto known = up_.find(engine.script);
    if (known != up_.end()) return known->second;
    if (!lock_.open()) takeLock();
    const bool good = run(engine.script, "up");
    if (!good) {
      std::cout << engine.name << " could not be had, the reason stands above: nothing of it is "
                << "tested here. The tests with recorded answers don't need it.\n";
    }
    return up_[engine.script] = good;
  }
  static bool run(const std::string& script, const std::string& what) {
    setenv("ENGINES_DIR", "/var/tmp/tl-engines", 1);
    const std::string line = std::string(TL_ENGINES) + "/" + script + " " + what + " >&2";
    return std::system(line.c_str()) == 0;
  }
  void TearDown() override {
    for (const auto& [script, good] : up_) run(script, "down");
  }

 private:
  void takeLock() {
    lock_ = TLFileDescriptor(
        ::open("/tmp/tl-engines.lock", O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600));
    if (lock_.open()) flock(lock_.get(), LOCK_EX);
  }

  TLFileDescriptor lock_;
  std::map<std::string, bool> up_;
};

Engines& engines() {
  static auto* instance = new Engines;  // the test program owns and deletes it
  return *instance;
}
[[maybe_unused]] testing::Environment* const kRegistered =
    testing::AddGlobalTestEnvironment(&engines());

class QueueEngines : public EngineDaemon, public testing::WithParamInterface<Engine> {
 protected:
  void SetUp() override {
    EngineDaemon::SetUp();
    if (!engines().have(engine())) GTEST_SKIP() << engine().name << " could not be had";
  }
  const Engine& engine() const { return GetParam(); }

  TestDaemonOptions options() const {
    static const std::string system = std::getenv("PATH");
    const std::string faces =
        *engine().faces == '\0' ? "" : std::string(TL_ENGINES) + "/" + engine().faces + ":";
    return {.environment = {{"PATH", faces + system},
                            {"SGE_ROOT", "/var/lib/gridengine"},
                            {"SGE_CELL", "default"}}};
  }

  /// A step whose job notes its begin, goes on until "label.end" or "label.stop" is there, and
  /// notes its end.
  std::string job(const std::string& label, const std::string& name, const std::string& executable,
                  int processors, const std::string& queue = "mpi",
                  const std::string& head = {}) const {
    put(label + engine().extension,
        "#!/bin/sh\n" + head +
            "\n# COMPUTATION SETTINGS\n"
            "echo \"$TL_SUBMISSION_HOST\" > \"$RUN_FILE.began\"\n"
            "base=${RUN_FILE%.run}\n"
            "while [ ! -e \"$base.end\" ] && [ ! -e \"$base.stop\" ]; do sleep 0.1; done\n"
            "echo > \"$RUN_FILE.done\"\n");
    return step(label, name, executable, {},
                std::string(kBeside) + "  TL_BEGIN load_balancing\n    PARALLEL 1\n" +
                    "    PROCESS_NAME 1 " + VirtualMachine::shared().hostName() + "\n" +
                    "    QUEUING_SYSTEM_ACTIVATED " + std::to_string(engine().kind) +
                    "\n    NB_QUEUING_SYSTEM_PROCESSOR " + std::to_string(processors) +
                    "\n    QUEUING_SYSTEM_QUEUE " + queue +
                    "\n    AUTOMATIC_LOAD_BALANCING_ACTIVATED 0\n  TL_END load_balancing\n");
  }

  static TLRunStateStep seen(const TestDaemon& daemon, std::size_t step) {
    const auto states = TLRunState::list((daemon.home() / ".talven/pvm").string());
    return states.empty() || states.back().steps.size() <= step ? TLRunStateStep()
                                                                : states.back().steps[step];
  }
  /// Polls until the queue's word for the job of a step is `word`.
  static bool waitWord(const TestDaemon& daemon, std::size_t step, const std::string& word) {
    return waitUntil([&] {
      daemon.poll();
      return seen(daemon, step).queueState == word;
    });
  }
  static bool waitLog(const std::string& text) {
    return waitUntil(
        [&] { return VirtualMachine::shared().log().find(text) != std::string::npos; });
  }
  /// True when no job of a step is listed any more.
  bool waitEmptyQueue() const {
    const std::string command = std::string(engine().list) + " 2>/dev/null | grep -q ' comp[0-9]'";
    return waitUntil([&] { return std::system(command.c_str()) != 0; });
  }
};

TEST_P(QueueEngines, AJobRunsAndTheNextStepWaitsForIt) {
  TestDaemon daemon(TestDaemon::task(job("a", "VELSTRA", "velstraTurbo", 2) +
                                     step("b", "NEXT", "tool", {"await 11 60"})),
                    options());
  const std::string host = VirtualMachine::shared().hostName() + "\n";
  ASSERT_TRUE(waitUntil([&] { return contentsOf(directory / "a.run.began") == host; }));
  EXPECT_TRUE(waitWord(daemon, 0, engine().running));
  EXPECT_GT(seen(daemon, 0).jobNumber, 0);
  EXPECT_EQ(daemon.poll(), (Statuses{1, 0}));
  EXPECT_THAT(contentsOf(file(std::string("a") + engine().extension)), HasSubstr(engine().slots))
      << "one slot more for the launcher of the structured solver";
  EXPECT_TRUE(has(std::string("a") + engine().extension + ".orig"));
  put("a.end", "");
  EXPECT_TRUE(daemon.waitStatuses({2, 1}));
  EXPECT_TRUE(has("a.run.done"));
  EXPECT_EQ(heard(5), std::string(engine().name) + " process terminated 0");
}

TEST_P(QueueEngines, WaitingAndRunningJobsAreDeleted) {
  TestDaemon daemon(
      TestDaemon::task(job("a", "TOOL", "tool", 3) + job("b", "LUMBRAKE", "lumbrakesp", 2)),
      options());
  ASSERT_TRUE(waitFile("a.run.began"));
  EXPECT_TRUE(waitWord(daemon, 1, engine().waiting));
  EXPECT_TRUE(waitWord(daemon, 0, engine().running));
  EXPECT_FALSE(has("b.run.began"));
  PvmPeer::send(daemon.tid(), 2, PvmBody().integer(1));
  EXPECT_TRUE(daemon.waitStatuses({1, 5}));
  PvmPeer::send(daemon.tid(), 2, PvmBody().integer(0));
  EXPECT_TRUE(daemon.waitStatuses({5, 5}));
  EXPECT_TRUE(waitEmptyQueue());
  EXPECT_FALSE(has("a.run.done"));
  EXPECT_FALSE(has("b.run.began"));
}

TEST_P(QueueEngines, AStopFileSuspendsTheJobOfAnUnstructuredSolver) {
  TestDaemon daemon(TestDaemon::task(job("a", "LUMBRAKE", "lumbrakesp", 2)), options());
  ASSERT_TRUE(waitFile("a.run.began"));
  PvmPeer::send(daemon.tid(), 11, PvmBody().integer(0));
  EXPECT_TRUE(waitFile("a.stop"));
  EXPECT_TRUE(waitFile("a.run.done"));
  EXPECT_TRUE(daemon.waitStatuses({2}));
}

TEST_P(QueueEngines, AMasterThatIsDownEndsNoJob) {
  TestDaemon daemon(TestDaemon::task(job("a", "TOOL", "tool", 1)), options());
  ASSERT_TRUE(waitFile("a.run.began"));
  EXPECT_TRUE(waitWord(daemon, 0, engine().running));
  ASSERT_TRUE(Engines::run(engine().script, "master-down"));
  EXPECT_EQ(daemon.poll(), Statuses{1});
  EXPECT_TRUE(waitLog(std::string("the queuing system on job ") +
                      std::to_string(seen(daemon, 0).jobNumber) + ": " + engine().masterDown));
  EXPECT_EQ(daemon.poll(), Statuses{1});
  ASSERT_TRUE(Engines::run(engine().script, "master-up"));
  EXPECT_EQ(daemon.poll(), Statuses{1});
  put("a.end", "");
  // The host's daemon may take a while to tell the new master of the end.
  EXPECT_TRUE(daemon.waitStatuses({2}, 120));
}

TEST_P(QueueEngines, ARefusedJobIsTold) {
  TestDaemon daemon(TestDaemon::task(job("a", "TOOL", "tool", 1, "nosuch")), options());
  EXPECT_TRUE(daemon.waitStatuses({1}));
  EXPECT_TRUE(waitLog(std::string(engine().name) + " lists no job \"comp"));
  EXPECT_EQ(seen(daemon, 0).jobNumber, 0);
  PvmPeer::send(daemon.tid(), 2, PvmBody().integer(0));
  EXPECT_TRUE(daemon.waitStatuses({5}));
}

INSTANTIATE_TEST_SUITE_P(Real, QueueEngines, testing::ValuesIn(kEngines),
                         [](const auto& info) { return std::string(info.param.name); });

class GridEngine : public QueueEngines {};

TEST_P(GridEngine, AJobThatCannotStartShowsEqw) {
  TestDaemon daemon(
      TestDaemon::task(job("a", "TOOL", "tool", 1, "mpi", "#$ -wd /nonexistent/place\n")),
      options());
  EXPECT_TRUE(waitWord(daemon, 0, "Eqw"));
  EXPECT_TRUE(waitLog(": error reason"));
  EXPECT_EQ(daemon.poll(), Statuses{1});
  PvmPeer::send(daemon.tid(), 2, PvmBody().integer(0));
  EXPECT_TRUE(daemon.waitStatuses({5}));
  EXPECT_TRUE(waitEmptyQueue());
}

INSTANTIATE_TEST_SUITE_P(Real, GridEngine, testing::Values(kEngines[0]),
                         [](const auto& info) { return std::string(info.param.name); });

}  // namespace
