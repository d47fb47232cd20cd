#include <gmock/gmock.h>

#include <memory>
#include <sstream>

#include "doubles/TLScriptRecording.h"
#include "launching/TLCommands.h"
#include "launching/TLPathText.h"
#include "platform/TLConsole.h"
#include "platform/TTempDir.h"
#include "support/RecordingTool.h"

namespace {

using testing::ElementsAre;

TEST(PathText, HelpersChangeWhatTheySay) {
  EXPECT_EQ(stripTrailingSlashes("a/b\\/"), "a/b");
  EXPECT_EQ(stripTrailingSlashes("\\/"), "");
  EXPECT_EQ(collapseBackslashes("\\\\\\\\a\\\\\\b"), "\\\\a\\\\b");
  EXPECT_EQ(doubleBackslashes("a\\b"), "a\\\\b");
  EXPECT_EQ(quoteWithStar("C:\\a\\*"), "\"C:\\a\\\"*");
  EXPECT_EQ(quoteWithStar("*.*"), "\"*.\"*");
  EXPECT_EQ(quoteWithStar("a b"), "\"a b\"");
  EXPECT_EQ(escapeForShell("a!b$c d"), "a\\!b\\\"\\\\$\\\"c d");
  EXPECT_EQ(escapeForRemoteUnix("a b!c(d)"), "a\\ b\\\\!c\\(d\\)");
  EXPECT_EQ(escapeForRemoteUnix("#%&':@[]{}$;"), "\\#\\%\\&\\'\\:\\@\\[\\]\\{\\}$;");
}

/// A suite whose remote tools and file commands write down the words they got.
class Primitives : public testing::TestWithParam<TLHostKind> {
 protected:
  void SetUp() override {
    resetRecordedScript();
    const bool win32 = GetParam() == TLHostKind::win32;
    former_ = exchangeHostForm(win32 ? makeWin32Form(dir_.path()) : makePosixForm());
    const std::string suffix = win32 ? ".bat" : "";
    for (const char* name : {"tlrsh", "tlrcp"}) {
      dir_.write(std::string("suite/bin/") + name + suffix,
                 recordingTool(dir_.file("words"), "cat '" + dir_.file("answer") + "'\nexit 3\n"),
                 true);
    }
    dir_.write("answer", "");
    dir_.write("tmp/.keep", "");
    suite_ = win32 ? "C:\\suite" : dir_.file("suite");
    talvenDir_ = std::make_unique<TVariable>("TALVEN_DIR", suite_);
    tmpDir_ = std::make_unique<TVariable>("TMP_DIR", win32 ? "C:\\tmp" : dir_.file("tmp"));
    dir_.write("suite/bin/rm.exe", "#!/bin/sh\nexit 0\n", true);
    dir_.write("suite/bin/say.exe", "#!/bin/sh\necho $1\n", true);
  }
  void TearDown() override { exchangeHostForm(std::move(former_)); }

  bool win32() const { return GetParam() == TLHostKind::win32; }
  std::string recorded() const { return dir_.read("words"); }
  std::string tool(const char* name) const { return std::string(name) + (win32() ? ".bat" : ""); }

