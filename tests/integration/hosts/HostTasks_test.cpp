// Tasks whose steps run on hosts that share no disk with the daemon's.
#include <future>

#include "integration/EngineDaemon.h"
#include "integration/hosts/HostNetwork.h"
#include "platform/TTempDir.h"
#include "support/Definitions.h"
#include "support/FullProject.h"

namespace {

namespace fs = std::filesystem;
using testing::Contains;
using testing::HasSubstr;
using testing::Not;

class HostTasks : public EngineDaemon {
 protected:
  static void SetUpTestSuite() {
    VirtualMachine::shared();
    ASSERT_GT(PvmPeer::tid(), 0);
    ASSERT_TRUE(PvmPeer::addHosts({"beta ep=/mnt/programs", "gamma ep=/mnt/programs"}));
    for (const char* host : {"beta", "gamma"}) {
      for (const char* program :
           {"tool", "velstraTurbo", "lumbrakehp_parallel", "sculpt3d", "tlfaketool"}) {
        HostNetwork::addProgram(host, program, TL_FAKETOOL);
      }
      HostNetwork::addProgram(host, "killsem", TL_KILLSEM);
    }
  }
  static void addScript(const std::string& host, const std::string& name, const std::string& text) {
    const fs::path path = HostNetwork::disk(host) / "programs" / name;
    std::ofstream(path) << "#!/bin/sh\n" << text;
    fs::permissions(path, fs::perms::owner_all);
  }

  /// A step on beta. Its first argument goes along; the fake tool there obeys `commands`.
  std::string farStep(const std::string& name, const std::string& executable,
                      const std::string& file, const Lines& commands,
                      const std::string& lines = {}) const {
    const std::string script = "/mnt/" + std::to_string(scripts_++) + ".fake";
    std::ofstream out(HostNetwork::disk("beta") / script.substr(5));
    for (const auto& command : commands) out << command << '\n';
    return TestDaemon::step(name, executable,
                            "  REMOTETMPDIR /mnt/tmp\n  REMOTELOGIN root\n" + lines +
                                argumentsText(argumentText("none", file, "      LOCAL_FILE yes\n") +
                                              argumentText("-script", script)),
                            "beta");
  }
  /// Lines of a step with processes on `hosts`, as "2 beta gamma".
  static std::string parallel(const std::string& hosts, const std::string& lines = {}) {
    return "  TL_BEGIN load_balancing\n    PARALLEL 1\n    PROCESS_NAME " + hosts + "\n" + lines +
           "  TL_END load_balancing\n";
  }
  TestDaemonOptions options(const std::string& ssh = {}) const {
    return {.definitions = definitions.directory(),
            .environment = {{"PATH", TL_SHARE_DIR "/bin:/usr/bin:/bin"}, {"TL_SSH_OPTIONS", ssh}}};
  }

  /// The directory of the one run on beta, as the disk shows it; empty when there is none.
  static fs::path runDirectory() {
    for (const auto& entry : fs::directory_iterator(HostNetwork::disk("beta") / "tmp")) {
      if (entry.path().filename().string().starts_with(".tm_")) return entry.path();
    }
    return {};
  }
  /// Its name on beta.
  static std::string nameThere(const fs::path& far) {
    return "/mnt/tmp/" + far.filename().string() + "/";
  }
  /// The step comes to its end, and its files have been fetched.
  static void finish(const TestDaemon& daemon) {
    letGo(daemon);
    EXPECT_TRUE(waitUntil([] { return runDirectory().empty(); })) << all(daemon);
  }
  static bool said(const TestDaemon& daemon, const std::string& words) {
    for (const auto& call : daemon.upcalls()) {
      if (call.find(words) != std::string::npos) return true;
    }
    return false;
  }
  static std::string all(const TestDaemon& daemon) {
    std::string text;
    for (const auto& call : daemon.upcalls()) text += call + '\n';
    return text;
  }
  static void letGo(const TestDaemon& daemon, int step = 0) {
    PvmPeer::send(daemon.tid(), 21, PvmBody().integer(step));
  }
  void TearDown() override {
    EngineDaemon::TearDown();
    const fs::path left = runDirectory();
    if (!left.empty()) fs::remove_all(left);
  }

  TTempDir dir;  ///< on this host's own disk
  Definitions definitions;

