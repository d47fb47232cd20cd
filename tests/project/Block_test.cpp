#include <gtest/gtest.h>

#include "project/TLBlock.h"
#include "project/TLProjectType.h"
#include "support/RecordTexts.h"
#include "support/RunFileGenerator.h"

namespace {

constexpr auto kStructured = TLProjectType::structured;
constexpr auto kHexa = TLProjectType::hexa;

constexpr const char* kRotation =
    "        TL_BEGIN real_entry_full\n"
    "                name                                   Block_Rotation_Speed\n"
    "                value                                  -1570.8\n"
    "                non_deterministic_data                 0\n"
    "        TL_END   real_entry\n";

constexpr const char* kSizes =
    "        IMAX                         9\n"
    "        JMAX                         9\n"
    "        KMAX                         9\n"
    "        STREAMWISE_DIRECTION         REVERSE_J\n"
    "        SPANWISE_DIRECTION           REVERSE_K\n"
    "        AZIMUTAL_DIRECTION           NONE\n"
    "        AVERAGE_TOGGLE               no\n"
    "        AVERAGE_DIRECTION            NONE\n"
    "        REPETITION                   NONE\n"
    "        NUMBER_OF_BLADES             0\n"
    "        NUMBER_OF_REPETITION         1\n"
    "        PERIODICITY                  0\n"
    "        INITIAL_SOLUTION_TURBOMACHINERY no\n"
    "        INITIAL_TEMPERATURE          0\n"
    "        INITIAL_PRESSURE             0\n"
    "        INITIAL_VELOCITY             0 0 0\n"
    "        INITIAL_FLOW_DIRECTION       NONE\n"
    "        INITIAL_VELOCITY_FITTING     NONE\n"
    "        INITIAL_PRESSURE_FIELD       CONSTANT\n"
    "        RADIAL_EQUILIBRIUM_FACTOR    0\n"
    "        PROCESS_ID                   -1\n"
    "        NB_CHANNELS                  1\n"
    "        PITCH_DISPLACEMENT           0\n"
    "        CLOCK_VAR                    0\n";

std::string head(const std::string& type = "FLUID", const std::string& groups = "") {
  return "        VERSION                      3.0\n"
         "        NAME                         unknown\n"
         "        OLD_NAME\t\t       unknown\n"
         "        BLOCK_TYPE                   " +
         type + "\n" + groups + "        INITIAL_SOLUTION_INDEX       -1\n";
}

// Reads a block and writes it; `console` gets what both said.
std::string through(const std::string& text, std::int32_t type, std::string* console = nullptr) {
  std::ostringstream said;
  TLConsoleRedirect redirect(said);
  TLBlock block(type);
  TLTextSource source(text);
  EXPECT_EQ(block.read(source), 1) << text;
  TLTextSink sink;
  block.write(sink);
  if (console != nullptr) *console = said.str();
  return sink.text();
}

TEST(Block, NewRecord) {
  std::string console;
  EXPECT_EQ(through("", kStructured, &console), head() + kSizes);
  EXPECT_EQ(console, "TLBlock::write: ERROR !!! rotationSpeedPtr ZERO\n");
}

TEST(Block, RotationSpeedInAllItsForms) {
  const std::string expected = head() + kRotation + kSizes;
  std::string console;
  for (const char* text : {
           "rotation_speed -1570.8\n",
           "REAL_ENTRY Block_Rotation_Speed -1570.8\n",
           "\t\t\t\treal_entry\t\tBLOCK_ROTATION_SPEED\t\t-1570.8\n",
           "Block_Rotation_Speed -1570.8\n",
           kRotation,
       }) {
    EXPECT_EQ(through(text, kStructured, &console), expected) << text;
    EXPECT_EQ(console, "");
  }
}

TEST(Block, EntriesAreKept) {
  TLBlock block(kStructured);
  ASSERT_EQ(readText(block,
                     "REAL_ENTRY my value 2.5\nINTEGER_ENTRY count 3\n"
                     "VECTOR_ENTRY an axis 0 0 1\n"
                     "TL_BEGIN real_entry_full\nname other\nvalue 7\nTL_END real_entry\n")
                .result,
            1);
  ASSERT_EQ(block.entries.size(), 4U);
  EXPECT_EQ(block.entries[2]->name, "an axis");
  EXPECT_FALSE(block.rotationSpeed);
  const auto text = through("REAL_ENTRY my value 2.5\n", kStructured);
  EXPECT_EQ(through(text, kStructured), text);
}

TEST(Block, Words) {
  const struct {
    const char* line;
    const char* written;
  } cases[] = {
      {"block_type FLUID\n", "BLOCK_TYPE                   FLUID\n"},
      {"Block_Type throughFlow\n", "BLOCK_TYPE                   THROUGHFLOW\n"},
      {"block_type gas\n", "BLOCK_TYPE                   FLUID\n"},
      {"streamwise_direction reverse_i\n", "STREAMWISE_DIRECTION         REVERSE_I\n"},
      {"streamwise_direction sideways\n", "STREAMWISE_DIRECTION         REVERSE_J\n"},
      {"streamwise_direction none\n", "STREAMWISE_DIRECTION         NONE\n"},
      {"average_direction Reverse_K\n", "AVERAGE_DIRECTION            REVERSE_K\n"},
      {"repetition MIRROR\n", "REPETITION                   MIRROR\n"},
      {"repetition rotation\n", "REPETITION                   ROTATION\n"},
      {"repetition translation\n", "REPETITION                   TRANSLATION\n"},
      {"initial_velocity_fitting VM\n", "INITIAL_VELOCITY_FITTING     Vm\n"},
      {"initial_pressure_field RadialEquilibrium\n",
       "INITIAL_PRESSURE_FIELD       RADIALEQUILIBRIUM\n"},
      {"average_toggle YES\n", "AVERAGE_TOGGLE               yes\n"},
      {"average_toggle Yes\n", "AVERAGE_TOGGLE               no\n"},
      {"imax 33\n", "IMAX                         33\n"},
      {"name two  words \n", "NAME                         two  words\n"},
      {"old_name two words\n", "OLD_NAME\t\t       two\n"},
      {"initial_velocity 1 2.5 -3\n", "INITIAL_VELOCITY             1 2.5 -3\n"},
      {"pitch_displacement 0.12345678\n", "PITCH_DISPLACEMENT           0.123457\n"},
  };
  for (const auto& one : cases) {
    EXPECT_NE(through(one.line, kStructured).find(std::string("        ") + one.written),
              std::string::npos)
        << one.line;
  }
}

TEST(Block, Groups) {
  const std::string groups =
      "        GROUP_NAME                   first of two words\n"
      "        GROUP_NAME                   second\n";
  EXPECT_EQ(through(groups + kRotation, kStructured), head("FLUID", groups) + kRotation + kSizes);
  TLBlock block(kStructured);
  EXPECT_EQ(block.groupName(), "unknown");
  readText(block, groups);
  EXPECT_EQ(block.groupName(), "first of two words");
}

std::string property(const std::string& name) {
  return "        TL_BEGIN physical_entry\n"
         "                VERSION               1.0\n"
         "                NAME                  " +
         name +
         "\n"
         "                TYPE                  constant\n"
         "                VALUE                 2.5\n"
         "                non_deterministic_data                 0\n"
         "        TL_END   physical_entry\n";
}

TEST(Block, SolidProperties) {
  const std::string all =
      property("Solid Conductivity") + property("Solid Density") + property("Solid Heat Capacity");
  std::string console;
  const std::string solid = "block_type solid\n";
  // Positions of VALUE and TYPE in the entry are the entry's own: compare the second pass.
  const auto text = through(solid + property("Solid Density") + property("Solid Heat Capacity") +
                                property("Solid Conductivity") + kRotation,
                            kStructured, &console);
  EXPECT_EQ(console, "");
  EXPECT_EQ(through(text, kStructured), text);
  EXPECT_LT(text.find("Solid Conductivity"), text.find("Solid Density"));
  EXPECT_LT(text.find("Solid Density"), text.find("Solid Heat Capacity"));
  // Of a fluid block they aren't written; a solid one misses each that it lacks.
  EXPECT_EQ(through(all + kRotation, kStructured), head() + kRotation + kSizes);
  EXPECT_EQ(through(solid, kStructured, &console), head("SOLID") + kSizes);
  EXPECT_EQ(console,
            "TLBlock::write: ERROR !!! rotationSpeedPtr ZERO\n"
            "TLBlock::write: solidConductivityPtr ZERO\n"
            "TLBlock::write: solidDensityPtr ZERO\n"
            "TLBlock::write: solidHeatCapacityPtr ZERO\n");
  const auto old = through(solid + "solid_conductivity 2.5\n" + kRotation, kStructured);
  EXPECT_NE(old.find("Solid Conductivity"), std::string::npos);
  EXPECT_EQ(through(old, kStructured), old);
}

// Each optional child alone, in a project that writes it.
TEST(Block, EachChildRoundTrips) {
  const auto kept = [](const std::string& name) {
    return "        TL_BEGIN " + name +
           "\n   VERSION 1.0\n # a comment\n\n   some  line\n        TL_END   " + name + "\n";
  };
  for (const char* name :
       {"harmonic_data", "harmonic_disturber", "harmonic_inner_perturbation",
        "throughflow_parameters", "block_dependent", "hexa_outputs", "spherical_heat_source",
        "cylindrical_heat_source", "brick_heat_source", "domain_heat_source"}) {
    for (const auto type : {kStructured, kHexa}) {
      const auto with = through(kept(name) + kRotation, type);
      const auto without = through(kRotation, type);
      const bool hexaOnly = std::string(name).find("heat_source") != std::string::npos ||
                            name == std::string("hexa_outputs");
      if (hexaOnly && type != kHexa) {
        EXPECT_EQ(with, without) << name;
        continue;
      }
      const auto at = with.find(kept(name));
      ASSERT_NE(at, std::string::npos) << name << '\n' << with;
      EXPECT_EQ(with.substr(0, at) + with.substr(at + kept(name).size()), without) << name;
      EXPECT_EQ(through(with, type), with) << name;
    }
  }
}

TEST(Block, MarineBlocksKeepWhatTheyHave) {
  constexpr auto marine = TLProjectType::marine;
  EXPECT_EQ(through(kRotation, marine), through(kRotation, kStructured));
  const std::string text = "TL_BEGIN hexa_parameters\nTL_END hexa_parameters\n";
  EXPECT_EQ(through(text + kRotation, marine), through(text + kRotation, kHexa));
}

TEST(Block, HexaSectionsInTheirOrder) {
  const auto text = through(kRotation, kHexa);
  std::size_t at = 0;
  for (const char* word :
       {"START HEXA PARAMETERS SECTION", "START FLUID SECTION", "START HEAT SOURCE TERMS SECTION",
        "START HEXA OUTPUTS SECTION", "START HEXA PARTITIONS SECTION", "        FLUID_NAME        ",
        "        NB_CELLS ", "        IS_2D ", "real_entry_full", "IMAX"}) {
    at = text.find(word, at);
    ASSERT_NE(at, std::string::npos) << word;
  }
  EXPECT_NE(text.find("        MINIMUM_NORMALIZED_EDGE_LENGTH 0\n"), std::string::npos);
  // Five lines of 78 characters each.
  const auto banner = text.find("####");
  for (int line = 0; line < 5; ++line) {
    EXPECT_EQ(text[banner + 79 * line], '#');
    EXPECT_EQ(text[banner + 79 * line + 78], '\n');
  }
}

std::string parameter(const std::string& name, const std::string& type, const std::string& value) {
  return "TL_BEGIN tlparameter\nNAME " + name + "\nTYPE " + type + "\nNUMBER 1\nVALUE " + value +
         "\nTL_END tlparameter\n";
}

TEST(Block, OldBlocksTakeTheirFluidFromTheParameters) {
  const std::string parameters =
      "TL_BEGIN hexa_parameters\n" + parameter("iIncompressible_", "integer", "1") +
      parameter("phys_heatConductionLaw_", "integer", "2") +
      parameter("phys_viscosityLaw_", "integer", "3") + parameter("pRef", "real", "101000") +
      parameter("TRef", "real", "300") + parameter("phys_cp_", "real", "1004") +
      parameter("phys_gammaGaz_", "real", "1.33") +
      parameter("phys_thermalConductivityRef_", "real", "0.025") +
      parameter("phys_Prandtl_", "real", "0.7") + parameter("nuRef_", "real", "0.5") +
      parameter("rhoRef_", "real", "4") + parameter("phys_comprCoeff_", "real", "0.125") +
      parameter("phys_dilatCoeff_", "real", "0.25") + "TL_END hexa_parameters\n";
  const std::string fluid = "TL_BEGIN fluid_parameters\nTL_END fluid_parameters\n";
  TLBlock old(kHexa);
  ASSERT_EQ(readText(old, "version 2.9\n" + fluid + parameters).result, 1);
  EXPECT_EQ(old.fluid->fluidType, "Incompressible");
  EXPECT_EQ(old.fluid->heatCondLawChoice, 2);
  EXPECT_EQ(old.fluid->viscLawChoice, 3);
  const auto& values = *old.fluid->properties;
  EXPECT_EQ(values.presRef, 101000);
  EXPECT_EQ(values.tempRef, 300);
  EXPECT_EQ(values.heatCapacity->value, 1004);
  EXPECT_EQ(values.gamma->value, 1.33);
  EXPECT_EQ(values.heatConductivity->value, 0.025);
  EXPECT_EQ(values.prandtl, 0.7);
  EXPECT_EQ(values.dynamicViscosity->value, 2);
  EXPECT_EQ(values.compressibility, 0.125);
  EXPECT_EQ(values.dilatation, 0.25);
  TLBlock current(kHexa);
  ASSERT_EQ(readText(current, "version 3.0\n" + fluid + parameters).result, 1);
  EXPECT_EQ(current.fluid->fluidType, "Perfect Gas");
  EXPECT_EQ(current.fluid->properties->presRef, 0);
  TLBlock without(kHexa);
  ASSERT_EQ(readText(without, "version 1.0\n" + parameters).result, 1);
  EXPECT_FALSE(without.fluid);
}

TEST(Block, BadLines) {
  const struct {
    const char* text;
    const char* console;
  } cases[] = {
      {"version\n", " wrong block header: cannot determine block version\n"},
      {"block_type\n", " wrong Direction: cannot determine block type\n"},
      {"spanwise_direction\n", " wrong Direction: cannot determine block Direction\n"},
      {"initial_velocity_fitting\n",
       " wrong VelocityFitting: cannot determine block VelocityFitting\n"},
      {"initial_pressure_field\n", " wrong PressureField: cannot determine block PressureField\n"},
      {"repetition\n", " wrong Repetition: cannot determine block Repetition\n"},
      {"imax\n", "  wrong format for4: imax\n"},
      {"skewness_values 1 2\n", "  wrong format for43:skewness_values 1 2\n"},
      {"average_toggle\n", "average_toggle wrong format\n"},
      {"TL_BEGIN face\ntype\n", " wrong Type: cannot determine Face Type\n"},
      {"TL_BEGIN hexa_partition\nversion\n",
       " wrong block header: cannot determine block version\n"},
  };
  for (const auto& bad : cases) {
    TLBlock block(kStructured);
    const auto reading = readText(block, bad.text);
    EXPECT_EQ(reading.result, 0) << bad.text;
    EXPECT_EQ(reading.console, bad.console);
  }
}

}  // namespace
