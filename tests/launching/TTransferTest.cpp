#include <gmock/gmock.h>

#include <filesystem>
#include <regex>
#include <sstream>

#include "doubles/TLScriptRecording.h"
#include "doubles/TLVirtualMachineRecording.h"
#include "launching/TLHostTransfer.h"
#include "launching/TLLaunchPlan.h"
#include "launching/TLLaunching.h"
#include "launching/TLRemPathMapping.h"
#include "platform/TLConsole.h"
#include "platform/TLHostForm.h"
#include "platform/TTempDir.h"
#include "support/Definitions.h"
#include "support/FullProject.h"
#include "support/RunFileGenerator.h"
#include "taskengine/TLSubTask.h"

namespace {

using testing::HasSubstr;
using testing::Not;

/// A step of host "far" (UNIX) or "win" (Windows), and a suite whose remote tools write down the
/// words they got. Everything that is said or done stands in `log`, in its order; the test's
/// directory as DIR and the number of the run's directory as N.
class Transfers : public testing::Test {
 protected:
  void SetUp() override { use(TLHostKind::posix); }
  void TearDown() override { exchangeHostForm(std::move(former_)); }

  void use(TLHostKind form) {
    win32_ = form == TLHostKind::win32;
    auto old = exchangeHostForm(win32_ ? makeWin32Form() : makePosixForm());
    if (!former_) former_ = std::move(old);
    talvenDir_.reset();
    tmpDir_.reset();
    talvenDir_ = std::make_unique<TVariable>("TALVEN_DIR", local("suite"));
    tmpDir_ = std::make_unique<TVariable>("TMP_DIR", local("tmp"));
    dir.write("tmp/.keep", "");
    const std::string suffix = win32_ ? ".bat" : "";
    for (const char* name : {"tlrsh", "tlrcp"}) {
      dir.write(std::string("suite/bin/") + name + suffix,
                "#!/bin/sh\n{ printf %s '" + std::string(name) +
                    "'; for i; do printf '|%s' \"$i\"; done; echo; } >> '" + dir.file("log") +
                    "'\n. '" + dir.file("behaviour") + "'\nexit 0\n",
                true);
    }
    // The table of file commands is made once in a process: these stand in for both forms.
    for (const std::string name : {"rm", "cp"}) {
      dir.write("suite/bin/" + name,
                "#!/bin/sh\nfor i; do set -- \"$@\" \"$(printf %s \"${i#C:}\" | tr '\\\\' /)\"; "
                "shift; done\nexec /bin/" +
                    name + " \"$@\"\n",
                true);
    }
    behave("");
    resetRecordedScript();
    resetRecordedVirtualMachine();
    recordedVirtualMachine().ownHost = "here";
    recordedVirtualMachine().hosts = {{1, "here", "LINUX64", 1000, 1},
                                      {2, "far", "LINUX64", 1000, 1},
                                      {3, "win", "WIN32", 1000, 1}};
    recordedScript().answer = [this](const RWCString& line) {
      if (line != "update") append("script " + line + "\n");
      return 0;
    };
  }

  /// What both tools do behind their note: shell lines, with their words in $*.
  void behave(const std::string& lines) const { dir.write("behaviour", lines + "\n"); }
  void append(const std::string& text) const {
    std::ofstream(dir.file("log"), std::ios::app) << text;
  }
  std::string local(const std::string& name) const {
    return win32_ ? "C:" + backslashes(dir.file(name)) : dir.file(name);
  }
  static std::string backslashes(std::string path) {
    for (char& c : path) c = c == '/' ? '\\' : c;
    return path;
  }

  /// A fresh step on `host` with these marked arguments.
  void makeStep(const std::string& name, const std::string& host,
                const std::vector<std::string>& values) {
    step = makeHandle<TLSubTask>();
    step->name = name;
    step->hostName = host;
    step->remoteLogin = "me";
    step->remoteTmpDir = host == "win" ? "C:\\tmp" : "/tmp";
    for (const auto& value : values) {
      step->arguments.append("none", value);
      step->arguments.entries().back()->setLocalFile(1);
    }
    step->spawnArguments.assign(step->arguments);
    step->updateHostKind();
    dir.write("log", "");
  }