 private:
  static inline int scripts_ = 0;
};

TEST_F(HostTasks, AStructuredProjectGoesAndComesBack) {
  const std::string original = fullProject(dir);
  dir.write("w/a b's.run", original);
  for (const char* suffix :
       {".cgns", ".cooling-holes", ".mf", ".me.qvk", ".me.bc", ".me.uni", ".wall", ".res"}) {
    dir.write(std::string("w/a b's") + suffix, suffix);
  }
  const std::string task = TestDaemon::task(farStep(
      "VELSTRA", "velstraTurbo", dir.file("w/a b's.run"), {"started", "await 21 60", "finished"}));
  TestDaemon daemon(task, options());
  ASSERT_TRUE(daemon.waitUpcall(phrase("FLOW SOLVER STARTED"))) << all(daemon);
  const fs::path far = runDirectory();
  ASSERT_FALSE(far.empty());
  EXPECT_EQ(HostNetwork::names(far),
            "_initmp.cgns _initmp.run _mesh_reftmp.adf _mesh_reftmp.cgns _mesh_reftmp.zyv "
            "_reftmp.cgns _reftmp.run a b's.cgns a b's.cooling-holes a b's.me.bc a b's.me.qvk "
            "a b's.me.uni a b's.mf a b's.run a b's.wall "
            "g.dat g.trb in.prf m.adf m.bcs m.cgns m.zyv old.cgns old.res tables ");
  EXPECT_EQ(contentsOf(far / "in.prf"), "w/in.prf");
  const std::string sent = contentsOf(far / "a b's.run");
  const std::string there = nameThere(far);
  EXPECT_THAT(sent, HasSubstr(there + "m.zyv\n"));
  EXPECT_THAT(sent, Not(HasSubstr(dir.path())));
  EXPECT_EQ(fs::status(far).permissions(), fs::perms::owner_all);
  const std::string mine = dir.read("w/a b's.run");

  put(far / "a b's.res", "new residuals");
  put(far / "a b's_t1.dat", "a moment");
  put(far / "m.cgns", "adapted mesh");
  finish(daemon);
  EXPECT_EQ(dir.read("w/a b's.res"), "new residuals");
  EXPECT_EQ(dir.read("w/a b's_t1.dat"), "a moment");
  EXPECT_EQ(dir.read("w/m.cgns"), "adapted mesh");
  EXPECT_EQ(dir.read("w/a b's.run"), mine);
  EXPECT_FALSE(dir.has("w/a b's.runtmp"));
  EXPECT_TRUE(said(daemon, "Retrieving files beta.root:" + there + "a b's.run"));

  // The next run takes along what came back.
  const TestDaemon again(task, options());
  ASSERT_TRUE(again.waitUpcall(phrase("FLOW SOLVER STARTED"))) << all(again);
  const fs::path next = runDirectory();
  EXPECT_EQ(contentsOf(next / "m.cgns"), "adapted mesh");
  put(next / "a b's.res", "of the second run");
  finish(again);
  EXPECT_EQ(dir.read("w/a b's.res"), "of the second run");
}

TEST_F(HostTasks, AnUnstructuredRunIsFetchedWhileItRuns) {
  dir.write("p/old/old.cgns", "old solution");
  dir.write("p/old/old.run", "old run");
  unstructuredProject(dir, dir.file("p/_mesh/m.zyv"), dir.file("p/old/old.cgns"));
  TestDaemon daemon(
      TestDaemon::task(farStep("LUMBRAKE", "lumbrakesp", dir.file("p/c/c.run"),
                               {"started", "await 21 60", "send 22 i:0", "await 23 60",
                                "file /mnt/answered", "await 21 60", "finished"},
                               parallel("1 beta"))),
      options());
  ASSERT_TRUE(daemon.waitUpcall(phrase("FLOW SOLVER STARTED"))) << all(daemon);
  const fs::path far = runDirectory();
  ASSERT_FALSE(far.empty());
  const std::string there = nameThere(far);
  EXPECT_EQ(contentsOf(far / "_mesh/m.zyv"), "mesh");
  EXPECT_EQ(contentsOf(far / "c__INIT_SOL_1__/old.cgns"), "old solution");
  EXPECT_EQ(contentsOf(far / "c__INIT_SOL_1__/old.run"), "old run");
  EXPECT_EQ(contentsOf(far / "c/c.p4pg"), "hosts");
  EXPECT_THAT(contentsOf(far / "c/c.run"), HasSubstr(there + "_mesh/m.zyv"));

  const std::string mine = dir.read("p/c/c.run");
  put(far / "c/c.cgns", "half way");
  letGo(daemon);
  const fs::path answered = HostNetwork::disk("beta") / "answered";
  EXPECT_TRUE(waitUntil([&] { return fs::exists(answered); })) << all(daemon);
  EXPECT_EQ(dir.read("p/c/c.cgns"), "half way");
  EXPECT_TRUE(fs::exists(far / "c/c.cgns"));
  EXPECT_EQ(daemon.poll(), Statuses{1});

  put(far / "c/c.cgns", "at the end");
  fs::create_directory(far / "c/parts");
  put(far / "c/parts/1", "part");
  finish(daemon);
  EXPECT_EQ(dir.read("p/c/c.cgns"), "at the end");
  EXPECT_EQ(dir.read("p/c/parts/1"), "part");
  EXPECT_EQ(dir.read("p/c/c.run"), mine);
}

TEST_F(HostTasks, TheShapeOptimisersTreeGoesAndComesBack) {
  dir.write("study/opt.run", "optimise");
  dir.write("study/a dir/x", "x");
  TestDaemon daemon(TestDaemon::task(farStep("Sculpt3d", "sculpt3d", dir.file("study/opt.run"),
                                             {"started", "await 21 60", "finished"})),
                    options());
  ASSERT_TRUE(daemon.waitStatuses({1})) << all(daemon);
  const fs::path far = runDirectory();
  ASSERT_FALSE(far.empty());
  EXPECT_EQ(contentsOf(far / "study/opt.run"), "optimise");
  EXPECT_EQ(contentsOf(far / "study/a dir/x"), "x");
  put(far / "study/a dir/x", "better");
  put(far / "study/y", "new");
  finish(daemon);
  EXPECT_EQ(dir.read("study/a dir/x"), "better");
  EXPECT_EQ(dir.read("study/y"), "new");
}

TEST_F(HostTasks, WhatCantBeFetchedStaysThere) {
  ASSERT_EQ(HostNetwork::run("mkdir " + dir.file("w") + "; mount -t tmpfs -o size=1m none " +
                             dir.file("w"))
                .code,
            0);
  dir.write("w/case.dat", "input");
  dir.write("w/case.res", "old");
  const std::string task = TestDaemon::task(
      farStep("TOOL", "tool", dir.file("w/case.dat"), {"await 21 60", "finished"}));
  for (const std::string trouble : {"No space left on device", "not responding"}) {
    SCOPED_TRACE(trouble);
    const bool full = trouble.starts_with("No space");
    TestDaemon daemon(task, options("-o ControlPath=none -o ServerAliveInterval=1 -o "
                                    "ServerAliveCountMax=2 -o ConnectTimeout=2"));
    ASSERT_TRUE(daemon.waitStatuses({1})) << all(daemon);
    const fs::path far = runDirectory();
    ASSERT_FALSE(far.empty());
    if (!full) HostNetwork::run("mount -o remount,size=3500m " + dir.file("w"));
    put(far / "case.res", "of the run");
    // A file of zeros takes no room there; the large one is on its way for longer than a cut takes.
    fs::resize_file(far / "case.res", full ? 2'000'000 : 3'000'000'000);
    letGo(daemon);
    if (!full) {
      EXPECT_TRUE(waitUntil([&] {
        std::error_code gone;
        for (const auto& entry : fs::recursive_directory_iterator(dir.file("w"), gone)) {
          if (entry.path().string().find(".tlrcp.") != std::string::npos &&
              entry.path().filename() == "case.res") {
            return true;
          }
        }
        return false;
      }));
      HostNetwork::cut("beta");
      EXPECT_TRUE(waitUntil([&] { return said(daemon, trouble); })) << all(daemon);
      HostNetwork::heal("beta");
    }
    const std::string there = nameThere(far);
    EXPECT_TRUE(waitUntil([&] {
      return said(daemon, "is kept on host beta in the directory " + there);
    })) << all(daemon);
    EXPECT_TRUE(said(daemon, "Retrieval of beta.root:" + there + "case.* to " + dir.file("w/")));
    EXPECT_TRUE(said(daemon, trouble));
    EXPECT_EQ(dir.read("w/case.res"), "old");
    EXPECT_EQ(dir.read("w/case.dat"), "input");
    EXPECT_TRUE(waitUntil([&] { return !daemon.poll().empty(); }));
    EXPECT_TRUE(fs::exists(far / "case.res"));
    fs::remove_all(far);
  }
  HostNetwork::run("umount -l " + dir.file("w"));
}

TEST_F(HostTasks, AStepWhoseCopyFailsDoesNotStart) {
  dir.write("case.dat", "input");
  const Lines commands = {"file /mnt/began"};
  HostNetwork::on("beta", "mkdir -p /mnt/full; mount -t tmpfs -o size=16k none /mnt/full");
  dir.write("big.dat", std::string(100000, 'b'));
  const auto at = [](std::string step, const std::string& from, const std::string& to) {
    return step.replace(step.find(from), from.size(), to);
  };
  const std::string plain = farStep("TOOL", "tool", dir.file("case.dat"), commands);
  const std::string big = farStep("TOOL", "tool", dir.file("big.dat"), commands);
  struct Case {
    std::string step;
    std::string words;
  };
  for (const Case& test : {Case{at(big, "/mnt/tmp", "/mnt/full"), "No space left on device"},
                           Case{at(plain, "LOGIN root", "LOGIN guest"), "Permission denied"},
                           Case{at(plain, "LOGIN root", "LOGIN nobody"), "beta.nobody:"},
                           Case{at(plain, "HOSTNAME beta", "HOSTNAME delta"), "delta"}}) {
    SCOPED_TRACE(test.words);
    if (test.words.starts_with("Perm")) HostNetwork::on("beta", "chmod 700 /mnt/tmp");
    TestDaemon daemon(TestDaemon::task(test.step), options());
    EXPECT_TRUE(daemon.waitStatuses({3})) << all(daemon);
    EXPECT_TRUE(daemon.waitUpcall(received("_________REMOTE_COPY_FAILED"))) << all(daemon);
    EXPECT_TRUE(said(daemon, test.words)) << all(daemon);
    HostNetwork::on("beta", "chmod 1777 /mnt/tmp");
  }
  EXPECT_FALSE(fs::exists(HostNetwork::disk("beta") / "began"));
}

TEST_F(HostTasks, AQueuedStepRunsThere) {
  dir.write("w/case.run", "not read");
  dir.write("w/case.sge",
            "#!/bin/sh\n\n# COMPUTATION SETTINGS\n"
            "echo began > \"${RUN_FILE%.run}.began\"\n"
            "until [ -e \"${RUN_FILE%.run}.end\" ]; do sleep .1; done\n");
  addScript("beta", "qsub",
            "sed -n 's/^#\\$ -N //p' \"$1\" >/mnt/job\n"
            "setsid sh -c \"sh '$1'; rm /mnt/job\" >/dev/null 2>&1 </dev/null &\n"
            "echo 'Your job 7 (\"case\") has been submitted'\n");
  addScript("beta", "qstat",
            "[ -e /mnt/job ] || { echo \"Following jobs do not exist: 7\"; exit 1; }\n"
            "echo 'job-ID  prior name user state submit/start at queue slots'\necho -----\n"
            "[ \"$1\" != -j ] || { echo 'job_number: 7'; exit; }\n"
            "echo \"      7 0.5 $(cat /mnt/job) root r 01/01/2026 10:00:00 mpi@beta 1\"\n");
  TestDaemon daemon(TestDaemon::task(farStep("TOOL", "velstraTurbo", dir.file("w/case.run"), {},
                                             parallel("1 beta",
                                                      "    QUEUING_SYSTEM_ACTIVATED 1\n"
                                                      "    NB_QUEUING_SYSTEM_PROCESSOR 1\n"
                                                      "    QUEUING_SYSTEM_QUEUE mpi\n"))),
                    options());
  EXPECT_TRUE(waitUntil([&] { return fs::exists(runDirectory() / "case.began"); })) << all(daemon);
  const fs::path far = runDirectory();
  EXPECT_EQ(daemon.poll(), Statuses{1});
  put(far / "case.res", "of the job");
  put(far / "case.end", "");
  EXPECT_TRUE(daemon.waitStatuses({2})) << all(daemon);
  EXPECT_TRUE(waitUntil([&] { return dir.read("w/case.res") == "of the job"; })) << all(daemon);
}

TEST_F(HostTasks, PathsAreMappedForAHostThatSharesTheDisk) {
  dir.write("proj/sim/case.sim", "");
  dir.write("proj/remote paths.txt", "gamma /none\nbeta /mnt/shared by name\n");
  addScript("beta", "quorelcfd", "for i; do echo \"$i\"; done >/mnt/words; sleep 60 & wait\n");
  TestDaemonOptions quick = options();
  quick.script = kWithoutPauses;
  TestDaemon daemon(
      TestDaemon::task(
          TestDaemon::step("QUOREL_CFD", "quorelcfd",
                           argumentsText(argumentText("none", dir.file("proj/sim/case.sim"))),
                           "beta"),
          "  LOCAL_COMPUTATION_PATH " + dir.file("proj/sim/") +
              "\n  COMPUTATION_FILE_NAME case.sim\n"),
      quick);
  const fs::path words = HostNetwork::disk("beta") / "words";
  EXPECT_TRUE(waitUntil([&] { return contentsOf(words).find("-local") != std::string::npos; }))
      << all(daemon);
  EXPECT_THAT(contentsOf(words), HasSubstr("/mnt/shared by name/sim/case.sim"));
  const std::string log = contentsOf(daemon.directory() / "tmp/paths substitution.log");
  EXPECT_THAT(log, HasSubstr("MAP '" + dir.file("proj/sim/") + "' -> beta\n"));
  EXPECT_THAT(log, HasSubstr("\t\t gamma = beta? NO\n\t\t beta = beta? YES!\n"));
  EXPECT_THAT(log, HasSubstr("\tManaged to convert to '/mnt/shared by name/sim/'.\n"));
}

TEST_F(HostTasks, RanksOnTwoHostsReport) {
  dir.write("w/case.run", fullProject(dir));
  dir.write("w/case.p4pg", "beta 1\ngamma 1\n");
  addScript("beta", "velstraTurbo_parallel",
            "for word; do\n  [ \"$last\" != -parendId ] || daemon=$word\n  last=$word\n"
            "  case $word in *.run) run=$word ;; esac\ndone\n"
            "ssh -q gamma PVM_VMID=$PVM_VMID tlfaketool -parendId $daemon "
            "-do \"'reconnect $daemon $run'\" -do \"'text rank on gamma'\" "
            "-do \"'await 21 60'\" -do finished </dev/null >/dev/null 2>&1 &\n"
            "exec /mnt/programs/tlfaketool \"$@\"\n");
  TestDaemon daemon(
      TestDaemon::task(farStep("VELSTRA", "velstraTurbo", dir.file("w/case.run"),
                               {"started", "text rank on beta", "await 21 60", "finished"},
                               parallel("2 beta gamma", "    MPI_TYPE 1\n"))),
      options());
  EXPECT_TRUE(daemon.waitUpcall(phrase("rank on beta"))) << all(daemon);
  EXPECT_TRUE(daemon.waitUpcall(phrase("rank on gamma"))) << all(daemon);
  EXPECT_EQ(daemon.poll(), Statuses{1});
  letGo(daemon);
  EXPECT_TRUE(daemon.waitStatuses({2})) << all(daemon);
  EXPECT_TRUE(waitUntil([] { return runDirectory().empty(); })) << all(daemon);
}

TEST_F(HostTasks, ACheckTellsWhatIsMissingBeforeAnythingStarts) {
  dir.write("there.dat", "");
  const std::string lost = farStep("A", "tool", dir.file("there.dat"), {});
  const auto onDelta = [](std::string step) {
    return step.replace(step.find("HOSTNAME beta"), 13, "HOSTNAME delta");
  };
  const std::string task =
      farStep("GOOD", "tool", dir.file("there.dat"), {}) + onDelta(lost) +
      farStep("LATER", "tool", dir.file("later.dat"), {}) +
      TestDaemon::step("QUOREL_CFD", "quorelcfd",
                       argumentsText(argumentText("none", dir.file("sim/case.sim"))), "gamma");
  const std::string place = "  LOCAL_COMPUTATION_PATH " + dir.file("sim/") + "\n";
  const auto check = [&](const std::string& steps, const std::string& words) {
    dir.write("t.task", TestDaemon::task(steps, place));
    return HostNetwork::run("env TALVEN_DIR=" TL_SHARE_DIR " " TL_TLCTL " check " + words + " " +
                            dir.file("t.task"));
  };
  const auto found = check(task, "");
  EXPECT_NE(found.code, 0);
  EXPECT_THAT(found.output, HasSubstr("fault: step 1 (A): host delta can't be reached as root: "));
  EXPECT_THAT(found.output, HasSubstr("warning: step 2 (LATER): " + dir.file("later.dat") +
                                      ", which goes to host beta, isn't there yet"));
  EXPECT_THAT(found.output,
              HasSubstr("warning: step 3 (QUOREL_CFD): no \"remote paths.txt\" above " +
                        dir.file("sim/") + " names host gamma"));
  EXPECT_THAT(found.output, Not(HasSubstr("step 0")));
  EXPECT_EQ(check(task, "--offline").code, 0);
  const auto first = check(farStep("FIRST", "tool", dir.file("later.dat"), {}), "");
  EXPECT_NE(first.code, 0);
  EXPECT_THAT(first.output, HasSubstr("fault: step 0 (FIRST): " + dir.file("later.dat") +
                                      ", which goes to host beta, can't be read"));
  HostNetwork::cut("beta");
  const auto silent = check(lost, "");
  HostNetwork::heal("beta");
  EXPECT_NE(silent.code, 0);
  EXPECT_THAT(silent.output, HasSubstr("host beta can't be reached as root: no answer in time"));
}

}  // namespace
