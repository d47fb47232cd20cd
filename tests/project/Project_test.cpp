#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "project/ProjectText.h"
#include "support/Definitions.h"

namespace {

class Project : public testing::Test {
 protected:
  Definitions definitions_;
};

TEST_F(Project, HeaderDecidesWhetherAFileIsAProject) {
  const struct {
    const char* text;
    int result;
    const char* console;
  } cases[] = {
      {"TALVEN_PROJECT_FILE   VERSION 1210", 1, ""},
      {"\n\n  \n talven_project_FILE version 1210.1\n", 1, ""},
      {"1 2 3 TALVEN_PROJECT_FILE\n", 1, ""},
      {"TALVEN_PROJECT_FILE   VERSION 1210.2\n", 0, "*** ERROR! *** wrong project file version \n"},
      {"TALVEN_PROJECT_FILE   VERSION\n", 0,
       "*** ERROR! *** wrong project header cannot determine file version\n"},
      {"", -1, ""},
      {"# a comment is a line\nTALVEN_PROJECT_FILE VERSION 1210\n", -1, ""},
      {"TL_BEGIN task\n", -1, ""},
  };
  for (const auto& test : cases) {
    const ReadProject read(test.text);
    EXPECT_EQ(read.result, test.result) << test.text;
    EXPECT_EQ(read.console, test.console) << test.text;
    EXPECT_EQ(read->isRead, test.result == 1 ? 1 : 0) << test.text;
  }
  EXPECT_TRUE(TLProject::isProjectText("#c\n TALVEN_project_file V 1\n"));
  EXPECT_TRUE(TLProject::isMeshText("zyv 12\n"));
  EXPECT_FALSE(TLProject::isProjectText("x\nTALVEN_PROJECT_FILE V 1\n"));
}

TEST_F(Project, OlderVersionsSetThePrecisionAndTheLastUsedMark) {
  const struct {
    const char* version;
    const char* type;
    const char* precision;
    const char* expected;
    int lastUsed;
  } cases[] = {
      {"5.001", "HEXA", "single", "double", 1},     {"5.002", "HEXA", "single", "hybrid", 1},
      {"1210", "HEXA", "single", "hybrid", 0},      {"1210", "HEXA", "double", "double", 0},
      {"8.9", "STRUCTURED", "single", "single", 1}, {"8.91", "STRUCTURED", "single", "single", 0},
  };
  for (const auto& test : cases) {
    const ReadProject read(std::string("TALVEN_PROJECT_FILE VERSION ") + test.version +
                           "\nPROJECT_TYPE " + test.type + "\nSOLVER_PRECISION " + test.precision +
                           "\nLAST_USED_COMPUTATION_INDEX 1\n"
                           "TL_BEGIN computation\nVERSION 1210\nTL_END computation\n"
                           "TL_BEGIN computation\nVERSION 1210\nTL_END computation\n");
    ASSERT_EQ(read.result, 1) << test.version;
    EXPECT_EQ(read->solverPrecision, test.expected) << test.version << ' ' << test.type;
    EXPECT_EQ(read.computation(0).lastUsed, 0);
    EXPECT_EQ(read.computation(1).lastUsed, test.lastUsed) << test.version;
  }
}

TEST_F(Project, AMovedDirectoryIsFoundByItsRelativePaths) {
  TTempDir dir;
  const auto grid = dir.write("_mesh/m.zyv", "x");
  const auto geometry = dir.write("_mesh/g.geomTurbo", "x");
  const auto reference = dir.write("ref/ref.run", "x");
  const auto file = dir.write("comp/comp.run",
                              "TALVEN_PROJECT_FILE VERSION 1210\n"
                              "GRID_FILE /old/_mesh/m.zyv\nRELATIVE_GRID_FILE _mesh/m.zyv\n"
                              "GEOMETRY_FILE /old/_mesh/g.geomTurbo\n"
                              "TRB_FILE /old/t.trb\nRELATIVE_TRB_FILE _mesh/g.geomTurbo\n"
                              "TL_BEGIN computation\nREFERENCE_RUN_FILE /old/ref/ref.run\n"
                              "RELATIVE_REFERENCE_RUN_FILE ref/ref.run\nTL_END computation\n");
  TLProject project;
  ASSERT_EQ(project.read(file), 1);
  EXPECT_EQ(project.gridFile.path(), grid);
  EXPECT_EQ(project.geometryFile.path(), geometry);
  EXPECT_EQ(project.trbFile.path(), geometry);
  EXPECT_EQ(project.computations[0]->referenceRunFile.path(), reference);
  ASSERT_EQ(project.write(file), 1);
  const std::string text = dir.read("comp/comp.run");
  for (const char* line :
       {"RELATIVE_GRID_FILE _mesh/m.zyv\n", "RELATIVE_TRB_FILE _mesh/g.geomTurbo\n",
        "    RELATIVE_REFERENCE_RUN_FILE      ref/ref.run\n"}) {
    EXPECT_NE(text.find(line), std::string::npos) << line;
  }
}

TEST_F(Project, AFileThatCannotBeWrittenIsToldAndStands) {
  TTempDir dir;
  const ReadProject read("TALVEN_PROJECT_FILE VERSION 1210\n");
  std::ostringstream heard;
  TLConsoleRedirect redirect(heard);
  const auto nowhere = dir.file("missing/p.run");
  EXPECT_EQ(read->write(nowhere), 0);
  EXPECT_EQ(heard.str(), "File " + nowhere + " is not writable.\n");
  EXPECT_EQ(dir.count(), 0);
  EXPECT_EQ(TLProject().read(RWCString(nowhere)), 0);
}

}  // namespace