  std::string log() const { return normal(dir.read("log")); }
  std::string normal(std::string text) const {
    const std::string here = backslashes(dir.path());
    const std::string doubled = std::regex_replace(here, std::regex("\\\\"), "\\\\");
    for (const auto& path : {dir.path(), "C:" + doubled, "C:" + here, here}) {
      for (auto at = text.find(path); at != std::string::npos; at = text.find(path)) {
        text.replace(at, path.size(), "DIR");
      }
    }
    text = std::regex_replace(text, std::regex("tm_[0-9]*0001"), "tm_N");
    return std::regex_replace(text, std::regex("task_manager_receive_message"), "message");
  }
  std::string value(int entry = 0) const {
    return std::regex_replace(step->spawnArguments.at(entry)->value(), std::regex("tm_[0-9]*0001"),
                              "tm_N");
  }
  template <class Call>
  auto run(Call call) {
    std::ostringstream discarded;
    const TLConsoleRedirect redirect(discarded);
    auto result = call();
    told = std::regex_replace(normal(discarded.str()), std::regex("BOUNDARY CONDITION.*\n"), "");
    return result;
  }

  TTempDir dir;
  TVariable path{"PATH", dir.file("suite/bin") + ":" + std::getenv("PATH")};
  Definitions definitions;
  Handle<TLSubTask> step;
  TLHostTransfer transfer;
  std::string told;
  bool win32_ = false;

 private:
  std::unique_ptr<TLHostForm> former_;
  std::unique_ptr<TVariable> talvenDir_;
  std::unique_ptr<TVariable> tmpDir_;
};

TEST_F(Transfers, OfArgumentsGoOneByOne) {
  struct Case {
    TLHostKind form;
    const char* host;
    const char* expected;
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
       "script message remote_transfered\n"},
      {TLHostKind::win32, "win",
       "tlrsh|-l|me|win|md C:\\tmp\\tm_N\n"
       "script message \"Transfering project to win OS: WIN32 with Login: me\"\n"
       "script message \"Copying Argument File DIR\\\\w\\\\a.dat to dir: C:\\\\tmp\\\\tm_N \"\n"
       "tlrcp|-b|DIR\\w\\a.dat|win.me:C:\\tmp\\tm_Na.dat\n"
       "script message remote_transfered\n"
       "tlrsh|-l|me|win|md C:\\tmp\\tm_N\n"
       "script message \"Transfering project to win OS: WIN32 with Login: me\"\n"
       "script message \"Copying Argument File DIR\\\\w\\\\m.zyv to dir: C:\\\\tmp\\\\tm_N \"\n"
       "script message remote_transfered\n"},
  };
  for (const auto& test : cases) {
    SCOPED_TRACE(test.host);
    use(test.form);
    dir.write("w/a.dat", "plain");
    makeStep("VELSTRA", test.host, {local("w/a.dat"), local("w/m.zyv")});
    EXPECT_EQ(run([&] { return transfer.transferStep(*step); }), 0);
    EXPECT_EQ(log(), test.expected);
    const bool win = step->hostName == "win";
    EXPECT_EQ(value(1), win ? "C:\\tmp\\tm_Nm.zyv" : "/tmp/.tm_N/m.zyv");
    EXPECT_STREQ(std::getenv("RPWD"), win ? "$PWD" : "none");
    const std::string directory = step->remoteRunDir;
    step->spawnArguments.assign(step->arguments);
    run([&] { return transfer.transferStep(*step); });
    EXPECT_EQ(step->remoteRunDir, directory) << "a second start keeps it";
    step->remoteLogin.clear();
    dir.write("log", "");
    step->spawnArguments.assign(step->arguments);
    run([&] { return transfer.transferStep(*step); });
    EXPECT_THAT(log(), Not(HasSubstr("tlrcp")));
    EXPECT_THAT(log(), HasSubstr("with Login: \"\n"));
    EXPECT_THAT(log(), HasSubstr("remote_transfered"));
    EXPECT_EQ(value(0), win ? "C:\\tmp\\tm_Na.dat" : "/tmp/.tm_N/a.dat");
  }
}

