#include "launching/TTransferFixture.h"

namespace {

using testing::HasSubstr;
using testing::Not;

using Transfers = TTransferFixture;

TEST_F(Transfers, OfArgumentsGoOneByOne) {
  struct Case {
    TLHostKind form;
    const char* host;
    const char* expected;
    std::string far;
    const char* pwd;
  };
  const Case cases[] = {
      {TLHostKind::posix, "far",
       "tlrsh|-l|me|far|mkdir -p /tmp/.tm_N/\n"
       "script message \"Transfering project to far OS: UNIX with Login: me\"\n"
       "script message \"Copying Argument File DIR/w/a.dat to dir: /tmp/.tm_N/ \"\n"
       "tlrcp|-b|DIR/w/a.dat|far.me:/tmp/.tm_N/a.dat\n"
       "script message remote_transfered\n"
       "tlrsh|-l|me|far|mkdir -p /tmp/.tm_N/\n"
       "script message \"Transfering project to far OS: UNIX with Login: me\"\n"
       "script message \"Copying Argument File DIR/w/m.zyv to dir: /tmp/.tm_N/ \"\n"
       "script message remote_transfered\n",
       "/tmp/.tm_N/", "none"},
      {TLHostKind::win32, "win",
       "tlrsh|-l|me|win|md C:\\tmp\\tm_N\n"
       "script message \"Transfering project to win OS: WIN32 with Login: me\"\n"
       "script message \"Copying Argument File DIR\\\\w\\\\a.dat to dir: C:\\\\tmp\\\\tm_N \"\n"
       "tlrcp|-b|DIR\\w\\a.dat|win.me:C:\\tmp\\tm_Na.dat\n"
       "script message remote_transfered\n"
       "tlrsh|-l|me|win|md C:\\tmp\\tm_N\n"
       "script message \"Transfering project to win OS: WIN32 with Login: me\"\n"
       "script message \"Copying Argument File DIR\\\\w\\\\m.zyv to dir: C:\\\\tmp\\\\tm_N \"\n"
       "script message remote_transfered\n",
       "C:\\tmp\\tm_N", "$PWD"},
  };
  for (const auto& test : cases) {
    SCOPED_TRACE(test.host);
    use(test.form);
    dir.write("w/a.dat", "plain");
    makeStep("VELSTRA", test.host, {local("w/a.dat"), local("w/m.zyv")});
    EXPECT_EQ(log(kStep, 0), test.expected);
    EXPECT_EQ(value(1), test.far + "m.zyv");
    EXPECT_STREQ(std::getenv("RPWD"), test.pwd);
    const std::string directory = step->remoteRunDir;
    step->remoteLogin.clear();
    EXPECT_THAT(logOfStart(kStep, 0),
                testing::AllOf(Not(HasSubstr("tlrcp")), HasSubstr("with Login: \"\n"),
                               HasSubstr("remote_transfered")));
    EXPECT_EQ(step->remoteRunDir, directory) << "a second start keeps it";
    EXPECT_EQ(value(0), test.far + "a.dat");
  }
}

TEST_F(Transfers, OfAProjectTakeAllThatBelongsToIt) {
  dir.write("w/duct.run", fullProject(dir));
  const std::string original = dir.read("w/duct.run");
  makeStep("VELSTRA", "far", {dir.file("w/duct.run")});
  behave("case \"$2\" in */duct.runtmp) cp \"$2\" '" + dir.file("sent") +
         "';; */ref.runtmp) cp \"$2\" '" + dir.file("sentref") + "';; esac");
  std::string expected;
  for (const auto& [from, to] : std::vector<std::pair<std::string, std::string>>{
           {"ref/ref.runtmp", "_reftmp.run"},
           {"ref/ref.cgns", "_reftmp.cgns"},
           {"ref/rm.zyv", "_mesh_reftmp.zyv"},
           {"ref/rm.cgns", "_mesh_reftmp.cgns"},
           {"ref/rm.adf", "_mesh_reftmp.adf"},
           {"w/m.zyv", "m.zyv"},
           {"w/m.bcs", "m.bcs"},
           {"w/m.cgns", "m.cgns"},
           {"w/m.adf", "m.adf"},
           {"w/g.trb", "g.trb"},
           {"w/g.dat", "g.dat"},
           {"w/tables", "tables"},
           {"old/old.run", "_initmp.run"},
           {"old/old.cgns", "_initmp.cgns"},
           {"old/old.cgns", "old.cgns"},
           {"old/old.res", "old.res"},
           {"w/in.prf", "in.prf"},
           {"w/duct.runtmp", "duct.run"},
           {"w/duct.cgns", "duct.cgns"},
           {"w/duct.cooling-holes", "duct.cooling-holes"},
           {"w/duct.mf", "duct.mf"},
           {"w/duct.me.qvk", "duct.me.qvk"},
           {"w/duct.me.bc", "duct.me.bc"},
           {"w/duct.me.uni", "duct.me.uni"},
           {"w/duct.wall", "duct.wall"}}) {
    expected += "tlrcp|-b|DIR/" + from + "|far.me:/tmp/.tm_N/" + to + "\n";
  }
  EXPECT_THAT(log(kStep, 0),
              HasSubstr(" to dir: /tmp/.tm_N/ \"\n" + expected + "script message remote"));
  const std::string sent = dir.read("sent");
  for (const char* name :
       {"m.zyv", "g.trb", "g.dat", "tables", "_reftmp.run", "_initmp.run", "in.prf"}) {
    EXPECT_THAT(sent, HasSubstr(step->remoteRunDir + name + "\n"));
  }
  EXPECT_THAT(sent, Not(HasSubstr(dir.path())));
  EXPECT_THAT(dir.read("sentref"), HasSubstr(step->remoteRunDir + "_mesh_reftmp.zyv\n"));
  EXPECT_EQ(dir.read("w/duct.run"), original);
  EXPECT_FALSE(dir.has("w/duct.runtmp") || dir.has("ref/ref.runtmp")) << "gone again";
}

TEST_F(Transfers, EndWithTheFirstCopyThatFails) {
  dir.write("w/duct.run", fullProject(dir));
  makeStep("VELSTRA", "far", {dir.file("w/duct.run")});
  std::vector<TLTransferProgress> seen;
  setTransferObserver([&] { seen.push_back(step->transfer); });
  // The geometry's copy isn't looked at.
  behave(
      "case \"$*\" in *g.trb*) echo 'lost at once';; */w/duct.cgns*) echo 'scp: disk full';"
      " echo second;; esac");
  EXPECT_THAT(log(kStep, 1),
              testing::EndsWith("tlrcp|-b|DIR/w/duct.cgns|far.me:/tmp/.tm_N/duct.cgns\n"
                                "script message \"Copy of DIR/w/duct.cgns to "
                                "far.me:/tmp/.tm_N/duct.cgns failed: scp: disk full; second\"\n"));
  setTransferObserver(nullptr);
  EXPECT_EQ(value(), dir.file("w/duct.run"));
  EXPECT_THAT(step->transfer.problem, HasSubstr("disk full"));
  ASSERT_GE(seen.size(), 10U);
  EXPECT_EQ(seen[7].direction, "to");
  EXPECT_EQ(seen[7].file, dir.file("w/m.bcs"));
  EXPECT_EQ(seen[7].number, 7);
  EXPECT_EQ(seen[7].count, 25);
  EXPECT_EQ(seen[7].bytes + seen[7].fileBytes, seen[8].bytes);
  EXPECT_GT(seen[7].total, seen[8].bytes);
  EXPECT_EQ(seen.back().direction, "");
  EXPECT_FALSE(dir.has("w/duct.runtmp"));
  // Somebody else's directory.
  behave("case \"$*\" in *mkdir*) exit 73;; esac");
  EXPECT_THAT(log(kStep, 1),
              testing::AllOf(HasSubstr("belongs to somebody else"), Not(HasSubstr("tlrcp"))));
}

TEST_F(Transfers, OfUnstructuredRunsHaveDirectoriesOfTheirOwn) {
  unstructuredProject(dir, dir.file("p/_mesh/m.zyv"), dir.file("p/old/old.cgns"));
  makeStep("LUMBRAKE", "far", {dir.file("p/c/c.run"), dir.file("p/c/c.p4pg")});
  behave("case \"$2\" in *runtmp) cp \"$2\" '" + dir.file("sent") + "';; esac; echo ignored");
  log(kUnstructured, 0);  // never fails
  behave("");
  EXPECT_EQ(logOfStart(kUnstructured, 0),
            "tlrsh|-l|me|far|mkdir -p /tmp/.tm_N/\n"
            "script message \"Transfering project to host: far, OS: UNIX, with login: me\"\n"
            "script message \"Remote temporary directory: /tmp/.tm_N/ \nPlease wait... \"\n"
            "tlrsh|-l|me|far|mkdir -p /tmp/.tm_N/_mesh\n"
            "tlrcp|-b|DIR/p/_mesh/m.zyv|far.me:/tmp/.tm_N/_mesh\n"
            "tlrsh|-l|me|far|mkdir -p /tmp/.tm_N/c\n"
            "tlrsh|-l|me|far|mkdir -p /tmp/.tm_N/c__INIT_SOL_1__\n"
            "tlrcp|-b|DIR/p/old/old.*|far.me:/tmp/.tm_N/c__INIT_SOL_1__\n"
            "tlrcp|-b|DIR/p/c/c.runtmp|far.me:/tmp/.tm_N/c/c.run\n"
            "tlrcp|-b|DIR/p/c/c.p4pg|far.me:/tmp/.tm_N/c/c.p4pg\n"
            "script message \"Transfer completed ! \n\"\n");
  const std::string far = step->remoteRunDir;
  EXPECT_EQ(told, R"(TLSubTask::transferHexa_ ... IN

***********************************
Tranfering data to remote directory: /tmp/.tm_N/
***********************************
. Creating _mesh/ subdirectory on remote host: far:/tmp/.tm_N/_mesh
  . Transfering mesh files: DIR/p/_mesh/m.*
  . Creating computation subdirectory on remote host: far:/tmp/.tm_N/c
  . Creating initial computation subdirectory on remote host: far:/tmp/.tm_N/c__INIT_SOL_1__
  . Transfering result files for restart: DIR/p/old/old.*
  . Transfering temporary run file: DIR/p/c/c.runtmp
  . Transfering  <*.p4pg> file: DIR/p/c/c.p4pg
  . Remote <*.p4pg> file:/tmp/.tm_N/c/c.p4pg
TLSubTask::transferHexa_ ... OUT
)");
  EXPECT_EQ(value(0) + " " + value(1), "/tmp/.tm_N/c/c.run /tmp/.tm_N/c/c.p4pg");
  EXPECT_THAT(dir.read("sent"), HasSubstr(far + "_mesh/m.zyv\n"));
  EXPECT_THAT(dir.read("sent"), HasSubstr(far + "c__INIT_SOL_1__/old.cgns\n"));

  step->status = TLSubTask::Running;
  const std::string fetch =
      "script message \"\nRetrieving files from directory: far:/tmp/.tm_N/*.*\nPlease wait... \"\n"
      "tlrsh|-l|me|far|/bin/rm -f /tmp/.tm_N/c/c.run\n"
      "tlrsh|-l|me|far|/bin/rm -f /tmp/.tm_N/c/c.p4pg\n"
      "tlrcp|-b|-r|far.me:/tmp/.tm_N/c/*|DIR/p/c\n";
  const std::string completed = "script message \"Retrieval completed ! \n\"\n";
  EXPECT_EQ(log(&TLHostTransfer::retrieveHexa_, 1), fetch + completed) << "it goes on there";
  EXPECT_EQ(told, R"(TLSubTask::retrieveHexa_ ... IN
TLSubTask::retrieveHexa_(), treating argument:/tmp/.tm_N/c/c.run
CMD:/bin/rm -f /tmp/.tm_N/c/c.run
TLSubTask::retrieveHexa_(), treating argument:/tmp/.tm_N/c/c.p4pg
)");
  EXPECT_EQ(log(kBack, 1), fetch +
                               "tlrsh|-l|me|far|/bin/rm -f /tmp/.tm_N//*.*\n"
                               "tlrsh|-l|me|far|/bin/rm -rf /tmp/.tm_N/\n" +
                               completed);
  behave("case \"$*\" in *-r*) echo 'connection lost';; esac");
  EXPECT_THAT(log(kBack, 1),
              testing::AllOf(Not(HasSubstr("-rf")),
                             HasSubstr("script message \"Retrieval of far.me:/tmp/.tm_N/c/* to "
                                       "DIR/p/c/ failed: connection lost\"\n"
                                       "script message \"What could not be fetched is kept on host "
                                       "far in the directory /tmp/.tm_N/\"\n")));
  EXPECT_EQ(step->transfer.keptDirectory, far);
  dir.write("log", "");
  transfer.removeRemoteDir(*step);
  EXPECT_EQ(dir.read("log"), "") << "results are there";
  // Gone without this process: said once, and not again behind the removal.
  const std::string gone =
      "case \"$*\" in *-r*) echo \"scp: " + far + "c/*: No such file or directory\";; esac";
  logOfStart(kUnstructured, 0);
  behave(gone);
  EXPECT_THAT(log(kBack, 1), HasSubstr("No such file or directory\"\n"));
  behave("");
  log(kBack, 1);
  behave(gone);
  EXPECT_THAT(log(kBack, 1), Not(HasSubstr("No such file")));
}

TEST_F(Transfers, OfUnstructuredRunsToWindowsGoBesideTheDirectory) {
  use(TLHostKind::win32);
  unstructuredProject(dir, local("p/_mesh/m.zyv"), local("p/old/old.run"));
  makeStep("DORVEX", "win", {local("p/c/c.run")});
  step->remoteLogin.clear();
  EXPECT_THAT(
      log(kUnstructured, 0),
      testing::AllOf(HasSubstr("\"Remote temporary directory: C:\\\\tmp\\\\tm_N \n"),
                     HasSubstr("tlrsh|win|md C:\\tmp\\tm_N_mesh\n"
                               "tlrcp|-b|DIR\\p\\_mesh\\m.*|win:C:\\tmp\\tm_N_mesh\n"
                               "tlrsh|win|md C:\\tmp\\tm_Nc\n"
                               "tlrsh|win|md C:\\tmp\\tm_Nc__INIT_SOL_1__\n"
                               "tlrcp|-b|DIR\\p\\old\\old.*|win:C:\\tmp\\tm_Nc__INIT_SOL_1__\n"
                               "tlrcp|-b|DIR\\p\\c\\c.runtmp|win:C:\\tmp\\tm_Nc\\c.run\n")));
  EXPECT_EQ(value(), "C:\\tmp\\tm_Nc/c.run");
  EXPECT_THAT(log(kBack, 1), HasSubstr("tlrsh|win|del /q C:\\tmp\\tm_Nc/c.run\n"
                                       "tlrcp|-b|-r|win:C:\\tmp\\tm_Nc\"* DIR\\p\\c \n"
                                       "tlrsh|win|del /q C:\\tmp\\tm_N\\*.*\n"
                                       "tlrsh|win|rd C:\\tmp\\tm_N\n"));
  // A run file that can't be read isn't carried, and what lies here stays.
  dir.write("p/c/c.run", "no project\n");
  makeStep("DORVEX", "win", {local("p/c/c.run")});
  EXPECT_THAT(log(kUnstructured, 0), Not(HasSubstr("c.run\n")));
  EXPECT_EQ(step->spawnArguments.at(0)->value(), local("p/c/c.run"));
  EXPECT_THAT(log(kBack, 1), Not(HasSubstr("c.run\n")));
}

TEST_F(Transfers, OfTheShapeOptimiserTakeItsDirectory) {
  struct Case {
    TLHostKind form;
    const char* host;
    const char* root;
    const char* value;
    const char* there;
    const char* back;
  };
  const Case cases[] = {
      {TLHostKind::posix, "far", "/tmp", "/tmp/.tm_N/opt/case.run",
       "tlrsh|-l|me|far|mkdir -p /tmp/.tm_N/\ntlrcp|-b|-r|DIR/s/opt|far.me:/tmp/.tm_N\n",
       "tlrcp|-b|-r|far.me:/tmp/.tm_N/opt|DIR/s\n"
       "script message \"Removing remote temporary directory /tmp/.tm_N/\"\n"
       "tlrsh|-l|me|far|/bin/rm -f /tmp/.tm_N//*.*\ntlrsh|-l|me|far|/bin/rm -rf /tmp/.tm_N/\n"},
      {TLHostKind::win32, "far", "/scratch", "/scratch/.tm_N/opt\\case.run",
       "tlrsh|-l|me|far|mkdir -p /scratch/.tm_N/\n"
       "tlrcp|-b|-r|DIR\\s\\opt|far.me:/scratch/.tm_N\n",
       "tlrcp|-b|-r|far.me:/scratch/.tm_N/opt|DIR\\s\n"
       "script message \"Removing remote temporary directory /scratch/.tm_N/\"\n"},
      {TLHostKind::win32, "win", "C:\\tmp", "C:\\tmp\\tm_Nopt\\case.run",
       "tlrsh|-l|me|win|md C:\\tmp\\tm_N\ntlrcp|-b|-r|DIR\\s\\opt|win.me:C:\\tmp\\tm_N\n",
       "tlrcp|-b|-r|win.me:C:\\tmp\\tm_Nopt|DIR\\s\n"
       "script message \"Removing remote temporary directory C:\\\\tmp\\\\tm_N\"\n"
       "tlrsh|-l|me|win|del /q C:\\tmp\\tm_N\\*.*\ntlrsh|-l|me|win|rd C:\\tmp\\tm_N\n"},
      {TLHostKind::win32, "here", "C:\\tmp", "DIR\\s\\opt\\case.run", "", ""},
  };
  for (const auto& test : cases) {
    SCOPED_TRACE(std::string(test.host) + test.root);
    use(test.form);
    makeStep("Sculpt3d", test.host, {local("s/opt/case.run")});
    step->remoteTmpDir = test.root;
    EXPECT_EQ(log(&TLHostTransfer::removeRemoteResults, 1), "") << "nothing was made";
    EXPECT_EQ(log(kOptimiser, 1), test.there);
    EXPECT_EQ(normal(value()), test.value);
    if (*test.back == '\0') continue;
    EXPECT_EQ(log(kBack, 1), test.back);
  }
}

TEST_F(Transfers, OfResultsKeepTheLocalRunFile) {
  std::string expected =
      "script message \"Retrieving files far.me:/tmp/.tm_N/duct.run\"\n"
      "tlrcp|-b|far.me:/tmp/.tm_N/m.adf|DIR/w/m.adf\n"
      "tlrcp|-b|far.me:/tmp/.tm_N/m.cgns|DIR/w/m.cgns\n"
      "tlrcp|-b|far.me:/tmp/.tm_N/duct.*|DIR/w\n"
      "tlrcp|-b|far.me:/tmp/.tm_N/duct_p*|DIR/w\n"
      "tlrcp|-b|far.me:/tmp/.tm_N/duct_t*|DIR/w\n"
      "tlrcp|-b|far.me:/tmp/.tm_N/duct_iter*.wall|DIR/w\n"
      "script message \"Retrieving files far.me:/tmp/.tm_N/duct.steering\"\n"
      "tlrcp|-b|far.me:/tmp/.tm_N/duct.stee.*|DIR/w\n"
      "tlrcp|-b|far.me:/tmp/.tm_N/duct.stee_t*|DIR/w\n"
      "script message \"Removing remote temporary directory: /tmp/.tm_N/\"\n"
      "tlrsh|-l|me|far|/bin/rm -f /tmp/.tm_N//*.*\n"
      "tlrsh|-l|me|far|/bin/rm -rf /tmp/.tm_N/\n";
  for (const auto form : {TLHostKind::posix, TLHostKind::win32}) {
    use(form);
    if (win32_) {
      expected = std::regex_replace(expected, std::regex("DIR/w/"), "DIR\\w\\");
      expected = std::regex_replace(expected, std::regex("DIR/w"), "DIR\\w");
    }
    const std::string text = std::regex_replace(fullProject(dir), std::regex(dir.path()),
                                                win32_ ? "C:" + dir.path() : dir.path());
    dir.write("w/duct.run", text);
    dir.write("w/duct_p0.ahex", "");
    dir.write("w/duct.runtmp", "left over");
    makeStep("VELSTRA", "far", {local("w/duct.run"), local("w/duct.steering")});
    step->remoteRunDir = "/tmp/.tm_70001/";
    // The far run file arrives over the local one, as a copy of "duct.*" brings it.
    behave(
        "case \"$*\" in *duct.\\**) echo far > '" + dir.file("w/duct.run") +
        "';; *duct_t\\**) echo \"scp: /tmp/.tm_70001/duct_t*: No such file or directory\";; esac");
    EXPECT_EQ(log(kBack, 1), expected);
    EXPECT_EQ(dir.read("w/duct.run"), text);
    EXPECT_FALSE(dir.has("w/duct.runtmp"));
  }
}

TEST_F(Transfers, OfResultsOfAWindowsHostHaveTheNameOfTheDirectoryInFront) {
  makeStep("VELSTRA", "win", {dir.write("w/duct.run", "no project")});
  step->remoteRunDir = "C:\\tmp\\tm_70001";
  EXPECT_EQ(log(kBack, 1),
            "script message \"Retrieving files win.me:C:\\\\tmp\\\\tm_Nduct.run\"\n"
            "tlrcp|-b|win.me:C:\\tmp\\tm_Nduct.*|DIR/w\n"
            "tlrcp|-b|win.me:C:\\tmp\\tm_Nduct_t*|DIR/w\n"
            "script message \"Removing remote temporary directory: C:\\\\tmp\\\\tm_N\"\n"
            "tlrsh|-l|me|win|del /q C:\\tmp\\tm_N\\*.*\n"
            "tlrsh|-l|me|win|rd C:\\tmp\\tm_N\n");
}

TEST_F(Transfers, OfResultsThatFailLeaveThemThere) {
  const std::string text = fullProject(dir);
  makeStep("VELSTRA", "far", {dir.write("w/duct.run", text)});
  step->remoteRunDir = "/tmp/.tm_70001/";
  behave("case \"$*\" in *_t\\**) echo 'ssh: connection timed out';; esac");
  EXPECT_THAT(log(kBack, 1),
              testing::AllOf(Not(HasSubstr("tlrsh")),
                             HasSubstr("failed: ssh: connection timed out\""),  // and goes on
                             HasSubstr("tlrcp|-b|far.me:/tmp/.tm_N/duct_iter*.wall|DIR/w\n")));
  EXPECT_EQ(step->transfer.keptDirectory, "/tmp/.tm_70001/");
  EXPECT_EQ(dir.read("w/duct.run"), text);
  // Nothing comes in the place of a run file that can't be saved before.
  behave("");
  std::filesystem::create_symlink(dir.write("victim", text), dir.file("w/duct.runtmp"));
  EXPECT_THAT(log(kBack, 1), testing::AllOf(Not(HasSubstr("duct.*|")), Not(HasSubstr("tlrsh")),
                                            HasSubstr("could not be saved")));
  EXPECT_EQ(dir.read("victim"), text);
  std::filesystem::remove(dir.file("w/duct.runtmp"));
  // Everything arrives at last.
  EXPECT_THAT(log(kBack, 1), HasSubstr("-rf /tmp/.tm_N/\n"));
  EXPECT_EQ(step->transfer.keptDirectory, "");
}

TEST_F(Transfers, OfResultsRunOneAtATimeAndEndWithTheHybridMesher) {
  makeStep("VELSTRA", "far", {dir.file("w/duct.dat")});
  step->remoteRunDir = "/tmp/.tm_70001/";
  recordedScript().answer = [this](const RWCString& line) {
    if (line.find("Retrieving") != RWCString::npos) {
      EXPECT_EQ(transfer.retrieveResults(*step), 0);
    }
    return 0;
  };
  log(kBack, 1);
  makeStep("VELSTRA", "here", {});
  step->executable = "bramoshhybrid";
  log(kBack, 1);
  log(kBack, 0);
}

TEST_F(Transfers, OfAFailedStartAreRemoved) {
  const struct {
    const char* host;
    const char* directory;
    const char* expected;
  } cases[] = {
      {"far", "", ""},
      {"far", "/tmp/x $(y)*/.tm_70001/",
       "script message \"Removing remote temporary directory /tmp/x \\$(y)*/.tm_N/\"\n"
       "tlrsh|-l|me|far|/bin/rm -rf /tmp/x\\ \\$\\(y\\)\\*/.tm_N/\n"},
      {"win", "C:\\my tmp\\tm_70001",
       "script message \"Removing remote temporary directory C:\\\\my tmp\\\\tm_N\"\n"
       "tlrsh|-l|me|win|del /q \"C:\\my tmp\\tm_N\\*.*\"\n"
       "tlrsh|-l|me|win|rmdir \"C:\\my tmp\\tm_N\"\n"},
      {"win", "C:\\$$`(touch x)\"`y`\\tm_70001", "|rmdir \"C:\\(touch x)y\\tm_N\"\n"},
      {"here", "C:\\tmp\\tm_70001", ""},
  };
  for (const auto& test : cases) {
    makeStep("VELSTRA", test.host, {"a.run"});
    step->remoteRunDir = test.directory;
    transfer.removeRemoteDir(*step);
    EXPECT_THAT(normal(dir.read("log")), testing::EndsWith(test.expected));
    EXPECT_EQ(dir.read("log").empty(), *test.expected == '\0') << test.directory;
  }
}

}  // namespace
