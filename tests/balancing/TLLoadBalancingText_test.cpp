#include <gtest/gtest.h>

#include "balancing/TLLoadBalancing.h"
#include "support/RecordTexts.h"

namespace {

using Names = std::vector<RWCString>;

TEST(TLLoadBalancingText, WritesTheFixedFormAndReadsItBack) {
  TLLoadBalancing record;
  record.mpiSgi664 = 1;
  record.fluidType = "Perfect Gas";
  record.processNames = {"hostA", "hostB"};
  record.blockProcess = {0, 1, 1};
  record.designGenerations = {"g1", "g2"};
  record.geomGeneration = {{"a", "b"}, {}};
  record.feaPostTreatmentGeneration = {{"z"}};
  const std::string text = written(record);
  EXPECT_TRUE(
      text.starts_with("         PARALLEL           0\n"
                       "         MPI_TYPE           2\n"
                       "         PROCESS_NAME       2  hostA  hostB\n"
                       "         QUEUING_SYSTEM_ACTIVATED      0\n"
                       "         NB_QUEUING_SYSTEM_PROCESSOR   1\n"
                       "         QUEUING_SYSTEM_QUEUE          Undefined\n"
                       "         QUEUING_TEMPLATE              default_ompi\n"
                       "         COMPILER_CHOICE               0\n"
                       "         AUTOMATIC_LOAD_BALANCING_ACTIVATED   1\n"
                       "         FLUID_TYPE                           Perfect Gas\n"
                       "         STEAM_TABLES_PATH                    unknown\n"
                       "         USER_SOLVER_PRECISION               0\n"
                       "         MAXIMUM_HARMONICS_NUMBER             0\n"
                       "         BLOCK_ID                             3  0  1  1\n"
                       "         MPISGI664                            1\n"
                       "         DESIGN_GENERATION           2  g1  g2\n"
                       "         GEOM_GENERATION           2\n2  a  b\n0\n"
                       "         MESH_GENERATION           2\n0\n0\n"))
      << text;
  TLTextSource source(text + "TL_END load_balancing\nleft");
  TLLoadBalancing copy;
  copy.processNames = {"gone"};
  ASSERT_EQ(copy.read(source), 1);
  EXPECT_EQ(source.readLine(), "left");
  EXPECT_EQ(written(copy), text);
}

TEST(TLLoadBalancingText, TakesTheQueueSettingsOfOlderFiles) {
  struct Case {
    const char* text;
    std::int32_t activated;
    std::int32_t processors;
    const char* queue;
  };
  const Case cases[] = {
      {"sge_activated 1\nNB_SGE_PROCESSOR 4\nSGE_PE mpi\n", 1, 4, "mpi"},
      {"pbs_activated 1\nnb_pbs_processor 8\npbs_pe long\n", 2, 8, "long"},
      {"pbs_pe long\nnb_pbs_processor 8\npbs_activated 1\nsge_activated 1\nnb_sge_processor 4\n", 2,
       8, "long"},
      {"sge_activated 0\nnb_sge_processor 4\nsge_pe mpi\n", 0, 1, "Undefined"},
      {"sge_activated 2\nnb_sge_processor 4\n", 0, 1, "Undefined"},
  };
  for (const auto& c : cases) {
    TLTextSource source(c.text);
    TLLoadBalancing record;
    ASSERT_EQ(record.read(source), 1) << c.text;
    EXPECT_EQ(record.queuingSystemActivated, c.activated) << c.text;
    EXPECT_EQ(record.nbQueuingSystemProcessor, c.processors) << c.text;
    EXPECT_EQ(record.queuingSystemQueue, c.queue) << c.text;
  }
}

TEST(TLLoadBalancingText, ReadsByKeyAndRefusesShortLists) {
  TLLoadBalancing record;
  record.maximumHarmonicsNumber = 3;
  TLTextSource good("BLOCK_ID 2 1 0 9\nunknown x\nMAXIMUM_HARMONICS_NUMBER 7\nparallel 1\n");
  ASSERT_EQ(record.read(good), 1);
  EXPECT_EQ(record.blockProcess, (std::vector<std::int32_t>{1, 0}));
  EXPECT_EQ(record.maximumHarmonicsNumber, 3);
  EXPECT_EQ(record.parallel, 1);
  for (const char* text :
       {"PROCESS_NAME 2 a\n", "PROCESS_NAME\n", "BLOCK_ID 2147483647 1\n", "PARALLEL\n",
        "GEOM_GENERATION\n", "GEOM_GENERATION 2\n1 a\n", "MESH_GENERATION 1\n2 a\n"}) {
    TLTextSource bad(text);
    EXPECT_EQ(record.read(bad), 0) << text;
  }
}

TEST(TLLoadBalancingProcesses, RemovingOneMovesItsBlocks) {
  TLLoadBalancing record;
  record.processNames = {"a", "b", "c"};
  record.blockProcess = {0, 1, 2, 1};
  record.removeProcess(0);
  record.removeProcess(3);
  record.removeProcess(-1);
  EXPECT_EQ(record.processNames.size(), 3U);
  record.removeProcess(1);
  EXPECT_EQ(record.processNames, (Names{"a", "c"}));
  EXPECT_EQ(record.blockProcess, (std::vector<std::int32_t>{0, 0, 1, 0}));

  record.queuingSystemActivated = 1;
  record.nbQueuingSystemProcessor = 4;
  record.blockProcess = {3, 2, 0, 3};
  record.removeProcess(77);
  EXPECT_EQ(record.nbQueuingSystemProcessor, 3);
  EXPECT_EQ(record.blockProcess, (std::vector<std::int32_t>{2, 2, 0, 2}));
  EXPECT_EQ(record.processNames.size(), 2U);
}

TEST(TLLoadBalancingProcesses, BlocksAreSetWithinBounds) {
  TLLoadBalancing record;
  record.processNames = {"a", "b"};
  record.setProcessOfBlock(2, 1);
  EXPECT_EQ(record.blockProcess, (std::vector<std::int32_t>{0, 0, 1}));
  record.setProcessOfBlock(-1, 1);
  record.setProcessOfBlock(0, 3);
  record.setProcessOfBlock(0, -1);
  EXPECT_EQ(record.processOfBlock(0), 0);
  EXPECT_EQ(record.processOfBlock(-1), 0);
  EXPECT_EQ(record.processOfBlock(3), 0);
  record.queuingSystemActivated = 2;
  record.nbQueuingSystemProcessor = 5;
  record.setProcessOfBlock(0, 4);
  EXPECT_EQ(record.processOfBlock(0), 4);
  record.setNbBlocks(5);
  EXPECT_EQ(record.blockProcess, (std::vector<std::int32_t>{4, 0, 1, 0, 0}));
  record.setNbBlocks(1);
  EXPECT_EQ(record.blockProcess, (std::vector<std::int32_t>{4}));
  EXPECT_EQ(record.processName(1), "b");
  EXPECT_EQ(record.processName(2), "Undefined");
  EXPECT_EQ(record.processName(-1), "Undefined");
}

}  // namespace