TEST_F(Transfers, OfAProjectTakeAllThatBelongsToIt) {
  dir.write("w/duct.run", fullProject(dir));
  const std::string original = dir.read("w/duct.run");
  makeStep("VELSTRA", "far", {dir.file("w/duct.run")});
  behave("[ \"$2\" != '" + dir.file("w/duct.runtmp") + "' ] || cp \"$2\" '" + dir.file("sent") +
         "'\n[ \"$2\" != '" + dir.file("ref/ref.runtmp") + "' ] || cp \"$2\" '" +
         dir.file("sentref") + "'");
  EXPECT_EQ(run([&] { return transfer.transferStep(*step); }), 0);
  std::string expected;
  for (const char* row : {"ref/ref.runtmp _reftmp.run",
                          "ref/ref.cgns _reftmp.cgns",
                          "ref/rm.zyv _mesh_reftmp.zyv",
                          "ref/rm.cgns _mesh_reftmp.cgns",
                          "ref/rm.adf _mesh_reftmp.adf",
                          "w/m.zyv m.zyv",
                          "w/m.bcs m.bcs",
                          "w/m.cgns m.cgns",
                          "w/m.adf m.adf",
                          "w/g.trb g.trb",
                          "w/g.dat g.dat",
                          "w/tables tables",
                          "old/old.run _initmp.run",
                          "old/old.cgns _initmp.cgns",
                          "old/old.cgns old.cgns",
                          "old/old.res old.res",
                          "w/in.prf in.prf",
                          "w/duct.runtmp duct.run",
                          "w/duct.cgns duct.cgns",
                          "w/duct.cooling-holes duct.cooling-holes",
                          "w/duct.mf duct.mf",
                          "w/duct.me.qvk duct.me.qvk",
                          "w/duct.me.bc duct.me.bc",
                          "w/duct.me.uni duct.me.uni",
                          "w/duct.wall duct.wall"}) {
    const std::string text = row;
    const auto blank = text.find(' ');
    expected += "tlrcp|-b|DIR/" + text.substr(0, blank) + "|far.me:/tmp/.tm_N/" +
                text.substr(blank + 1) + "\n";
  }
  EXPECT_THAT(log(), HasSubstr(" to dir: /tmp/.tm_N/ \"\n" + expected + "script message remote"));
  const std::string far = step->remoteRunDir;
  const std::string sent = dir.read("sent");
  for (const char* name :
       {"m.zyv", "g.trb", "g.dat", "tables", "_reftmp.run", "_initmp.run", "in.prf"}) {
    EXPECT_THAT(sent, HasSubstr(far + name + "\n"));
  }
  EXPECT_THAT(sent, Not(HasSubstr(dir.path())));
  EXPECT_THAT(dir.read("sentref"), HasSubstr(far + "_mesh_reftmp.zyv\n"));
  EXPECT_EQ(dir.read("w/duct.run"), original);
  EXPECT_FALSE(dir.has("w/duct.runtmp")) << "gone again";
  EXPECT_FALSE(dir.has("ref/ref.runtmp"));
}

TEST_F(Transfers, EndWithTheFirstCopyThatFails) {
  dir.write("w/duct.run", fullProject(dir));
  makeStep("VELSTRA", "far", {dir.file("w/duct.run")});
  std::vector<TLTransferProgress> seen;
  setTransferObserver([&] { seen.push_back(step->transfer); });
  behave(
      "case \"$*\" in *g.trb*) echo 'lost at once';; */w/m.cgns*) echo 'scp: disk full';"
      " echo second;; esac");
  EXPECT_EQ(run([&] { return transfer.transferStep(*step); }), 1);
  setTransferObserver(nullptr);
  EXPECT_THAT(
      log(),
      testing::EndsWith("tlrcp|-b|DIR/w/m.cgns|far.me:/tmp/.tm_N/m.cgns\n"
                        "script message \"Copy of DIR/w/m.cgns to far.me:/tmp/.tm_N/m.cgns failed: "
                        "scp: disk full; second\"\n"));
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
  // The geometry's copy isn't looked at.
  behave("case \"$*\" in *g.trb*) echo 'lost';; esac");
  EXPECT_EQ(run([&] { return transfer.transferStep(*step); }), 0);
  // The project's own, and the file of this host goes all the same.
  step->spawnArguments.assign(step->arguments);
  behave("case \"$*\" in *duct.runtmp*) echo 'lost';; esac");
  EXPECT_EQ(run([&] { return transfer.transferStep(*step); }), 1);
  EXPECT_FALSE(dir.has("w/duct.runtmp"));
  // Somebody else's directory.
  behave("case \"$*\" in *mkdir*) exit 73;; esac");
  dir.write("log", "");
  EXPECT_EQ(run([&] { return transfer.transferStep(*step); }), 1);
  EXPECT_THAT(log(), HasSubstr("belongs to somebody else"));
  EXPECT_THAT(log(), Not(HasSubstr("tlrcp")));
}