  TTempDir dir_;
  std::string suite_;
  std::unique_ptr<TLHostForm> former_;
  std::unique_ptr<TVariable> talvenDir_;
  std::unique_ptr<TVariable> tmpDir_;
};

TEST_P(Primitives, RemoteExecGoesThroughTheShellOfTheSuiteOnlyForAnotherHost) {
  remoteExec("far.domain.org", "qstat -j 7", "", "");
  remoteExec("far", "mkdir -p /tmp/a", "alice", "");
  EXPECT_EQ(recorded(), tool("tlrsh") + "|far.domain.org|qstat -j 7\n" + tool("tlrsh") +
                            "|-l|alice|far|mkdir -p /tmp/a\n");
  const std::string out = win32() ? "C:\\out" : dir_.file("out");
  const std::string program = win32() ? "C:\\suite\\bin\\say.exe" : "echo";
  remoteExec(hostForm().hostName() + ".some.domain", program + " here", "", out);
  EXPECT_EQ(dir_.read("out"), "here\n");
}

TEST_P(Primitives, RemoteCopyComposesBothSides) {
  EXPECT_EQ(remoteCopy("", win32() ? "C:\\a\\\\b\\" : "/a/b/", "far.alice", "/tmp/x y", "UNIX"), 0);
  EXPECT_EQ(remoteCopy("far", "/tmp/a(1)/*", "", win32() ? "D:\\back" : "/back", "UNIX"), 0);
  EXPECT_EQ(remoteCopy("far", "C:\\tmp\\q.*", "", "here", "WIN32"), 0);
  EXPECT_EQ(remoteCopyTree("far", "/tmp/t", "", "here/", "UNIX"), 1);
  if (!win32()) remoteCopyTree("far", "C:\\\";touch x;\"\\tm_1/*", "", "here", "WIN32");
  const std::string name = tool("tlrcp");
  EXPECT_EQ(recorded(), name + "|-b|" + (win32() ? "\\a\\b" : "/a/b") + "|far.alice:/tmp/x\\ y\n" +
                            name + "|-b|far:/tmp/a\\(1\\)/*|" + (win32() ? "\\back" : "/back") +
                            "\n" + name + "|-b|far:C:\\tmp\\q.*|here\n" + name +
                            "|-b|-r|far:/tmp/t|here\n" +
                            (win32() ? "" : name + "|-b|-r|far:C:\\;touch x;\\tm_1\\*|here\n"));
}

TEST_P(Primitives, WhatACopyPrintsMakesItAFailure) {
  dir_.write("answer", "no such host\n");
  EXPECT_EQ(remoteCopy("", "a", "far", "b", "UNIX"), 1);
  dir_.write("answer", "\nsecond line\n");
  EXPECT_EQ(remoteCopy("", "a", "far", "b", "UNIX"), 0);
  EXPECT_TRUE(recordedScript().errors.empty());
}

TEST_P(Primitives, CommandThatCantStartIsShown) {
  EXPECT_NE(runRedirected("/no/such/tool x", ""), 0);
  EXPECT_THAT(recordedScript().errors,
              ElementsAre("Warning: the execution of the command:/no/such/tool x failed"));
}

TEST_P(Primitives, RemoveLocalTellsWhyItCouldNot) {
  std::ostringstream console;
  const TLConsoleRedirect redirect(console);
  EXPECT_EQ(removeLocal(win32() ? "C:\\none" : dir_.file("none")), 0);
  EXPECT_EQ(console.str(), "Error deleting file: No such file or directory\n");
}

INSTANTIATE_TEST_SUITE_P(Forms, Primitives, testing::Values(TLHostKind::posix, TLHostKind::win32),
                         [](const auto& info) {
                           return info.param == TLHostKind::posix ? "posix" : "win32";
                         });

TEST(LocalFiles, PosixCommandsTakeEveryNameAsData) {
  resetRecordedScript();
  const TTempDir dir;
  for (const std::string name : {"plain.run", "a b", "$HOME", "a'b\"c`id`", "a\\b", "x;y", "s*"}) {
    dir.write(name, name);
    copyLocal(dir.file(name), dir.file("copy"));
    EXPECT_EQ(dir.read("copy"), name);
    moveLocal(dir.file("copy"), dir.file(name + "_moved"));
    EXPECT_EQ(dir.read(name + "_moved"), name);
    EXPECT_EQ(removeLocal(dir.file(name)), 1);
    EXPECT_FALSE(dir.has(name));
    EXPECT_TRUE(dir.has(name + "_moved"));
  }
}

/// tlrsh and tlrcp of the installation over a stand-in for ssh that runs the far command here.
class RemoteTools : public testing::Test {
 protected:
  void SetUp() override {
    const std::string ssh =
        dir_.write("ssh",
                   "#!/bin/sh\nfor i; do printf '<%s>' \"$i\" >> '" + dir_.file("words") +
                       "'; done\n"
                       "while [ \"$1\" != -- ]; do shift; done\n"
                       "shift; shift\nexec sh -c \"$*\"\n",
                   true);
    ssh_ = std::make_unique<TVariable>("TL_SSH", ssh);
    talvenDir_ = std::make_unique<TVariable>("TALVEN_DIR", std::string(TL_SHARE_DIR));
    tmpDir_ = std::make_unique<TVariable>("TMP_DIR", dir_.path());
  }
  static std::string tool(const char* name) { return std::string(TL_SHARE_DIR "/bin/") + name; }

  TTempDir dir_;
  std::unique_ptr<TVariable> ssh_;
  std::unique_ptr<TVariable> talvenDir_;
  std::unique_ptr<TVariable> tmpDir_;
};

TEST_F(RemoteTools, ShellPassesOutputAndExitCodeOn) {
  bool started = false;
  const int code = hostForm().runRedirected(tool("tlrsh") + " -n -l alice far \"echo out; exit 5\"",
                                            dir_.file("out"), started);
  EXPECT_EQ(code, 5);
  EXPECT_EQ(dir_.read("out"), "out\n");
  EXPECT_THAT(dir_.read("words"), testing::StartsWith("<-o><BatchMode=yes>"));
  EXPECT_THAT(dir_.read("words"),
              testing::EndsWith("<-n><-l><alice><--><far><umask 077; echo out; exit 5>"));
}

TEST_F(RemoteTools, CopyOfAnyNameIsSilentAndStarsExpandFarAway) {
  for (const std::string name :
       {"a b", "p$x", "q'r", "s\"t", "u;v", "w!", "(x)", "y\\z", "\xc3\xa9"}) {
    dir_.write("src/" + name + ".run", name);
    dir_.write("back/.keep", "");
    EXPECT_EQ(
        remoteCopy("far.alice", dir_.file("src/" + name + ".*"), "", dir_.file("back"), "UNIX"), 0);
    EXPECT_EQ(dir_.read("back/" + name + ".run"), name);
    EXPECT_EQ(
        remoteCopy("", dir_.file("src/" + name + ".run"), "far", dir_.file("to " + name), "UNIX"),
        0);
    EXPECT_EQ(dir_.read("to " + name), name);
  }
  EXPECT_THAT(dir_.read("words"), testing::HasSubstr("alice"));
  EXPECT_EQ(remoteCopy("far", dir_.file("none"), "", dir_.file("back"), "UNIX"), 1);
}

}  // namespace
