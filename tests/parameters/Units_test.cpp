#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <iostream>

#include "parameters/TLUnitsDataBase.h"
#include "support/Definitions.h"
#include "support/RecordTexts.h"

namespace {

using ::testing::ElementsAre;

constexpr const char* kUnits =
    "VERSION\nDEFAULT_SYSTEM SI units\nDEFAULT_SYSTEM other\nNEW_PROJECT_DEFAULT_SYSTEM SI units\n"
    "TL_BEGIN other_record\n VALUE_UNITS_NAME no\nTL_END other_record\n"
    "TL_BEGIN units_record\n NUMBER_OF_SYSTEMS 3\n VALUE_UNITS_NAME length\n"
    " UNITS_NAME 1 m\n UNITS_NAME 2  milli   metre\n UNITS_NAME 0 inch\n"
    " CONV_FACTOR 1 2 1000\n CONV_FACTOR 2 2 5\n CONV_FACTOR 3 0 0.25\n"
    " CONV_FACTOR 9 0 7\n CONV_FACTOR -1 0 7\nTL_END units_record\n"
    "TL_END units_database\nTL_BEGIN units_record\n";

TEST(Units, ReadsTheFile) {
  TLUnitsDataBase base;
  const auto reading = readText(base, kUnits);
  EXPECT_EQ(reading.result, 1);
  EXPECT_EQ(reading.console, "");
  EXPECT_THAT(base.defaultSystems, ElementsAre("SI units", "other"));
  EXPECT_EQ(base.newProjectDefaultSystem, "SI units");
  ASSERT_EQ(base.records.size(), 1U);
  const auto length = base.find("  length ");
  ASSERT_TRUE(length);
  EXPECT_FALSE(base.find("Length"));
  EXPECT_THAT(length->unitsNames, ElementsAre("m", "milli metre", "inch"));
  EXPECT_EQ(length->unitsName(1), "milli metre");
  EXPECT_EQ(length->unitsName(3), "");
  EXPECT_EQ(length->firstSystem, 0);
  EXPECT_EQ(length->size, 4);
}

TEST(Units, Factors) {
  TLUnitsDataBase base;
  readText(base, kUnits);
  const auto length = base.find("length");
  const struct {
    int from, to;
    double factor;
  } rows[] = {{1, 2, 1000}, {2, 1, 0}, {2, 2, 1},   {3, 0, 0.25}, {-1, 0, 0}, {0, -1, 0},
              {5, 0, 0},    {0, 5, 0}, {-1, -1, 0}, {4, 0, 0},    {4, 4, 1}};
  for (const auto& row : rows) {
    EXPECT_EQ(length->factor(row.from, row.to), row.factor) << row.from << ' ' << row.to;
  }
}

TEST(Units, BadFiles) {
  const auto reading = [](const char* text) {
    TLUnitsDataBase base;
    return readText(base, std::string("TL_BEGIN units_record\n") + text);
  };
  const auto factor = reading("CONV_FACTOR 1 2\n");
  EXPECT_EQ(factor.result, 0);
  EXPECT_EQ(factor.console,
            "  wrong format for14: CONV_FACTOR 1 2\n"
            "TLUnitsDataBase::read File error from TLUnits object\n");
  EXPECT_EQ(reading("CONV_FACTOR 1 2 3\nNUMBER_OF_SYSTEMS -4\nCONV_FACTOR 0 0 1\n").result, 1);
  EXPECT_EQ(reading("NUMBER_OF_SYSTEMS 2000000000\n").result, 0);
}

TEST(Units, StartsFromTheSolversDirectory) {
  const Definitions definitions;
  TLUnitsDataBase base;
  EXPECT_EQ(base.start(), 1);
  EXPECT_EQ(base.start(), 1);
  ASSERT_EQ(base.records.size(), 1U);
  EXPECT_EQ(base.find("length")->factor(0, 3), 1000.0);
}

TEST(UnitsDeathTest, EndsTheProcessWithoutItsFile) {
  const auto start = [] {
    const TLConsoleRedirect redirect(std::cerr);
    TLUnitsDataBase().start();
  };
  const TVariable nowhere("VELSTRA_DIR", "/no/such");
  EXPECT_EXIT(start(), testing::ExitedWithCode(0),
              "^\\*\\*\\*\\* Cannot Open Units DataBase, Check the file /no/such/velstra.uni\n$");
  const TVariable unset("VELSTRA_DIR", nullptr);
  EXPECT_EXIT(start(), testing::ExitedWithCode(0),
              "^\\*\\*\\*\\* Cannot Start Units DataBase, Check VELSTRA_DIR env. variable \n$");
}

}  // namespace
