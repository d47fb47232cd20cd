// Transfers with the tools of the installation, and against the plan of a launch.
#include "launching/TLLaunchPlan.h"
#include "launching/TLLaunching.h"
#include "launching/TLRemPathMapping.h"
#include "launching/TTransferFixture.h"

namespace {

using testing::HasSubstr;

/// The real tlrsh and tlrcp, over a stand-in for ssh that runs the far command on this host.
class RealTools : public TTransferFixture {
 protected:
  RealTools()
      : ssh_("TL_SSH", dir.write("ssh",
                                 "#!/bin/sh\nwhile [ \"$1\" != -- ]; do shift; done\nshift\n"
                                 "shift\nexec sh -c \"$*\"\n",
                                 true)),
        suite_("TALVEN_DIR", std::string(TL_SHARE_DIR)) {}
  void SetUp() override {
    TTransferFixture::SetUp();
    setenv("TALVEN_DIR", TL_SHARE_DIR, 1);
    std::filesystem::create_directory(dir.file("far"));
  }
  void makeStep(const std::string& name, const std::vector<std::string>& values) {
    TTransferFixture::makeStep(name, "far", values);
    step->remoteTmpDir = dir.file("far");
  }
  /// A file of the run's directory on the far side, below the test's directory.
  std::string there(const std::string& name) const {
    return step->remoteRunDir.substr(dir.path().size() + 1) + name;
  }