TEST_F(Transfers, OfUnstructuredRunsHaveDirectoriesOfTheirOwn) {
  unstructuredProject(dir, dir.file("p/_mesh/m.zyv"), dir.file("p/old/old.cgns"));
  makeStep("LUMBRAKE", "far", {dir.file("p/c/c.run"), dir.file("p/c/c.p4pg")});
  behave("case \"$2\" in *runtmp) cp \"$2\" '" + dir.file("sent") + "';; esac; echo ignored");
  EXPECT_EQ(run([&] { return transfer.transferHexa_(*step); }), 0) << "never fails";
  behave("");
  dir.write("log", "");
  step->spawnArguments.assign(step->arguments);
  EXPECT_EQ(run([&] { return transfer.transferHexa_(*step); }), 0);
  EXPECT_EQ(log(),
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

  dir.write("log", "");
  step->status = TLSubTask::Running;
  EXPECT_EQ(run([&] { return transfer.retrieveHexa_(*step); }), 1);
  const std::string fetch =
      "script message \"\nRetrieving files from directory: far:/tmp/.tm_N/*.*\nPlease wait... \"\n"
      "tlrsh|-l|me|far|/bin/rm -f /tmp/.tm_N/c/c.run\n"
      "tlrsh|-l|me|far|/bin/rm -f /tmp/.tm_N/c/c.p4pg\n"
      "tlrcp|-b|-r|far.me:/tmp/.tm_N/c/*|DIR/p/c\n";
  const std::string completed = "script message \"Retrieval completed ! \n\"\n";
  EXPECT_EQ(log(), fetch + completed) << "the solver goes on there";
  EXPECT_EQ(told, R"(TLSubTask::retrieveHexa_ ... IN
TLSubTask::retrieveHexa_(), treating argument:/tmp/.tm_N/c/c.run
CMD:/bin/rm -f /tmp/.tm_N/c/c.run
TLSubTask::retrieveHexa_(), treating argument:/tmp/.tm_N/c/c.p4pg
)");
  dir.write("log", "");
  EXPECT_EQ(run([&] { return transfer.retrieveResults(*step); }), 1);
  EXPECT_EQ(log(), fetch +
                       "tlrsh|-l|me|far|/bin/rm -f /tmp/.tm_N//*.*\n"
                       "tlrsh|-l|me|far|/bin/rm -rf /tmp/.tm_N/\n" +
                       completed);
  behave("case \"$*\" in *-r*) echo 'connection lost';; esac");
  dir.write("log", "");
  EXPECT_EQ(run([&] { return transfer.retrieveResults(*step); }), 1);
  EXPECT_THAT(log(), Not(HasSubstr("-rf")));
  EXPECT_THAT(log(), HasSubstr("script message \"Retrieval of far.me:/tmp/.tm_N/c/* to DIR/p/c/ "
                               "failed: connection lost\"\nscript message \"What could not be "
                               "fetched is kept on host far in the directory /tmp/.tm_N/\"\n"));
  EXPECT_EQ(step->transfer.keptDirectory, far);
  dir.write("log", "");
  run([&] { return transfer.removeRemoteDir(*step), 0; });
  EXPECT_EQ(log(), "") << "results are there";
  // Gone without this process: said once, and not again behind the removal.
  const std::string gone =
      "case \"$*\" in *-r*) echo \"scp: " + far + "c/*: No such file or directory\";; esac";
  step->spawnArguments.assign(step->arguments);
  run([&] { return transfer.transferHexa_(*step); });
  behave(gone);
  run([&] { return transfer.retrieveResults(*step); });
  EXPECT_THAT(log(), HasSubstr("No such file or directory\"\n"));
  behave("");
  run([&] { return transfer.retrieveResults(*step); });
  behave(gone);
  dir.write("log", "");
  run([&] { return transfer.retrieveResults(*step); });
  EXPECT_THAT(log(), Not(HasSubstr("No such file")));
}

TEST_F(Transfers, OfUnstructuredRunsToWindowsGoBesideTheDirectory) {
  use(TLHostKind::win32);
  unstructuredProject(dir, local("p/_mesh/m.zyv"), local("p/old/old.run"));
  makeStep("DORVEX", "win", {local("p/c/c.run")});
  step->remoteLogin.clear();
  EXPECT_EQ(run([&] { return transfer.transferHexa_(*step); }), 0);
  EXPECT_THAT(log(), HasSubstr("tlrsh|win|md C:\\tmp\\tm_N_mesh\n"
                               "tlrcp|-b|DIR\\p\\_mesh\\m.*|win:C:\\tmp\\tm_N_mesh\n"
                               "tlrsh|win|md C:\\tmp\\tm_Nc\n"
                               "tlrsh|win|md C:\\tmp\\tm_Nc__INIT_SOL_1__\n"
                               "tlrcp|-b|DIR\\p\\old\\old.*|win:C:\\tmp\\tm_Nc__INIT_SOL_1__\n"
                               "tlrcp|-b|DIR\\p\\c\\c.runtmp|win:C:\\tmp\\tm_Nc\\c.run\n"));
  EXPECT_THAT(log(), HasSubstr("\"Remote temporary directory: C:\\\\tmp\\\\tm_N \n"));
  EXPECT_EQ(value(), "C:\\tmp\\tm_Nc/c.run");
  dir.write("log", "");
  run([&] { return transfer.retrieveResults(*step); });
  EXPECT_THAT(log(), HasSubstr("tlrsh|win|del /q C:\\tmp\\tm_Nc/c.run\n"
                               "tlrcp|-b|-r|win:C:\\tmp\\tm_Nc\"* DIR\\p\\c \n"
                               "tlrsh|win|del /q C:\\tmp\\tm_N\\*.*\n"
                               "tlrsh|win|rd C:\\tmp\\tm_N\n"));
  // A run file that can't be read isn't carried, and what lies here stays.
  dir.write("p/c/c.run", "no project\n");
  makeStep("DORVEX", "win", {local("p/c/c.run")});
  EXPECT_EQ(run([&] { return transfer.transferHexa_(*step); }), 0);
  EXPECT_EQ(step->spawnArguments.at(0)->value(), local("p/c/c.run"));
  run([&] { return transfer.retrieveResults(*step); });
  EXPECT_THAT(log(), Not(HasSubstr("c.run\n")));
}

TEST_F(Transfers, OfTheShapeOptimiserTakeItsDirectory) {
  struct Case {
    TLHostKind form;
    const char* host;
    const char* root;
    const char* value;
    const char* there;
    const char* back;
    const char* removal;
  };
  const Case cases[] = {
      {TLHostKind::posix, "far", "/tmp", "/tmp/.tm_N/opt/case.run",
       "tlrsh|-l|me|far|mkdir -p /tmp/.tm_N/\ntlrcp|-b|-r|DIR/s/opt|far.me:/tmp/.tm_N\n",
       "tlrcp|-b|-r|far.me:/tmp/.tm_N/opt|DIR/s\n"
       "script message \"Removing remote temporary directory /tmp/.tm_N/\"\n",
       "tlrsh|-l|me|far|/bin/rm -f /tmp/.tm_N//*.*\ntlrsh|-l|me|far|/bin/rm -rf /tmp/.tm_N/\n"},
      {TLHostKind::win32, "far", "/scratch", "/scratch/.tm_N/opt\\case.run",
       "tlrsh|-l|me|far|mkdir -p /scratch/.tm_N/\n"
       "tlrcp|-b|-r|DIR\\s\\opt|far.me:/scratch/.tm_N\n",
       "tlrcp|-b|-r|far.me:/scratch/.tm_N/opt|DIR\\s\n"
       "script message \"Removing remote temporary directory /scratch/.tm_N/\"\n",
       ""},
      {TLHostKind::win32, "win", "C:\\tmp", "C:\\tmp\\tm_Nopt\\case.run",
       "tlrsh|-l|me|win|md C:\\tmp\\tm_N\ntlrcp|-b|-r|DIR\\s\\opt|win.me:C:\\tmp\\tm_N\n",
       "tlrcp|-b|-r|win.me:C:\\tmp\\tm_Nopt|DIR\\s\n"
       "script message \"Removing remote temporary directory C:\\\\tmp\\\\tm_N\"\n",
       "tlrsh|-l|me|win|del /q C:\\tmp\\tm_N\\*.*\ntlrsh|-l|me|win|rd C:\\tmp\\tm_N\n"},
  };
  for (const auto& test : cases) {
    SCOPED_TRACE(test.root);
    use(test.form);
    makeStep("Sculpt3d", test.host, {local("s/opt/case.run")});
    step->remoteTmpDir = test.root;
    EXPECT_EQ(run([&] { return transfer.removeRemoteResults(*step); }), 1);
    EXPECT_EQ(log(), "") << "nothing was made";
    EXPECT_EQ(run([&] { return transfer.transferSculpt(*step); }), 1);
    EXPECT_EQ(log(), test.there);
    EXPECT_EQ(value(), test.value);
    dir.write("log", "");
    EXPECT_EQ(run([&] { return transfer.retrieveResults(*step); }), 1);
    EXPECT_EQ(log(), std::string(test.back) + test.removal);
  }
  makeStep("Sculpt3d", "here", {dir.file("s/opt/case.run")});
  EXPECT_EQ(run([&] { return transfer.transferSculpt(*step); }), 1);
  EXPECT_EQ(log() + step->remoteRunDir, "");
}

TEST_F(Transfers, OfResultsKeepTheLocalRunFile) {
  for (const auto form : {TLHostKind::posix, TLHostKind::win32}) {
    use(form);
    fullProject(dir);
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
    EXPECT_EQ(run([&] { return transfer.retrieveResults(*step); }), 1);
    const std::string w = win32_ ? "DIR\\w" : "DIR/w";
    const std::string steering = "/tmp/.tm_N/duct.stee";
    EXPECT_EQ(log(),
              "script message \"Retrieving files far.me:/tmp/.tm_N/duct.run\"\n"
              "tlrcp|-b|far.me:/tmp/.tm_N/m.adf|" +
                  w + (win32_ ? "\\" : "/") +
                  "m.adf\n"
                  "tlrcp|-b|far.me:/tmp/.tm_N/m.cgns|" +
                  w + (win32_ ? "\\" : "/") +
                  "m.cgns\n"
                  "tlrcp|-b|far.me:/tmp/.tm_N/duct.*|" +
                  w +
                  "\n"
                  "tlrcp|-b|far.me:/tmp/.tm_N/duct_p*|" +
                  w +
                  "\n"
                  "tlrcp|-b|far.me:/tmp/.tm_N/duct_t*|" +
                  w +
                  "\n"
                  "tlrcp|-b|far.me:/tmp/.tm_N/duct_iter*.wall|" +
                  w +
                  "\n"
                  "script message \"Retrieving files far.me:/tmp/.tm_N/duct.steering\"\n"
                  "tlrcp|-b|far.me:" +
                  steering + ".*|" + w +
                  "\n"
                  "tlrcp|-b|far.me:" +
                  steering + "_t*|" + w +
                  "\n"
                  "script message \"Removing remote temporary directory: /tmp/.tm_N/\"\n"
                  "tlrsh|-l|me|far|/bin/rm -f /tmp/.tm_N//*.*\n"
                  "tlrsh|-l|me|far|/bin/rm -rf /tmp/.tm_N/\n");
    EXPECT_EQ(dir.read("w/duct.run"), text);
    EXPECT_FALSE(dir.has("w/duct.runtmp"));
  }
}

TEST_F(Transfers, OfResultsOfAWindowsHostHaveTheNameOfTheDirectoryInFront) {
  makeStep("VELSTRA", "win", {dir.write("w/duct.run", "no project")});
  step->remoteRunDir = "C:\\tmp\\tm_70001";
  EXPECT_EQ(run([&] { return transfer.retrieveResults(*step); }), 1);
  EXPECT_EQ(log(),
            "script message \"Retrieving files win.me:C:\\\\tmp\\\\tm_Nduct.run\"\n"
            "tlrcp|-b|win.me:C:\\tmp\\tm_Nduct.*|DIR/w\n"
            "tlrcp|-b|win.me:C:\\tmp\\tm_Nduct_t*|DIR/w\n"
            "script message \"Removing remote temporary directory: C:\\\\tmp\\\\tm_N\"\n"
            "tlrsh|-l|me|win|del /q C:\\tmp\\tm_N\\*.*\n"
            "tlrsh|-l|me|win|rd C:\\tmp\\tm_N\n");
}

TEST_F(Transfers, OfResultsThatFailLeaveThemThere) {
  dir.write("w/duct.run", fullProject(dir));
  const std::string text = dir.read("w/duct.run");
  makeStep("VELSTRA", "far", {dir.file("w/duct.run")});
  step->remoteRunDir = "/tmp/.tm_70001/";
  behave("case \"$*\" in *_t\\**) echo 'ssh: connection timed out';; esac");
  EXPECT_EQ(run([&] { return transfer.retrieveResults(*step); }), 1);
  EXPECT_THAT(log(), Not(HasSubstr("tlrsh")));
  EXPECT_THAT(log(), HasSubstr("tlrcp|-b|far.me:/tmp/.tm_N/duct_iter*.wall|DIR/w\n"))
      << "the others are still fetched";
  EXPECT_THAT(log(), HasSubstr("failed: ssh: connection timed out\""));
  EXPECT_EQ(step->transfer.keptDirectory, "/tmp/.tm_70001/");
  EXPECT_EQ(dir.read("w/duct.run"), text);
  // Nothing comes in the place of a run file that can't be saved before.
  behave("");
  dir.write("log", "");
  const std::string victim = dir.write("victim", "TALVEN_PROJECT_FILE   VERSION 1210\n");
  std::filesystem::create_symlink(victim, dir.file("w/duct.runtmp"));
  run([&] { return transfer.retrieveResults(*step); });
  EXPECT_THAT(log(), Not(testing::AnyOf(HasSubstr("duct.*|"), HasSubstr("tlrsh"))));
  EXPECT_THAT(log(), HasSubstr("could not be saved"));
  EXPECT_EQ(dir.read("victim"), "TALVEN_PROJECT_FILE   VERSION 1210\n");
  std::filesystem::remove(dir.file("w/duct.runtmp"));
  // Everything arrives at last.
  run([&] { return transfer.retrieveResults(*step); });
  EXPECT_THAT(log(), HasSubstr("-rf /tmp/.tm_N/\n"));
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
  EXPECT_EQ(run([&] { return transfer.retrieveResults(*step); }), 1);
  makeStep("VELSTRA", "here", {});
  step->executable = "bramoshhybrid";
  EXPECT_EQ(run([&] { return transfer.retrieveResults(*step); }), 1);
  EXPECT_EQ(run([&] { return transfer.retrieveResults(*step); }), 0);
}

TEST_F(Transfers, OfAFailedStartAreRemoved) {
  makeStep("VELSTRA", "far", {"a.run"});
  const auto discard = [&] {
    dir.write("log", "");
    run([&] { return transfer.removeRemoteDir(*step), 0; });
    return log();
  };
  EXPECT_EQ(discard(), "") << "nothing was made";
  step->remoteRunDir = "/tmp/x $(y)*/.tm_70001/";
  EXPECT_EQ(discard(),
            "script message \"Removing remote temporary directory /tmp/x \\$(y)*/.tm_N/\"\n"
            "tlrsh|-l|me|far|/bin/rm -rf /tmp/x\\ \\$\\(y\\)\\*/.tm_N/\n");
  step->hostName = "win";
  step->isWin32Host = 1;
  step->remoteRunDir = "C:\\my tmp\\tm_70001";
  EXPECT_EQ(discard(),
            "script message \"Removing remote temporary directory C:\\\\my tmp\\\\tm_N\"\n"
            "tlrsh|-l|me|win|del /q \"C:\\my tmp\\tm_N\\*.*\"\n"
            "tlrsh|-l|me|win|rmdir \"C:\\my tmp\\tm_N\"\n");
  step->remoteRunDir = "C:\\$$`(touch x)\"`y`\\tm_70001";
  EXPECT_THAT(discard(), HasSubstr("|rmdir \"C:\\(touch x)y\\tm_N\"\n"));
  step->hostName = "here";
  EXPECT_EQ(discard(), "");
}

// ---- with the tools of the installation --------------------------------------------------------

/// The real tlrsh and tlrcp, over a stand-in for ssh that runs the far command on this host.
class RealTools : public Transfers {
 protected:
  RealTools()
      : ssh_("TL_SSH", dir.write("ssh",
                                 "#!/bin/sh\nwhile [ \"$1\" != -- ]; do shift; done\nshift\n"
                                 "shift\nexec sh -c \"$*\"\n",
                                 true)),
        suite_("TALVEN_DIR", std::string(TL_SHARE_DIR)) {}
  void SetUp() override {
    Transfers::SetUp();
    setenv("TALVEN_DIR", TL_SHARE_DIR, 1);
    std::filesystem::create_directory(dir.file("far"));
  }
  void makeStep(const std::string& name, const std::vector<std::string>& values) {
    Transfers::makeStep(name, "far", values);
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
    EXPECT_EQ(run([&] { return transfer.transferStep(*step); }), 0) << log();
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
    EXPECT_EQ(run([&] { return transfer.retrieveResults(*step); }), 1);
    EXPECT_EQ(dir.read("w/" + stem + ".cgns"), "result") << log();
    EXPECT_EQ(dir.read("w/" + stem + "_t1.cgns"), "in time");
    EXPECT_EQ(dir.read("w/" + stem + "_iter5.wall"), "walls");
    EXPECT_EQ(dir.read("w/" + stem + ".run"), text);
    EXPECT_FALSE(dir.has("w/" + stem + ".runtmp"));
    EXPECT_FALSE(dir.has(there(""))) << log();
    EXPECT_EQ(step->transfer.problem, "");
  }
}

TEST_F(RealTools, CarryTheOtherWaysThereAndBack) {
  unstructuredProject(dir, dir.file("p/_mesh/m.zyv"), dir.write("p/old/old.run", "old"));
  makeStep("LUMBRAKE", {dir.file("p/c/c.run"), dir.file("p/c/c.p4pg")});
  const std::string text = dir.read("p/c/c.run");
  EXPECT_EQ(run([&] { return transfer.transferHexa_(*step); }), 0);
  EXPECT_EQ(dir.read(there("_mesh/m.zyv")) + dir.read(there("c/c.p4pg")) +
                dir.read(there("c__INIT_SOL_1__/old.run")),
            "meshhostsold");
  dir.write(there("c/c.cgns"), "result");
  dir.write(there("c/deeper/x"), "deep");
  run([&] { return transfer.retrieveResults(*step); });
  EXPECT_EQ(dir.read("p/c/c.cgns") + dir.read("p/c/deeper/x"), "resultdeep") << log();
  EXPECT_EQ(dir.read("p/c/c.run"), text);
  EXPECT_FALSE(dir.has(there("")));

  makeStep("Sculpt3d", {dir.write("s/o p/case.run", "case")});
  step->remoteTmpDir = dir.file("far/tmp");
  EXPECT_EQ(run([&] { return transfer.transferSculpt(*step); }), 1);
  EXPECT_EQ(dir.read(there("o p/case.run")), "case") << log();
  dir.write(there("o p/gen/1"), "best");
  run([&] { return transfer.retrieveResults(*step); });
  EXPECT_EQ(dir.read("s/o p/gen/1"), "best") << log();
  EXPECT_FALSE(dir.has(there("")));

  // A directory that can't be made: the copy says why, and the start has failed.
  makeStep("VELSTRA", {dir.write("w/a.dat", "a")});
  step->remoteTmpDir = dir.write("file", "no directory");
  EXPECT_EQ(run([&] { return transfer.transferStep(*step); }), 1);
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

TEST_F(Transfers, AreThoseOfThePlan) {
  setTransfer(&transfer);
  fullProject(dir);
  unstructuredProject(dir, dir.file("gone/m.zyv"), dir.file("gone/old.run"));
  std::filesystem::remove_all(dir.file("p/_mesh"));  // a star stands as it is where nothing matches
  struct Case {
    const char* name;
    const char* executable;
    std::vector<std::string> values;
    int queue;
    std::size_t actions;
  };
  const Case cases[] = {
      {"VELSTRA", "velstraTurbo", {"w/duct.run", "w/duct.steering"}, 0, 28},
      {"VELSTRA", "velstraTurbo", {"w/duct.run"}, 1, 30},
      {"LUMBRAKE", "lumbrakesp", {"p/c/c.run", "p/c/c.p4pg"}, 0, 8},
      {"Sculpt3d", "sculpt3d", {"w/duct.run"}, 0, 2},
  };
  for (const auto& test : cases) {
    SCOPED_TRACE(test.name);
    dir.write("w/duct.run", fullProject(dir));
    dir.write("w/duct.steering", "steering");
    dir.write("w/duct.sge", "#!/bin/sh\n\n# COMPUTATION SETTINGS\n");
    std::vector<std::string> values;
    for (const auto& name : test.values) values.push_back(dir.file(name));
    makeStep(test.name, "far", values);
    step->executable = test.executable;
    step->loadBalancing.queuingSystemActivated = test.queue;
    step->loadBalancing.queuingSystemQueue = "mpi";
    step->loadBalancing.nbQueuingSystemProcessor = 2;
    recordedVirtualMachine().spawns.clear();
    TLRemPathMapping mapping("remote paths.txt", false);
    const TLLaunchPlan plan =
        run([&] { return planLaunch(*step, false, launchSite(), &readRunFileFacts, mapping); });
    EXPECT_EQ(plan.actions.size(), test.actions);
    EXPECT_EQ(log(), "") << "a plan does nothing";
    EXPECT_EQ(run([&] { return launching().startStep(*step); }), 0);
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
  }
  setTransfer(nullptr);
}

}  // namespace
