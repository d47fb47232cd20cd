#include <gtest/gtest.h>

#include "parameters/TLFluid.h"
#include "platform/TTempDir.h"

namespace {

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
