#include "balancing/VPartParameters.h"

#include <gtest/gtest.h>

namespace {

std::string written(const VPartParameters& record) {
  TLTextSink sink;
  record.write(sink);
  return sink.take();
}

TEST(VPartParameters, WritesItsDefaultsInTheFixedForm) {
  EXPECT_EQ(written(VPartParameters()),
            "              NTASK \t\t\t\t\t1\n"
            "              NUMBER_OF_BLOCKS_PER_PROCESS \t\t8\n"
            "              BALANCING \t\t\t\t0.8\n"
            "              PENALTIES \t\t\t\t1 0.2 0.2 0.05\n"
            "              RED_BLACK_TREE \t\t\t1\n"
            "              WORK_ON_COARSE_GRID \t\t\t0\n"
            "              NUMBER_OF_CONSTANT_ITERATION \t10\n"
            "              TOLERANCE_OF_CONSTANT_ITERATION \t0.01\n"
            "              RUN_COMPUTATION \t\t\t1\n"
            "              automaticMemoryEstimation \t\t1\n"
            "              INTEGER_RELAXATION \t\t\t1.5\n"
            "              REAL_RELAXATION \t\t\t1.2\n"
            "              sizeI \t\t\t\t\t10000\n"
            "              sizeD \t\t\t\t\t10000\n"
            "              activated \t\t\t\t0\n"
            "              PARTITIONED_RUNFILE \t\t\t0\n"
            "              WRITE_SOLUTION_ON_PARTITON \t\t0\n"
            "              PARTITION_NMB \t\t\t1\n"
            "              PROJECT_BUFFER_SIZE \t\t\t0\n"
            "              MERGE_VIRTUAL_TOPOLOGY \t\t0\n");
}

TEST(VPartParameters, ReadsBackEveryFieldAndLeavesTheNextBlock) {
  const std::string text =
      "NTASK 7\nNUMBER_OF_BLOCKS_PER_PROCESS 3\nBALANCING 0.25\nPENALTIES 4 3 2 1\n"
      "RED_BLACK_TREE 0\nWORK_ON_COARSE_GRID 1\nNUMBER_OF_CONSTANT_ITERATION 11\n"
      "TOLERANCE_OF_CONSTANT_ITERATION 0.5\nRUN_COMPUTATION 0\nAUTOMATICMEMORYESTIMATION 0\n"
      "INTEGER_RELAXATION 2.5\nREAL_RELAXATION 3.5\nsizeI 18446744073709551615\n"
      "sizeD 5000000000\nactivated 1\nPARTITIONED_RUNFILE 1\nWRITE_SOLUTION_ON_PARTITON 1\n"
      "PARTITION_NMB 0\nPROJECT_BUFFER_SIZE 1.25\nMERGE_VIRTUAL_TOPOLOGY 2\nunknown 1\n"
      "TL_END virtual_partition\nleft";
  TLTextSource source(text);
  VPartParameters record;
  ASSERT_EQ(record.read(source), 1);
  EXPECT_EQ(source.readLine(), "left");
  EXPECT_EQ(record.nbTasks(), 7);
  EXPECT_TRUE(record.isActivated());
  EXPECT_EQ(record.sizeI, 18446744073709551615U);
  EXPECT_EQ(record.sizeD, 5000000000U);

  TLTextSource again(written(record));
  VPartParameters copy;
  ASSERT_EQ(copy.read(again), 1);
  EXPECT_EQ(written(copy), written(record));
  EXPECT_NE(written(copy), written(VPartParameters()));
}

TEST(VPartParameters, StartsFromTheDefaultsAndRefusesMissingValues) {
  VPartParameters record;
  record.nbBlocksPerProcess = 99;
  TLTextSource one("NTASK 4\n");
  ASSERT_EQ(record.read(one), 1);
  EXPECT_EQ(record.nbTasks(), 4);
  EXPECT_EQ(record.nbBlocksPerProcess, 8);
  for (const char* text : {"NTASK\n", "PENALTIES 1 2 3\n", "sizeI\n", "RED_BLACK_TREE\n"}) {
    TLTextSource bad(text);
    EXPECT_EQ(record.read(bad), 0) << text;
  }
}

}  // namespace
