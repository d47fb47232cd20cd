#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <iostream>
#include <sstream>

#include "platform/TLConsole.h"
#include "platform/TTempDir.h"
#include "session/TLScript.h"
#include "session/TLScriptCommand.h"
#include "session/TLTestSession.h"
#include "session/TLToolVariables.h"

namespace {

using ::testing::HasSubstr;

/// What `script` answers in the session.
RWCString value(const RWCString& script) {
  EXPECT_EQ(evalScript(script), 0) << scriptResult();
  return scriptResult();
}

TEST(TkSession, withoutSessionNothingIsEvaluated) {
  // Runs in a process of its own: the others of this file have a session.
  if (TkSession::current() != nullptr) GTEST_SKIP() << "a session exists already";
  std::ostringstream printed;
  const TLConsoleRedirect redirect(printed);
  EXPECT_EQ(evalScript("error x"), 0);
  EXPECT_EQ(sourceFile("/nowhere"), 0);
  EXPECT_EQ(scriptResult(), "");
  EXPECT_EQ(printed.str(), "");
  showError("copy failed");
  EXPECT_EQ(printed.str(), "copy failed\n");
}

TEST(TkSession, variables) {
  setToolVariable("TCL_PATH", "/suite/_tcl");
  setToolVariable("ONLINEHELPMIRE_DIR", "/suite/html");
  testSession();
  EXPECT_EQ(value("list $argc $argv0 $argv"), "2 tltest {-task {a file}}");
  EXPECT_EQ(value("set tcl_rcFileName"), "~/.talrc");
  EXPECT_EQ(value("list [array size app] $app(versionChecking) $app(catiav5_is_used) "
                  "$app(is_a_library)"),
            "9 1 1 0");
  EXPECT_EQ(value("list $env(TCL_PATH) $env(ONLINEHELPMIRE_DIR) $env(TURNKEY_INP_PATH)"),
            "/suite/_tcl /suite/html {}");
}

TEST(TkSession, fileReadableOpensTheFile) {
  testSession();
  const TTempDir files;
  const RWCString name = "{" + files.write("a [x]", "text") + "}";
  EXPECT_EQ(value("list [file readable " + name + "] [file exists " + name + "] [file size " +
                  name + "] [file tail {/a b/c d}] [file join a {b c} d]"),
            "1 1 4 {c d} {a/b c/d}");
  std::filesystem::remove(files.file("a [x]"));
  EXPECT_EQ(value("file readable " + name), "0");
  std::ostringstream printed;
  const TLConsoleRedirect redirect(printed);
  EXPECT_EQ(evalScript("file size " + name), 1);
  EXPECT_THAT(printed.str(), HasSubstr("no such file or directory"));
}

TEST(TkSession, errorsArePrintedAndNeverEndTheProcess) {
  testSession();
  std::ostringstream printed;
  const TLConsoleRedirect redirect(printed);
  EXPECT_EQ(evalScript("set a 1\nset b 2\nerror {it broke}"), 1);
  EXPECT_EQ(scriptResult(), "it broke");
  EXPECT_EQ(printed.str(),
            " TCL ERROR 3 it broke\nit broke\n    while executing\n\"error {it broke}\"\n");
  printed.str("");
  EXPECT_EQ(sourceFile("/no/such/script.tcl"), 1);
  EXPECT_THAT(printed.str(), HasSubstr("couldn't read file \"/no/such/script.tcl\": no such file"));
}

TEST(TkSession, switchesStopEvaluation) {
  testSession();
  evalScript("set untouched 1");
  gNoEval = true;
  EXPECT_EQ(evalScript("set untouched 2"), 1);
  EXPECT_EQ(sourceFile("/no/such/script.tcl"), 1);
  gNoEval = false;
  gNoTk = true;
  EXPECT_EQ(evalScript("set untouched 3"), 1);
  gNoTk = false;
  EXPECT_EQ(value("set untouched"), "1");
}

TEST(TkSession, showErrorAsksTheScript) {
  testSession();
  evalScript("proc okMessage {text title} {set ::shown [list $text $title]}");
  showError("disk full");
  EXPECT_EQ(value("set shown"), "{ disk full } { error }");
}

void sumCommand(ArgStream& arguments, ResultStream& result) {
  std::int32_t a = 0;
  std::int32_t b = 100;
  arguments.readInteger(a);
  arguments.readInteger(b);
  result.write(a + b);
  if (arguments.failed() != 0) result.setCode(16, " not a number");
}

TEST(TkSession, registeredCommands) {
  testSession();
  registerCommand<sumCommand>("sum_of_two");
  EXPECT_EQ(value("sum_of_two 1 2"), "3");
  EXPECT_EQ(value("sum_of_two 1"), "101");
  EXPECT_EQ(value("catch {sum_of_two x} text; set text"), "100 not a number");
}

struct CountedAction : TLAction {
  explicit CountedAction(int& left) : left_(left) {}
  void run() override {
    if (--left_ > 0) testSession().postAction(makeHandle<CountedAction>(left_));
  }
  int& left_;
};

TEST(TkSession, postedActionsRunUntilNoneIsLeft) {
  int left = 3;
  testSession().postAction(makeHandle<CountedAction>(left));
  testSession().runPostedActions();
  EXPECT_EQ(left, 0);
}

[[noreturn]] void runUntilTheWindowIsGone() {
  testSession();
  evalScript("after 10 {destroy .}");
  const int answer = testSession().run();
  std::cerr << "run " << answer << " one " << testSession().oneEvent() << " done "
            << testSession().done();
  requestProcessEnd(testDisplay().pid());
  std::_Exit(7);
}

TEST(TkSessionDeathTest, endsWithItsLastWindow) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_EXIT(runUntilTheWindowIsGone(), ::testing::ExitedWithCode(7), "run 1 one 0 done 1");
}

[[noreturn]] void startWithoutDisplay() {
  ::setenv("DISPLAY", ":nothing", 1);
  const TLConsoleRedirect redirect(std::cerr);
  static char name[] = "tltest";
  static char* words[] = {name, nullptr};
  const TkSession session(1, words);
  std::_Exit(7);
}

TEST(TkSessionDeathTest, toolkitThatFailsIsToldAndEndsTheProcess) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_EXIT(startWithoutDisplay(), ::testing::ExitedWithCode(0), " TK ERROR .*:nothing");
}

}  // namespace
