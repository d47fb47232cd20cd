#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "project/ProjectText.h"
#include "project/TLSolverValues.h"
#include "support/Definitions.h"

namespace {

class Computation : public testing::Test {
 protected:
  Definitions definitions_;
};

std::string lineOf(const std::string& text, const std::string& key) {
  const auto at = text.find("\n" + key);
  return at == std::string::npos ? "" : text.substr(at + 1, text.find('\n', at + 1) - at - 1);
}

TEST_F(Computation, WhatDoesNotSurviveASave) {
  const ReadProject read(
      projectText("VERSION 9999\nALL_HARMONICS_ON 5\nCOARSE_FLAG 1 2 3\nNUMBER_OF_GRID_LEVEL 4\n"
                  "fluid_time 7\nno_such_key 1\nTL_BEGIN no_such_block\nNAME x\n"
                  "TL_END no_such_block\nRUNNING_MODE foreground\n"));
  ASSERT_EQ(read.result, 1);
  EXPECT_EQ(read.computation().version, 9999.0);
  EXPECT_EQ(read.computation().fluidTime, 7);
  const std::string text = read.written();
  EXPECT_EQ(lineOf(text, "    VERSION"), "    VERSION                          1210");
  EXPECT_EQ(lineOf(text, "    ALL_HARMONICS_ON"), "    ALL_HARMONICS_ON                 0");
  EXPECT_EQ(lineOf(text, "    COARSE_FLAG"), "    COARSE_FLAG                      0 0 0");
  EXPECT_EQ(lineOf(text, "    NUMBER_OF_GRID_LEVEL"), "    NUMBER_OF_GRID_LEVEL             1");
  EXPECT_EQ(lineOf(text, "    RUNNING_MODE"), "    RUNNING_MODE                     STOPPED");
  EXPECT_EQ(text.find("no_such"), std::string::npos);
  EXPECT_EQ(text.find("FLUID_TIME"), std::string::npos);
  const ReadProject misspelt(projectText("all_hamonics_on 5\n"));
  EXPECT_EQ(lineOf(misspelt.written(), "    ALL_HARMONICS_ON"),
            "    ALL_HARMONICS_ON                 5");
}

TEST_F(Computation, KeysInsideAShapeModuleAreKeysOfTheComputation) {
  const ReadProject read(
      projectText("TL_BEGIN TL_MODULE sculpt3d\nPOSITION 7\nTL_END TL_MODULE\n"
                  "TL_BEGIN TL_MODULE other\nPOSITION 9\nTL_END TL_MODULE\n"));
  EXPECT_EQ(read.computation().position, 7);
}

TEST_F(Computation, NestedComputationsCloseOnTheirOwnName) {
  const ReadProject read(
      projectText("NAME outer\nTL_BEGIN non_deterministic_computation\nNAME inner\n"
                  "TL_BEGIN non_deterministic_computation\nNAME innermost\n"
                  "TL_END non_deterministic_computation\nPOSITION 2\n"
                  "TL_END non_deterministic_computation\nPOSITION 5\n"));
  ASSERT_EQ(read.result, 1);
  const auto& outer = read.computation();
  EXPECT_EQ(outer.position, 5);
  ASSERT_EQ(outer.nonDeterministicChildren.size(), 1U);
  EXPECT_EQ(outer.nonDeterministicChildren[0]->position, 2);
  EXPECT_EQ(outer.nonDeterministicChildren[0]->nonDeterministicChildren[0]->name, "innermost");
  const std::string text = read.written();
  EXPECT_NE(text.find("    TL_END non_deterministic_computation\n"), std::string::npos);
  EXPECT_TRUE(ReadProject(text).written() == text);
}

TEST_F(Computation, SectorsOfKindThreeSwitchTheCoolingModel) {
  const std::string sector = "TL_BEGIN injection_sector\n  KIND 3\nTL_END injection_sector\n";
  const std::string text = ReadProject(projectText(sector)).written();
  EXPECT_NE(text.find("\nCOOLFL,I,1,1,0\n3\n"), std::string::npos);
  // Without a block of solver parameters the database counts.
  EXPECT_NE(text.find("\nCFL,R,1,1,0\n3\n"), std::string::npos);
  EXPECT_EQ(ReadProject(projectText("")).written().find("COOLFL"), std::string::npos);
}

TEST_F(Computation, NameAndTypeOfTheFluid) {
  const auto fluid = [](const std::string& lines) {
    return "TL_BEGIN fluid_parameters\nVERSION 4.0\n" + lines + "TL_END fluid_parameters\n";
  };
  const struct {
    std::string lines;
    const char* name;
    const char* type;
  } cases[] = {
      {"", "Perfect Gas", "Perfect Gas"},
      {"FLUID_NAME x\nFLUID_TYPE Real Gas\n", "x", "Real Gas"},
      {"FLUID_NAME unknown\nFLUID_TYPE Real Gas\n", "Perfect Gas", "Perfect Gas"},
      {"FLUID_NAME x\nFLUID_TYPE Real Gas\n" + fluid("FLUID_NAME first\n") +
           fluid("FLUID_NAME second\n"),
       "first", "Real Gas"},
      {"FLUID_TYPE Condensable Gas\n" +
           fluid("FLUID_NAME R\nFLUID_TYPE Condensable Gas\nTHERMODYNAMIC_TABLES_PATH /t/R134a/\n"),
       "R134a", "Condensable Gas"},
  };
  for (const auto& test : cases) {
    const std::string text = ReadProject(projectText(test.lines)).written();
    EXPECT_EQ(lineOf(text, "    FLUID_NAME"),
              std::string("    FLUID_NAME                       ") + test.name);
    EXPECT_EQ(lineOf(text, "    FLUID_TYPE"),
              std::string("    FLUID_TYPE                       ") + test.type);
  }
}

TEST_F(Computation, ConditionsComeInLineWithTheirDefinitions) {
  const ReadProject read(
      projectText("TL_BEGIN bc_parameters\nTYPE INLET\nTYPE_ID 28\nTYPE_OPSEL 1\n"
                  "TL_BEGIN real_entry_def\nNAME gone\nTL_END real_entry\nTL_END bc_parameters\n"
                  "TL_BEGIN bc_parameters\nTYPE X\nTYPE_ID 99\nTYPE_OPSEL 1\n"
                  "TL_BEGIN physical_entry\nNAME kept\nTYPE constant\nVALUE 5\n"
                  "TL_END physical_entry\nTL_END bc_parameters\n"));
  ASSERT_EQ(read.result, 1);
  const auto& records = read.computation().bcParameters;
  ASSERT_EQ(records.size(), 2U);
  EXPECT_TRUE(records[0]->entry("Static Temperature"));
  EXPECT_TRUE(records[1]->entry("kept"));  // nothing is lost of a kind that nobody defines
  EXPECT_EQ(read.console, "BOUNDARY CONDITION Id = 99 OPSEL = 1 NOT YET DEFINED\n");
}

}  // namespace
