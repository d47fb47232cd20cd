#include "balancing/VPartParameters.h"

#include <gtest/gtest.h>

namespace {

// Every field comes back from the run files of the project's tests.
TEST(VPartParameters, StartsFromTheDefaultsAndRefusesMissingValues) {
  VPartParameters record;
  record.nbBlocksPerProcess = 99;
  TLTextSource text(
      "NTASK 4\nsizeI 18446744073709551615\nsizeD 5000000000\nunknown 1\n"
      "TL_END virtual_partition\nleft");
  ASSERT_EQ(record.read(text), 1);
  EXPECT_EQ(text.readLine(), "left");
  EXPECT_EQ(record.nbTasks(), 4);
  EXPECT_EQ(record.sizeI, 18446744073709551615U);
  EXPECT_EQ(record.sizeD, 5000000000U);
  EXPECT_EQ(record.nbBlocksPerProcess, 8);
  for (const char* line : {"NTASK\n", "PENALTIES 1 2 3\n", "sizeI\n", "RED_BLACK_TREE\n"}) {
    TLTextSource bad(line);
    EXPECT_EQ(record.read(bad), 0) << line;
  }
}

}  // namespace
