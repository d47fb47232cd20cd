#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "platform/TLConsole.h"
#include "platform/TLHostForm.h"
#include "platform/TTempDir.h"
#include "project/TLProject.h"

namespace {

TEST(ProjectPaths, BaseDirectoryOfARunFileIsAroundItsComputation) {
  const struct {
    const char* file;
    const char* base;
    const char* climbed;
  } cases[] = {
      {"/p/study/comp/comp.run", "/p/study/", "/p/"},
      {"/p/study/study.iec", "/p/study/", "/p/study/"},
      {"/p/comp.RUN", "/p/", "/p/"},
      {"comp/comp.run", "", "../"},
      {"comp.run", "../", "../../"},
      {"/comp/comp.run", "/", "/"},
  };
  for (const auto& test : cases) {
    EXPECT_EQ(TLProject::baseDirectory(TLFile(test.file)), test.base) << test.file;
    EXPECT_EQ(TLProject::baseDirectory(TLFile(test.file), true), test.climbed) << test.file;
  }
}

TEST(ProjectPaths, RelativeIsWhatFollowsTheBaseDirectory) {
  const TLFile run("/p/study/comp/comp.run");
  EXPECT_EQ(TLProject::makeRelative(run, "/p/study/_mesh/m.zyv"), "_mesh/m.zyv");
  EXPECT_EQ(TLProject::makeRelative(run, "/p/study2/m.zyv"), "undefined");
  EXPECT_EQ(TLProject::makeRelative(run, "/elsewhere/m.zyv"), "undefined");
  EXPECT_EQ(TLProject::makeRelative(run, "/p/other/m.zyv", true), "other/m.zyv");
}

TEST(ProjectPaths, TheOtherHostFormHasItsOwnSeparator) {
  setHostForm(TLHostKind::win32);
  const TLFile run("C:/p/study/comp/comp.run");
  EXPECT_EQ(TLProject::baseDirectory(run), "C:\\p\\study\\");
  EXPECT_EQ(TLProject::makeRelative(run, TLFile("C:/p/study/_mesh/m.zyv").path()), "_mesh\\m.zyv");
  EXPECT_EQ(TLProject::baseDirectory(TLFile("comp.run")), "..\\");
  setHostForm(TLHostKind::posix);
}

struct Resolved {
  std::string path;
  std::string console;
};

Resolved resolve(const std::string& file, const std::string& absolute,
                 const std::string& relative) {
  std::ostringstream heard;
  TLConsoleRedirect redirect(heard);
  return {TLProject::resolvePath(TLFile(file), absolute, relative), heard.str()};
}

TEST(ProjectPaths, ResolvesAbsoluteThenRelativeThenGivesUp) {
  TTempDir dir;
  const auto here = dir.write("_mesh/m.zyv", "x");
  const auto elsewhere = dir.write("other/m.zyv", "x");
  const auto run = dir.file("comp/comp.run");

  EXPECT_EQ(resolve(run, elsewhere, "_mesh/m.zyv").path, elsewhere);
  const auto moved = resolve(run, "/gone/m.zyv", "_mesh/m.zyv");
  EXPECT_EQ(moved.path, here);
  EXPECT_EQ(moved.console, "");
  const auto lost = resolve(run, "/gone/m.zyv", "gone/m.zyv");
  EXPECT_EQ(lost.path, "/gone/m.zyv");
  EXPECT_EQ(lost.console, "Info:\tcould not find the file '/gone/m.zyv'\n");
  EXPECT_EQ(resolve(run, "/usr/unknown", "undefined").console, "");
  EXPECT_EQ(resolve(run, "/usr/undefined", "").console, "");
  // Only behind the first letter does the word stand for no file.
  EXPECT_EQ(resolve(run, "unknown", "undefined").console,
            "Info:\tcould not find the file 'unknown'\n");
}

TEST(ProjectPaths, LooksForAMovedFileInAFixedOrder) {
  TTempDir dir;
  const TLFile run(dir.file("comp/comp.run"));
  EXPECT_EQ(TLProject::findMoved(run, "/gone/t.trb"), "/gone/t.trb");
  const auto sibling = dir.write("_mesh/t.trb", "x");
  EXPECT_EQ(TLProject::findMoved(run, "/gone/t.trb"), sibling);
  EXPECT_EQ(TLProject::findMoved(run, "C:\\gone\\t.trb"), sibling);
  const auto beside = dir.write("comp/t.trb", "x");
  EXPECT_EQ(TLProject::findMoved(run, "/gone/t.trb"), beside);
  const auto below = dir.write("comp/_mesh/t.trb", "x");
  EXPECT_EQ(TLProject::findMoved(run, "/gone/t.trb"), below);
  EXPECT_EQ(TLProject::findMoved(run, sibling), sibling);
}

}  // namespace
