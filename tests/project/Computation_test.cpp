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

// Keys with an integer, a real, a toggle, one word, a text; what is read comes back under the
// literal.
TEST_F(Computation, PlainKeysComeBackUnderTheirLiterals) {
  const struct {
    const char* key;
    const char* value;
    const char* literal;
  } cases[] = {
      {"position", "3", "    POSITION                         "},
      {"active", "1", "    ACTIVE                           "},
      {"non_deterministic_active", "1", "    NON_DETERMINISTIC_ACTIVE         "},
      {"generalisedTransitionModel", "2", "    generalisedTransitionModel       "},
      {"grid_level_i", "2", "    GRID_LEVEL_I                     "},
      {"pointer", "1.5", "    POINTER                          "},
      {"name", "comp_2", "    NAME                             "},
      {"grid_level_j", "3", "    GRID_LEVEL_J                     "},
      {"grid_level_k", "4", "    GRID_LEVEL_K                     "},
      {"axisymmetric", "yes", "    AXISYMMETRIC                     "},
      {"auto_grid_mesh", "yes", "    AUTO_GRID_MESH                   "},
      {"axisymmetric_axis", "0 0.5 1", "    AXISYMMETRIC_AXIS                "},
      {"efficiency", "0.9", "    Efficiency                       "},
      {"efficiency_mean", "0.8", "    Efficiency_mean                  "},
      {"pressureratio_variance", "1e-07", "    PressureRatio_variance           "},
      {"perf_curve_pressure", "7", "    Perf_curve_Pressure              "},
      {"mass_flow_variance", "8", "    Mass_flow_variance               "},
      {"uncertainty_weight_factor", "0.25", "    uncertainty_weight_factor        "},
      {"uncertainty_grid_type", "2", "    uncertainty_grid_type            "},
      {"fluid_name", "my  gas", "    FLUID_NAME                       "},
      {"fluid_type", "Real Gas", "    FLUID_TYPE                       "},
      {"subtask_status", "x y", "    SUBTASK_STATUS                   "},
      {"steam_tables_path", "/t/a b", "    STEAM_TABLES_PATH                "},
      {"start_from_initial_solution_file", "yes", "    START_FROM_INITIAL_SOLUTION_FILE "},
      {"reset_convergence_history", "yes", "    RESET_CONVERGENCE_HISTORY        "},
      {"initial_residual_file", "r.res", "    INITIAL_RESIDUAL_FILE            "},
      {"initial_solution_file", "s.cgns", "    INITIAL_SOLUTION_FILE            "},
      {"user_solver_precision", "1", "    USER_SOLVER_PRECISION            "},
      {"multi_rank_update", "5", "    MULTI_RANK_UPDATE                "},
      {"maximum_rank", "6", "    MAXIMUM_RANK                     "},
      {"multirk_partial", "7", "    MULTIRK_PARTIAL                  "},
      {"maximum_harmonics_number", "8", "    MAXIMUM_HARMONICS_NUMBER         "},
      {"multi_rank_interaction", "9", "    MULTI_RANK_INTERACTION           "},
      {"max_order_interaction", "10", "    MAX_ORDER_INTERACTION            "},
      {"memory_estimation_real", "1.25", "    MEMORY_ESTIMATION_REAL           "},
      {"memory_estimation_integer", "2.5", "    MEMORY_ESTIMATION_INTEGER        "},
      {"automatic_memory_estimation", "yes", "    AUTOMATIC_MEMORY_ESTIMATION      "},
      {"residuals_per_group", "1", "    RESIDUALS_PER_GROUP                  "},
      {"last_used_fluid_record", "2", "    LAST_USED_FLUID_RECORD           "},
      {"time_steps_choice", "3", "    TIME_STEPS_CHOICE                "},
      {"sweeps_definition", "4", "    SWEEPS_DEFINITION                "},
      {"running_mode", "FOREGROUND", "    RUNNING_MODE                     "},
      {"value_units_name", "length 3", "           VALUE_UNITS_NAME                 "},
      {"nb_harmonics_per_rank", "6", "           NB_HARMONICS_PER_RANK      "},
      {"acoustic_configuration", "2", " ACOUSTIC_CONFIGURATION "},
      {"reference_run_file", "/a b/r.run", "    REFERENCE_RUN_FILE               "},
  };
  std::string lines;
  for (const auto& test : cases) {
    lines += std::string("  ") + test.key + "   " + test.value + "\n";
  }
  const ReadProject read(projectText("version 1210\n" + lines));
  ASSERT_EQ(read.result, 1) << read.console;
  const std::string text = read.written();
  for (const auto& test : cases) {
    EXPECT_EQ(lineOf(text, test.literal), std::string(test.literal) + test.value) << test.key;
  }
  const ReadProject again(text);
  EXPECT_TRUE(again.written() == text);
  // What only a computation of an uncertainty study writes.
  const ReadProject plain(projectText("uncertainty_grid_type 2\n"));
  EXPECT_EQ(plain.written().find("uncertainty"), std::string::npos);
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

TEST_F(Computation, RefusedLinesEndTheRead) {
  const struct {
    const char* lines;
    const char* console;
  } cases[] = {
      {"VERSION\n", " wrong computation header: cannot determine computation version\n"},
      {"  RUNNING_MODE\n", " wrong running mode : cannot determine running mode\n"},
      {" POSITION \n", "  wrong format for4: POSITION \n"},
      {"POINTER\n", "  wrong format for36: POINTER\n"},
      {"AXISYMMETRIC\n", "AXISYMMETRIC wrong format\n"},
      {"AXISYMMETRIC_AXIS 1 2\n", "  wrong format for43:AXISYMMETRIC_AXIS 1 2\n"},
      {"NAME\n", "  wrong format for16: NAME\n"},
      {"VALUE_UNITS_NAME length\n", "  wrong format for19: VALUE_UNITS_NAME length\n"},
      {"TL_BEGIN acoustic_data\nVERSION\n",
       " wrong TLAcoustic header: cannot determine TLAcoustic version\n"},
      {"TL_BEGIN non_deterministic_computation\nVERSION\n",
       " wrong computation header: cannot determine computation version\n"},
      {"TL_BEGIN grid_bc\nVERSION\n", " wrong grid header: cannot determine grid version\n"},
  };
  for (const auto& test : cases) {
    const ReadProject read(projectText(test.lines));
    EXPECT_EQ(read.result, 0) << test.lines;
    EXPECT_EQ(read.console, test.console) << test.lines;
  }
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

TEST_F(Computation, WithoutSolverParametersTheDatabaseCounts) {
  const ReadProject read(projectText(""));
  EXPECT_EQ(read.computation().parameters->reals("CFL,R,1,1,0"), std::vector<double>{3.0});
}

TEST_F(Computation, SectorsOfKindThreeSwitchTheCoolingModel) {
  const std::string sector = "TL_BEGIN injection_sector\n  KIND 3\nTL_END injection_sector\n";
  const std::string text = ReadProject(projectText(sector)).written();
  EXPECT_NE(text.find("\nCOOLFL,I,1,1,0\n3\n"), std::string::npos);
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
