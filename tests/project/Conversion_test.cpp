#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

#include "project/ProjectText.h"
#include "project/TLSolverValues.h"
#include "support/Definitions.h"

namespace {

class Conversion : public testing::Test {
 protected:
  Definitions definitions_;
};

constexpr const char* kOutlet =
    "TL_BEGIN bc_parameters\nTYPE OUTLET\nTYPE_ID 27\nTYPE_OPSEL 1\nTL_END bc_parameters\n"
    "TL_BEGIN grid_bc\nTL_BEGIN block\nTL_BEGIN face\nTYPE KMIN\n"
    "TL_BEGIN boundary_condition\nVERSION 4.0\nTYPE OUT\nBC_PARAMETERS_INDEX 0\nINDICES 1 2 1 2\n"
    "TL_END boundary_condition\n"
    "TL_BEGIN boundary_condition\nVERSION 4.0\nTYPE OUT\nBC_PARAMETERS_INDEX 9\nINDICES 1 2 1 2\n"
    "TL_END boundary_condition\nTL_END face\nTL_END block\nTL_END grid_bc\n";

TEST_F(Conversion, OutletsControlTheirBackflow) {
  const ReadProject read(projectText(std::string("VERSION 1.0\n") + kOutlet));
  ASSERT_EQ(read.result, 1) << read.console;
  auto& computation = read.computation();
  const auto entry = computation.bcParameters[0]->entry("Backflow Control");
  ASSERT_TRUE(entry);
  EXPECT_EQ(dynamic_cast<TLIntegerEntry&>(*entry).value, 1);
  EXPECT_EQ(TLSolverValues(*computation.parameters).integer("BCKFLO,I,1,1,0"), 1);
  EXPECT_NE(read.console.find(" B1 F1 P2\n"), std::string::npos);
  const ReadProject newer(projectText(std::string("VERSION 1.5\n") + kOutlet));
  EXPECT_FALSE(newer.computation().bcParameters[0]->entry("Backflow Control"));
}

TEST_F(Conversion, BlocksThatStartAlikeShareAnInitialSolution) {
  const auto block = [](const std::string& lines) {
    return "TL_BEGIN block\n" + lines + "TL_END block\n";
  };
  const std::string constant = "INITIAL_PRESSURE 100000\nINITIAL_VELOCITY 0 0 10\n";
  const std::string turbo =
      "INITIAL_SOLUTION_TURBOMACHINERY yes\nINITIAL_VELOCITY_FITTING Vm\n"
      "INITIAL_PRESSURE_FIELD radialequilibrium\nRADIAL_EQUILIBRIUM_FACTOR 0.5\n"
      "INITIAL_FLOW_DIRECTION reverse_k\n";
  const std::string blocks =
      "TL_BEGIN grid_bc\n" + block(constant) + block(turbo) + block(constant) + "TL_END grid_bc\n";
  const ReadProject read(projectText("VERSION 2.0\n" + blocks));
  ASSERT_EQ(read.result, 1);
  const auto& computation = read.computation();
  ASSERT_EQ(computation.initialSolutions.size(), 2U);
  EXPECT_EQ(computation.initialSolutions[0]->kind(), "const");
  EXPECT_EQ(computation.initialSolutions[1]->kind(), "turbo");
  EXPECT_EQ(computation.initialSolutions[1]->groupName(), "Group_2");
  const auto& body = computation.initialSolutions[1]->body();
  for (const char* text : {" Vm\n", " Radial equilibrium with factor\n", " Reverse K\n"}) {
    EXPECT_NE(body.find(text), std::string::npos) << text;
  }
  const int expected[] = {0, 1, 0};
  for (int i = 0; i < 3; ++i) {
    EXPECT_EQ(computation.grid->blocks[i]->initialSolutionIndex, expected[i]);
    EXPECT_EQ(computation.grid->blocks[i]->groupName(), "Group_" + std::to_string(expected[i] + 1));
  }
  const ReadProject newer(projectText("VERSION 2.5\n" + blocks));
  EXPECT_TRUE(newer.computation().initialSolutions.empty());
  const ReadProject fromFile(projectText(
      "VERSION 2.0\nSTART_FROM_INITIAL_SOLUTION_FILE yes\nINITIAL_SOLUTION_FILE /s.cgns\n" +
      blocks));
  ASSERT_EQ(fromFile.computation().initialSolutions.size(), 1U);
  EXPECT_TRUE(fromFile.computation().initialSolutions[0]->isFile());
  EXPECT_EQ(fromFile.computation().initialSolutions[0]->path(), "/s.cgns");
}

std::string setting(const std::string& name, const std::string& type, const std::string& value) {
  return "TL_BEGIN tlparameter\nNAME " + name + "\nTYPE " + type + "\nNUMBER 1\nVALUE " + value +
         "\nTL_END tlparameter\n";
}

std::string hexaBlock(const std::string& settings) {
  return "TL_BEGIN grid_bc\nTL_BEGIN block\nTL_BEGIN hexa_parameters\n" + settings +
         "TL_END hexa_parameters\nTL_END block\nTL_END grid_bc\n";
}

TEST_F(Conversion, HeatSourcesLeaveTheSettingsOfTheirBlock) {
  const std::string lines =
      hexaBlock(setting("iVolHeatSrcTrm_", "INTEGER", "1") + setting("heatSrcTrm_", "REAL", "500") +
                setting("radiusSphereVolHeatSrcTrm_", "REAL", "0.25") +
                setting("yCenterSphereVolHeatSrcTrm_", "FLOAT", "2"));
  const ReadProject read(projectText("VERSION 7.9\n" + lines, "HEXA"));
  ASSERT_EQ(read.result, 1) << read.console;
  const auto& sources = read.computation().grid->blocks[0]->heatSources;
  ASSERT_EQ(sources.size(), 1U);
  EXPECT_EQ(sources[0].record->body(),
            "          VERSION                    1.0\n"
            "          HEAT_SOURCE_TERM           500\n"
            "          CENTER                     0 2 0\n"
            "          RADIUS                     0.25\n");
  const ReadProject newer(projectText("VERSION 8.0\n" + lines, "HEXA"));
  EXPECT_TRUE(newer.computation().grid->blocks[0]->heatSources.empty());
}

TEST_F(Conversion, UnitsAreAppliedToParametersAndRoughness) {
  const std::string wall =
      "VALUE_UNITS_NAME length 3\n"
      "TL_BEGIN bc_parameters\nTYPE SOLID\nTYPE_ID 77\nTYPE_OPSEL 1\n"
      "TL_BEGIN physical_entry\nNAME Equivalent Roughness Height\nTYPE constant\nVALUE 5\n"
      "TL_END physical_entry\nTL_END bc_parameters\n"
      "TL_BEGIN grid_bc\nTL_BEGIN block\nTL_BEGIN face\nTYPE KMIN\n"
      "TL_BEGIN boundary_condition\nVERSION 3.0\nTYPE SOL\nBC_PARAMETERS_INDEX 0\n"
      "INDICES 1 2 1 2\nTL_END boundary_condition\nTL_END face\nTL_END block\nTL_END grid_bc\n";
  const ReadProject old(projectText("VERSION 8.8\n" + wall));
  ASSERT_EQ(old.result, 1);
  TLSolverValues values(*old.computation().parameters);
  EXPECT_EQ(values.reals("XCOSC,R,1,1,0"), std::vector<double>{2.0});
  for (const char* added : {"IMOVQS,I,1,1,0", "QSAMPY,R,1,1,0", "QSOMGZ,R,1,1,0"}) {
    EXPECT_TRUE(values.has(added)) << added;
  }
  EXPECT_EQ(old.computation().bcParameters[0]->physicalEntries[0]->value, 0.005);
  const ReadProject current(projectText("VERSION 8.9\n" + wall));
  EXPECT_EQ(TLSolverValues(*current.computation().parameters).reals("XCOSC,R,1,1,0"),
            std::vector<double>{2000.0});
}

std::string parameters(const std::vector<std::pair<std::string, std::string>>& values) {
  std::string text =
      "TL_BEGIN solver_parameters\nVELSTRA,L,1,0, " + std::to_string(values.size()) + "\n";
  for (const auto& [descriptor, value] : values) text += descriptor + "\n" + value + "\n";
  return text + "TL_END solver_parameters\n";
}

TEST_F(Conversion, SettingsOfTheStructuredSolver) {
  const auto rshame = [](const std::string& version, const std::string& type) {
    const ReadProject read(
        projectText("VERSION " + version + "\n" + parameters({{"RSHAME,I,1,1,0", "3"}}), type));
    return TLSolverValues(*read.computation().parameters).integer("RSHAME,I,1,1,0");
  };
  EXPECT_EQ(rshame("899", "STRUCTURED"), 4);
  EXPECT_EQ(rshame("900", "STRUCTURED"), 3);
  EXPECT_EQ(rshame("899", "HEXA"), 3);
  EXPECT_EQ(rshame("899", "MARINE"), 3);

  const auto booster = [](const std::string& type) {
    const ReadProject read(
        projectText("FLUID_TYPE " + type + "\n" + parameters({{"CPUBOO,I,1,1,0", "1"}})));
    const TLSolverValues values(*read.computation().parameters);
    return std::pair(values.integer("CPUBOO,I,1,1,0"), values.integer("IRSMCH,I,1,1,0"));
  };
  EXPECT_EQ(booster("Perfect Gas"), std::pair(1, 1));
  EXPECT_EQ(booster("Condensable Gas"), std::pair(0, 0));

  const ReadProject condensable(projectText("FLUID_NAME Condensable Fluid\n"));
  EXPECT_EQ(TLSolverValues(*condensable.computation().parameters).integer("IROVAR,I,1,1,0"), 1);
  const ReadProject ofFluid(projectText(
      "TL_BEGIN fluid_parameters\nFLUID_NAME Condensable Fluid\nTL_END fluid_parameters\n"));
  EXPECT_EQ(TLSolverValues(*ofFluid.computation().parameters).integer("IROVAR,I,1,1,0"), 1);
}

TEST_F(Conversion, BoosterOfTheUnstructuredSolverHasItsOwnSettings) {
  const std::string settings =
      setting("iCPUBooster_", "INTEGER", "1") + setting("tm_cflV_", "REAL", "7") +
      setting("tm_cflVCPB_", "REAL", "0") + setting("turb_mavRem_", "FLOAT", "0.5") +
      setting("turb_mavRemCPB_", "FLOAT", "0") + setting("tm_iOldCPB_", "INTEGER", "0");
  const auto numbers = [](const ReadProject& read) {
    std::map<std::string, double> found;
    for (const auto& parameter : read.computation().grid->blocks[0]->hexaParameters->parameters) {
      TLTextSink sink;
      parameter->value.write(sink);
      found[parameter->name] = std::stod(sink.text());
    }
    return found;
  };
  auto old = numbers(ReadProject(projectText("VERSION 8.8\n" + hexaBlock(settings), "HEXA")));
  EXPECT_EQ(old["tm_cflV_"], 3.0);
  EXPECT_EQ(old["tm_cflVCPB_"], 7.0);
  EXPECT_EQ(old["turb_mavRem_"], 0.95);
  EXPECT_EQ(old["turb_mavRemCPB_"], 0.5);
  EXPECT_EQ(old["tm_iOldCPB_"], 1.0);
  auto current = numbers(ReadProject(projectText(hexaBlock(settings), "HEXA")));
  EXPECT_EQ(current["tm_cflV_"], 7.0);
}

std::string fluid(const std::string& lines, const std::string& variableType = "constant") {
  return "TL_BEGIN fluid_parameters\n" + lines +
         "TL_BEGIN fluid_properties\nVERSION 4.0\nTL_BEGIN physical_entry\n"
         "NAME dynamic viscosity\nTYPE variable\nVARIABLETYPE " +
         variableType +
         "\nTL_END physical_entry\nTL_END fluid_properties\nTL_END fluid_parameters\n";
}

TEST_F(Conversion, FluidsTakeTheirLawsFromTheSolverParameters) {
  const struct {
    const char* ivimod;
    const char* ihcmod;
    const char* variableType;
    int viscosity;
    int conductivity;
    double value;
    const char* console;
  } cases[] = {
      {"1", "1", "constant", 1, 1, 1.0, ""},
      {"1", "2", "polynom", 3, 2, 1.0, ""},
      {"2", "3", "constant", 2, 6, 0.0, ""},
      {"3", "2", "constant", 4, 2, 0.0, ""},
      {"2", "8", "constant", 2, 0, 0.0, "WARNING: unknown value=8 for IHCMOD\n"},
      {"9", "2", "constant", 0, 0, 0.0, "WARNING: unknown value=9 for IVIMOD\n"},
  };
  for (const auto& test : cases) {
    const ReadProject read(projectText(
        "FLUID_NAME my gas\nFLUID_TYPE Real Gas\n" + fluid("VERSION 2.9\n", test.variableType) +
        parameters({{"IVIMOD,I,1,1,0", test.ivimod}, {"IHCMOD,I,1,1,0", test.ihcmod}})));
    ASSERT_EQ(read.result, 1);
    const auto& converted = *read.computation().fluids[0];
    EXPECT_EQ(converted.fluidName, "my gas");
    EXPECT_EQ(converted.fluidType, "Real Gas");
    EXPECT_EQ(converted.viscLawChoice, test.viscosity) << test.ivimod;
    EXPECT_EQ(converted.heatCondLawChoice, test.conductivity) << test.ihcmod;
    EXPECT_EQ(converted.properties->dynamicViscosity->value, test.value) << test.ivimod;
    EXPECT_EQ(read.console, test.console);
    const bool sutherland = test.ivimod == std::string("3");
    EXPECT_EQ(converted.properties->temperatureInf, sutherland ? 288.0 : 0.0);
    EXPECT_EQ(converted.properties->temperatureSutherland, sutherland ? 110.0 : 0.0);
    if (test.ivimod == std::string("3")) {
      EXPECT_EQ(converted.properties->dynamicViscosity->polynom->coefficients(),
                (std::vector<double>{3, 4, 5, 6, 7, 8, 9}));
    }
  }
}

TEST_F(Conversion, TablesOfTheUnstructuredSolverMoveWithTheInstallation) {
  const ReadProject read(
      projectText("TL_BEGIN fluid_parameters\nVERSION 4.0\nFLUID_TYPE Condensable Gas\n"
                  "THERMODYNAMIC_TABLES_PATH /old/suite/tables_R134a/\nTL_END fluid_parameters\n",
                  "HEXA"));
  const std::string moved = definitions_.directory() + "/tables_R134a/";
  EXPECT_EQ(read.computation().fluids[0]->thermodynamicTablesPath, moved);
  EXPECT_EQ(read.console,
            "Old path to thermodynamic tables: /old/suite/tables_R134a/\n"
            "New path to thermodynamic tables: " +
                moved + "\nPath to thermodynamic tables has been updated !\n");
  EXPECT_EQ(ReadProject(read.written()).console, "");
}

TEST_F(Conversion, CoupledSurfacesAndAcoustics) {
  const auto lines = [](const std::string& version, const std::string& impcci) {
    return "VERSION " + version + "\n" + parameters({{"IMPCCI,I,1,1,0", impcci}}) +
           "TL_BEGIN bc_parameters\nTYPE SOLID\nTYPE_ID 77\nTYPE_OPSEL 1\n"
           "INTEGER_ENTRY Moving_Surface 1\nTL_END bc_parameters\n"
           "TL_BEGIN grid_bc\nTL_BEGIN block\nTL_BEGIN face\nTL_BEGIN boundary_condition\n"
           "VERSION 4.0\nTYPE SOL\nBC_PARAMETERS_INDEX 0\nINDICES 1 2 1 2\n"
           "TL_END boundary_condition\nTL_END face\nTL_END block\nTL_END grid_bc\n";
  };
  const auto kind = [&lines](const std::string& version, const std::string& impcci) {
    return ReadProject(projectText(lines(version, impcci)))
        .computation()
        .grid->blocks[0]
        ->faces[0]
        ->conditions[0]
        ->couplingType;
  };
  EXPECT_EQ(kind("8.8", "1"), 2);
  EXPECT_EQ(kind("8.8", "0"), 0);
  EXPECT_EQ(kind("8.9", "1"), 0);

  const auto acoustic = [](const std::string& version) {
    return ReadProject(projectText("ACOUSTIC_CONFIGURATION 3\nTL_BEGIN acoustic_data\nVERSION " +
                                   version + "\nTL_END acoustic_data\n"))
        .computation()
        .acousticConfiguration;
  };
  EXPECT_EQ(acoustic("4.9"), 7);
  EXPECT_EQ(acoustic("5.0"), 3);
}

}  // namespace
