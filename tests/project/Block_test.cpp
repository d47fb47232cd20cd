#include <gtest/gtest.h>

#include "project/TLBlock.h"
#include "project/TLProjectType.h"
#include "support/RecordTexts.h"

namespace {

constexpr auto kStructured = TLProjectType::structured;
constexpr auto kHexa = TLProjectType::hexa;

constexpr const char* kRotation =
    "        TL_BEGIN real_entry_full\n"
    "                name                                   Block_Rotation_Speed\n"
    "                value                                  -1570.8\n"
    "                non_deterministic_data                 0\n"
    "        TL_END   real_entry\n";

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
  EXPECT_EQ(through("", kStructured, &console),
            "        VERSION                      3.0\n"
            "        NAME                         unknown\n"
            "        OLD_NAME\t\t       unknown\n"
            "        BLOCK_TYPE                   FLUID\n"
            "        INITIAL_SOLUTION_INDEX       -1\n"
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
            "        CLOCK_VAR                    0\n");
  EXPECT_EQ(console, "TLBlock::write: ERROR !!! rotationSpeedPtr ZERO\n");
}

TEST(Block, RotationSpeedInAllItsForms) {
  const auto expected = through(kRotation, kStructured);
  EXPECT_NE(expected.find(std::string("SOLUTION_INDEX       -1\n") + kRotation + "        IMAX"),
            std::string::npos);
  std::string console;
  for (const char* text : {
           "rotation_speed -1570.8\n",
           "REAL_ENTRY Block_Rotation_Speed -1570.8\n",
           "\t\t\t\treal_entry\t\tBLOCK_ROTATION_SPEED\t\t-1570.8\n",
           "Block_Rotation_Speed -1570.8\n",
       }) {
    EXPECT_EQ(through(text, kStructured, &console), expected) << text;
    EXPECT_EQ(console, "");
  }
}

TEST(Block, OtherEntriesAreKept) {
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
      {"Block_Type throughFlow\n", "BLOCK_TYPE                   THROUGHFLOW\n"},
      {"block_type gas\n", "BLOCK_TYPE                   FLUID\n"},
      {"streamwise_direction reverse_i\n", "STREAMWISE_DIRECTION         REVERSE_I\n"},
      {"streamwise_direction sideways\n", "STREAMWISE_DIRECTION         REVERSE_J\n"},
      {"streamwise_direction none\n", "STREAMWISE_DIRECTION         NONE\n"},
      {"repetition translation\n", "REPETITION                   TRANSLATION\n"},
      {"initial_velocity_fitting VM\n", "INITIAL_VELOCITY_FITTING     Vm\n"},
      {"average_toggle YES\n", "AVERAGE_TOGGLE               yes\n"},
      {"average_toggle Yes\n", "AVERAGE_TOGGLE               no\n"},
      {"name two  words \n", "NAME                         two  words\n"},
      {"old_name two words\n", "OLD_NAME\t\t       two\n"},
  };
  for (const auto& one : cases) {
    EXPECT_NE(through(one.line, kStructured).find(std::string("        ") + one.written),
              std::string::npos)
        << one.line;
  }
}

TEST(Block, SolidProperties) {
  std::string console;
  through("block_type solid\n", kStructured, &console);
  EXPECT_EQ(console,
            "TLBlock::write: ERROR !!! rotationSpeedPtr ZERO\n"
            "TLBlock::write: solidConductivityPtr ZERO\n"
            "TLBlock::write: solidDensityPtr ZERO\n"
            "TLBlock::write: solidHeatCapacityPtr ZERO\n");
  const std::string old = "solid_conductivity 2.5\n";
  const auto solid = through("block_type solid\n" + old + kRotation, kStructured);
  EXPECT_NE(solid.find("Solid Conductivity"), std::string::npos);
  EXPECT_EQ(through(solid, kStructured), solid);
  EXPECT_EQ(through(old + kRotation, kStructured), through(kRotation, kStructured));
}

TEST(Block, SectionsOfTheUnstructuredSolver) {
  const std::string heat =
      "TL_BEGIN brick_heat_source\nTL_END brick_heat_source\n"
      "TL_BEGIN hexa_outputs\nTL_END hexa_outputs\n";
  EXPECT_EQ(through(heat + kRotation, kStructured), through(kRotation, kStructured));
  // A marine block has them when it was read with one.
  constexpr auto marine = TLProjectType::marine;
  EXPECT_EQ(through(kRotation, marine), through(kRotation, kStructured));
  EXPECT_EQ(through(heat + kRotation, marine), through(heat + kRotation, kHexa));
}

TEST(Block, OldBlocksTakeTheirFluidFromTheParameters) {
  const auto parameter = [](const std::string& name, const std::string& type,
                            const std::string& value) {
    return "TL_BEGIN tlparameter\nNAME " + name + "\nTYPE " + type + "\nNUMBER 1\nVALUE " + value +
           "\nTL_END tlparameter\n";
  };
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
}

}  // namespace
