#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "parameters/TLFluid.h"
#include "platform/TLHostForm.h"
#include "support/RecordTexts.h"

namespace {

constexpr const char* kProperties =
    "      VERSION                        5.0\n"
    "      COMPRESSIBILITY                1e-10\n"
    "      DILATATION                     0.00021\n"
    "      PRANDTL                        0.708\n"
    "      R_GAS_CONST                    287\n"
    "      FLUID_TYPE                     Perfect Gas\n"
    "      REAL_GAS_MODEL                 2\n"
    "      TEMP_REF                       293\n"
    "      PRES_REF                       101325\n"
    "      TEMP_REF_MIN                   100\n"
    "      TEMP_REF_MAX                   2000\n"
    "      PRES_REF_MIN                   1000\n"
    "      PRES_REF_MAX                   1e+07\n"
    "      TEMPERATURE_INF                288.2\n"
    "      TEMPERATURE_SUTHERLAND         110\n"
    "      DENSITY_SUTHERLAND             1.2\n";

std::string entry(const std::string& name, const std::string& value) {
  return "TL_BEGIN physical_entry\nNAME " + name + "\nTYPE constant\nVALUE " + value +
         "\nTL_END physical_entry\n";
}

constexpr const char* kFluid =
    "VERSION                   4.0\n"
    "FLUID_NAME                                 air of two words\n"
    "FLUID_TYPE                                 Real Gas\n"
    "FLUID_OWNER                                someone\n"
    "VISC_LAW_CHOICE                            2\n"
    "HEAT_COND_LAW_CHOICE                       3\n"
    "CP_LAW_CHOICE                              4\n"
    "BARO_LAW_CHOICE                            5\n";

TEST(FluidProperties, RoundTrip) {
  TLFluidProperties properties;
  ASSERT_EQ(readText(properties, kProperties + entry("gamma", "1.4") +
                                     entry("heatCapacity", "1006") + "TL_END fluid_properties\n")
                .result,
            1);
  const auto text = written(properties);
  EXPECT_EQ(text.substr(0, std::string(kProperties).size()), kProperties);
  EXPECT_EQ(rewritten<TLFluidProperties>(text), text);
  EXPECT_EQ(properties.gamma->value, 1.4);
  // The five come in the order of the record, whatever the file's.
  std::size_t at = 0;
  for (const char* name :
       {"dynamic viscosity", "heatConductivity", "barotropicLaw", "heatCapacity", "gamma"}) {
    at = text.find(name, at);
    EXPECT_NE(at, std::string::npos) << name;
  }
}

TEST(FluidProperties, OldViscosityNames) {
  for (const char* name : {"dynamic viscosity", "kinematic viscosity", "viscosity"}) {
    TLFluidProperties properties;
    ASSERT_EQ(readText(properties, entry(name, "0.5")).result, 1);
    EXPECT_EQ(properties.dynamicViscosity->value, 0.5) << name;
  }
}

TEST(Fluid, RoundTrip) {
  const std::string head =
      std::string(kFluid) + "THERMODYNAMIC_TABLES_PATH                  /tables of/water\n";
  TLFluidProperties properties;
  const std::string inner =
      "     TL_BEGIN FLUID_PROPERTIES\n" + written(properties) + "     TL_END   FLUID_PROPERTIES\n";
  const std::string species =
      "     TL_BEGIN MULTISPECIES_PROPERTIES\n  whatever  \n     TL_END   "
      "MULTISPECIES_PROPERTIES\n";
  EXPECT_EQ(rewritten<TLFluid>(head + inner), head + inner);
  EXPECT_EQ(rewritten<TLFluid>(head + species + inner), head + inner + species);
  EXPECT_EQ(rewritten<TLFluid>(head), head + inner);  // those of the constructor
}

TEST(Fluid, Defaults) {
  TLFluid fluid;
  ASSERT_EQ(readText(fluid, "TL_END fluid_parameters\n").result, 1);
  EXPECT_EQ(fluid.fluidName, "AIR (perfect gas)");
  EXPECT_EQ(fluid.fluidType, "Perfect Gas");
  EXPECT_EQ(fluid.fluidOwner, "UNDEFINED");
  EXPECT_EQ(fluid.thermodynamicTablesPath, "__undefined__");
}

TEST(Fluid, OldTablesKey) {
  const struct {
    const char* type;
    const char* path;
  } cases[] = {
      {"Condensable Gas", "/tables/steam/"},
      {"Condensable Fluid", "__undefined__"},
      {"Perfect Gas", "__undefined__"},
  };
  for (const auto& one : cases) {
    TLFluid fluid;
    readText(fluid, std::string("steam_tables_path /tables/\nFLUID_NAME steam\nFLUID_TYPE ") +
                        one.type + '\n');
    std::string expected = one.path;
    if (expected.back() == '/') expected.back() = hostForm().separator();
    EXPECT_EQ(fluid.thermodynamicTablesPath, expected) << one.type;
  }
}

TEST(Fluid, BadLines) {
  const struct {
    const char* text;
    const char* console;
  } cases[] = {
      {"version\n",
       " wrong TLFluid parameters header: cannot determine fluid parameters version\n"},
      {"FLUID_OWNER\n", "  wrong format for16: FLUID_OWNER\n"},
      {"baro_law_choice\n", "  wrong format for4: baro_law_choice\n"},
      {"tl_begin fluid_properties\nversion\n",
       " wrong TLFluidProperties header: cannot determine TLFluidProperties version\n"},
      {"tl_begin fluid_properties\nPRANDTL\n", "  wrong format for36: PRANDTL\n"},
  };
  for (const auto& bad : cases) {
    TLFluid fluid;
    const auto before = fluid.properties;
    const auto reading = readText(fluid, bad.text);
    EXPECT_EQ(reading.result, 0) << bad.text;
    EXPECT_EQ(reading.console, bad.console);
    EXPECT_EQ(fluid.properties, before);
  }
}

TEST(Fluid, TableFilesByTheirSuffix) {
  const auto directory =
      std::filesystem::temp_directory_path() / ("fluid_tables_" + std::to_string(::getpid()));
  std::filesystem::create_directories(directory);
  for (const char* name : {"b.BER", "a.mer", "c.txt", "d.Ker"}) std::ofstream(directory / name);
  TLFluid fluid;
  fluid.thermodynamicTablesPath = directory.string() + "/";
  EXPECT_TRUE(fluid.thermodynamicTables().empty());
  fluid.fluidType = "Condensable Fluid";
  const auto tables = fluid.thermodynamicTables();
  std::filesystem::remove_all(directory);
  ASSERT_EQ(tables.size(), 3U);
  EXPECT_EQ(tables[0].fileName, "a.mer");
  EXPECT_EQ(tables[0].kind, TLTableKind::mer);
  EXPECT_EQ(tables[1].kind, TLTableKind::ber);
  EXPECT_EQ(tables[2].kind, TLTableKind::ker);
}

}  // namespace
