#include <gtest/gtest.h>

#include "project/TLFNMB.h"
#include "project/TLProjectType.h"
#include "project/TLTopologicalBlade.h"
#include "support/RecordTexts.h"

namespace {

TEST(FullNonMatching, UnstructuredPatchesCountFromZeroInTheFile) {
  for (const auto type : {TLProjectType::hexa, TLProjectType::marine}) {
    TLFNMB record(type);
    const std::string line = "            Left_face:            side_a 3  1  0\n";
    ASSERT_EQ(readText(record, "VERSION 1.5\n" + line + "Right_face: 0 0 5\n").result, 1);
    const auto& patch = *record.leftPatches.at(0);
    EXPECT_EQ(patch.block(), 4);
    EXPECT_EQ(patch.face(), 1);
    EXPECT_EQ(patch.patch(), 1);
    EXPECT_EQ(patch.name, "");
    EXPECT_EQ(record.rightPatches.at(0)->patch(), 6);
    const auto text = written(record);
    EXPECT_NE(text.find(line), std::string::npos);
    EXPECT_EQ(rewritten<TLFNMB>(text, type), text);
  }
}

TEST(FullNonMatching, Keys) {
  TLFNMB record(TLProjectType::structured);
  const auto reading = readText(record,
                                "tolerance 5\n"  // no colon: not the key
                                "TOLERANCE: 0.5\n"
                                "left_patches: a 1 2 3\n"   // old spelling
                                "Left_face: b 4 5 6 7 8\n"  // more than wanted
                                "RIGHT_PATCHES: c 7 8 9\n"
                                "TL_BEGIN other\nside: 4\nTL_END other\n"
                                "TL_END face\n"  // of something else
                                "is_periodic: 1\n"
                                "tl_end FNMB_connection\n"
                                "side: 9\n");
  EXPECT_EQ(reading.result, 1);
  EXPECT_EQ(reading.console, "");
  EXPECT_EQ(record.tolerance, 0.5);
  EXPECT_EQ(record.side, 0);
  EXPECT_EQ(record.isPeriodic, 1);
  ASSERT_EQ(record.leftPatches.size(), 2U);
  EXPECT_EQ(record.leftPatches[1]->indices, (std::array<std::int32_t, 3>{4, 5, 6}));
  EXPECT_EQ(record.rightPatches.size(), 1U);
}

TEST(TopologicalBlade, AnEdgeClosesUnderAnyOfItsNames) {
  TLTopologicalBlade blade;
  EXPECT_EQ(readText(blade,
                     "TL_BEGIN leading_edge\nblock_name a\nTL_END topological_edge\n"
                     "TL_BEGIN leading_edge\nblock_name b\nTL_END trailing_edge\nname c\n")
                .result,
            1);
  EXPECT_EQ(blade.leadingEdges.size(), 2U);
  EXPECT_EQ(blade.name, "c");
}

}  // namespace