 private:
  TVariable ssh_;
  TVariable suite_;
};

TEST_F(RealTools, CarryAProjectOfAnyNameThereAndBack) {
  for (const std::string stem : {"-d'u $c\"t`x`", "(s*t)?&;\xc3\xa9"}) {
    SCOPED_TRACE(stem);
    const std::string text = fullProject(dir);
    const std::string path = dir.write("w/" + stem + ".run", text);
    dir.write("w/" + stem + ".me.qvk", "qvk");
    makeStep("VELSTRA", {path});
    log(kStep, 0);
    EXPECT_EQ(step->spawnArguments.at(0)->value(), step->remoteRunDir + stem + ".run");
    EXPECT_EQ(dir.read(there("m.zyv")), "w/m.zyv");
    EXPECT_EQ(dir.read(there("_initmp.cgns")), "old/old.cgns");
    EXPECT_EQ(dir.read(there(stem + ".me.qvk")), "qvk");
    EXPECT_THAT(dir.read(there(stem + ".run")), HasSubstr(step->remoteRunDir + "m.zyv\n"));
    EXPECT_EQ(std::filesystem::status(dir.file(there(""))).permissions(),
              std::filesystem::perms::owner_all);
    dir.write(there(stem + ".cgns"), "result");
    dir.write(there(stem + "_t1.cgns"), "in time");
    dir.write(there(stem + "_iter5.wall"), "walls");
    log(kBack, 1);
    EXPECT_EQ(dir.read("w/" + stem + ".cgns"), "result") << normal(dir.read("log"));
    EXPECT_EQ(dir.read("w/" + stem + "_t1.cgns"), "in time");
    EXPECT_EQ(dir.read("w/" + stem + "_iter5.wall"), "walls");
    EXPECT_EQ(dir.read("w/" + stem + ".run"), text);
    EXPECT_FALSE(dir.has("w/" + stem + ".runtmp"));
    EXPECT_FALSE(dir.has(there(""))) << normal(dir.read("log"));
    EXPECT_EQ(step->transfer.problem, "");
  }
}

TEST_F(RealTools, CarryTheOtherWaysThereAndBack) {
  unstructuredProject(dir, dir.file("p/_mesh/m.zyv"), dir.write("p/old/old.run", "old"));
  makeStep("LUMBRAKE", {dir.file("p/c/c.run"), dir.file("p/c/c.p4pg")});
  const std::string text = dir.read("p/c/c.run");
  log(kUnstructured, 0);
  EXPECT_EQ(dir.read(there("_mesh/m.zyv")) + dir.read(there("c/c.p4pg")) +
                dir.read(there("c__INIT_SOL_1__/old.run")),
            "meshhostsold");
  dir.write(there("c/c.cgns"), "result");
  dir.write(there("c/deeper/x"), "deep");
  log(kBack, 1);
  EXPECT_EQ(dir.read("p/c/c.cgns") + dir.read("p/c/deeper/x"), "resultdeep")
      << normal(dir.read("log"));
  EXPECT_EQ(dir.read("p/c/c.run"), text);
  EXPECT_FALSE(dir.has(there("")));

  makeStep("Sculpt3d", {dir.write("s/o p/case.run", "case")});
  step->remoteTmpDir = dir.file("far/tmp");
  log(kOptimiser, 1);
  EXPECT_EQ(dir.read(there("o p/case.run")), "case") << normal(dir.read("log"));
  dir.write(there("o p/gen/1"), "best");
  log(kBack, 1);
  EXPECT_EQ(dir.read("s/o p/gen/1"), "best") << normal(dir.read("log"));
  EXPECT_FALSE(dir.has(there("")));

  // A directory that can't be made: the copy says why, and the start has failed.
  makeStep("VELSTRA", {dir.write("w/a.dat", "a")});
  step->remoteTmpDir = dir.write("file", "no directory");
  log(kStep, 1);
  EXPECT_THAT(step->transfer.problem, HasSubstr("far.me:" + step->remoteRunDir + "a.dat failed: "));
}

// ---- the plan of a launch ----------------------------------------------------------------------

/// What a plan says in the words of the log.
std::string planned(const TLLaunchPlan& plan) {
  std::string text;
  for (const auto& action : plan.actions) {
    if (action.kind == TLPlannedAction::Kind::command) {
      text += "tlrsh|-l|me|far|" + action.target + "\n";
      continue;
    }
    std::string target = action.target;
    if (target.ends_with('/')) target.pop_back();
    text += std::string("tlrcp|-b|") + (action.kind == TLPlannedAction::Kind::tree ? "-r|" : "") +
            action.source + "|far.me:" + target + "\n";
  }
  return std::regex_replace(text, std::regex("tm_NNN"), "tm_N");
}

using Transfers = TTransferFixture;

TEST_F(Transfers, AreThoseOfThePlan) {
  setTransfer(&transfer);
  fullProject(dir);
  unstructuredProject(dir, dir.file("gone/m.zyv"), dir.file("gone/old.run"));
  std::filesystem::remove_all(dir.file("p/_mesh"));  // a star stands as it is where nothing matches
  dir.write("suite/bin64/lumbrakedpx86_64.exe", "");
  struct Case {
    const char* name;
    const char* executable;
    std::vector<std::string> values;
    int queue;
    std::size_t actions;
    const char* host = "far";
  };
  const Case cases[] = {
      {"VELSTRA", "velstraTurbo", {"w/duct.run", "w/duct.steering"}, 0, 28},
      {"VELSTRA", "velstraTurbo", {"w/duct.run"}, 1, 30},
      {"LUMBRAKE", "lumbrakesp", {"p/c/c.run", "p/c/c.p4pg"}, 0, 8},
      {"LUMBRAKE", "lumbrakesp", {"p/c/c.run"}, 0, 7, "win"},  // moves to its first process
      {"Sculpt3d", "sculpt3d", {"w/duct.run"}, 0, 2},
  };
  for (const auto& test : cases) {
    SCOPED_TRACE(test.name);
    dir.write("w/duct.run", fullProject(dir));
    dir.write("w/duct.steering", "steering");
    dir.write("w/duct.sge", "#!/bin/sh\n\n# COMPUTATION SETTINGS\n");
    std::vector<std::string> values;
    for (const auto& name : test.values) values.push_back(dir.file(name));
    makeStep(test.name, test.host, values);
    step->loadBalancing.parallel = step->hostName == "win" ? 1 : 0;
    step->loadBalancing.processNames = {"far"};
    step->executable = test.executable;
    step->loadBalancing.queuingSystemActivated = test.queue;
    step->loadBalancing.queuingSystemQueue = "mpi";
    step->loadBalancing.nbQueuingSystemProcessor = 2;
    recordedVirtualMachine().spawns.clear();
    TLRemPathMapping mapping("remote paths.txt", false);
    std::ostringstream console;
    const TLConsoleRedirect redirect(console);
    const TLLaunchPlan plan =
        planLaunch(*step, &hostIsWin32, launchSite(), &readRunFileFacts, mapping);
    EXPECT_EQ(plan.actions.size(), test.actions);
    EXPECT_EQ(dir.read("log"), "") << "a plan does nothing";
    EXPECT_EQ(launching().startStep(*step), 0);
    std::string done;
    std::string told;
    std::istringstream lines(dir.read("log"));
    for (std::string line; std::getline(lines, line);) {
      if (line.starts_with("tl")) done += line + "\n";
      if (line.starts_with("script")) told += line.substr(7) + "\n";
    }
    const std::regex number("tm_[0-9]*0001");
    EXPECT_EQ(std::regex_replace(done, number, "tm_N"), planned(plan));
    for (const auto& line : plan.scriptLines) {
      const std::string first = line.substr(0, line.find('\n'));
      EXPECT_THAT(std::regex_replace(told, number, "tm_NNN"), HasSubstr(first + "\n"));
    }
    if (test.queue != 0) continue;
    std::vector<std::string> words = recordedVirtualMachine().spawns.at(0).words;
    for (auto& word : words) word = std::regex_replace(word, number, "tm_NNN");
    EXPECT_EQ(words, plan.words);
    EXPECT_EQ(recordedVirtualMachine().spawns.at(0).executable, plan.program);
  }
  setTransfer(nullptr);
}

}  // namespace
