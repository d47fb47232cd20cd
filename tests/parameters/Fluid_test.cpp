#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "parameters/TLFluid.h"
#include "platform/TLHostForm.h"
#include "platform/TTempDir.h"
#include "support/RecordTexts.h"

namespace {

TEST(FluidProperties, OldViscosityNames) {
  for (const std::string name : {"dynamic viscosity", "kinematic viscosity", "viscosity"}) {
    TLFluidProperties properties;
    ASSERT_EQ(readText(properties, "TL_BEGIN physical_entry\nNAME " + name +
                                       "\nTYPE constant\nVALUE 0.5\nTL_END physical_entry\n")
                  .result,
              1);
    EXPECT_EQ(properties.dynamicViscosity->value, 0.5) << name;
  }
}

TEST(Fluid, NewRecord) {
  EXPECT_THAT(rewritten<TLFluid>("TL_END fluid_parameters\n"),
              testing::StartsWith("VERSION                   4.0\n"
                                  "FLUID_NAME                                 AIR (perfect gas)\n"
                                  "FLUID_TYPE                                 Perfect Gas\n"
                                  "FLUID_OWNER                                UNDEFINED\n"));
}

TEST(Fluid, OldTablesKey) {
  const std::pair<std::string, std::string> cases[] = {
      {"Condensable Gas", std::string("/tables/steam") + hostForm().separator()},
      {"Condensable Fluid", "__undefined__"},
      {"Perfect Gas", "__undefined__"},
  };
  for (const auto& [type, path] : cases) {
    TLFluid fluid;
    readText(fluid, "steam_tables_path /tables/\nFLUID_NAME steam\nFLUID_TYPE " + type + '\n');
    EXPECT_EQ(fluid.thermodynamicTablesPath, path) << type;
  }
}

TEST(Fluid, TableFilesByTheirSuffix) {
  const TTempDir directory;
  for (const char* name : {"b.BER", "a.mer", "c.txt", "d.Ker"}) directory.write(name, "");
  TLFluid fluid;
  fluid.thermodynamicTablesPath = directory.path() + "/";
  EXPECT_TRUE(fluid.thermodynamicTables().empty());
  fluid.fluidType = "Condensable Fluid";
  const auto tables = fluid.thermodynamicTables();
  ASSERT_EQ(tables.size(), 3U);
  EXPECT_EQ(tables[0].fileName, "a.mer");
  EXPECT_EQ(tables[0].kind, TLTableKind::mer);
  EXPECT_EQ(tables[1].kind, TLTableKind::ber);
  EXPECT_EQ(tables[2].kind, TLTableKind::ker);
}

}  // namespace
