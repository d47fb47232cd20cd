#include <gtest/gtest.h>

#include "project/TLFNMB.h"
#include "project/TLHexaPartition.h"
#include "project/TLMeridionnalPatch.h"
#include "project/TLProjectType.h"
#include "project/TLTopologicalBlade.h"
#include "support/RecordTexts.h"

namespace {

constexpr const char* kConnection =
    "            VERSION                      2\n"
    "            NAME:                        stage_1\n"
    "            PROJECTION_TYPE:             1\n"
    "            SEARCH_TYPE:                 2\n"
    "            SIDE:                        1\n"
    "            TOLERANCE:                   1e-06\n"
    "            MAXIMUM_PROJECTION_DISTANCE: 1e+06\n"
    "            MINIMUM_PROJECTION_DISTANCE: 0.25\n"
    "            NORMALS_SMOOTHING_STEPS:     3\n"
    "            TRIANGULATED_SIDE:           1\n"
    "            RS_CONNECTION:               1\n"
    "            IS_PERIODIC:                 1\n"
    "            Left_face:            row_1 1  6  2\n"
    "            Left_face:            row_1b 2  6  1\n"
    "            Right_face:            row_2 4  5  1\n";

TEST(FullNonMatching, RoundTrip) {
  for (const auto type :
       {TLProjectType::structured, TLProjectType::bladeToBlade, TLProjectType::sculpt3d}) {
    EXPECT_EQ(rewritten<TLFNMB>(kConnection, type), kConnection);
  }
}

TEST(FullNonMatching, NewRecord) {
  EXPECT_EQ(written(TLFNMB(TLProjectType::structured)),
            "            VERSION                      2\n"
            "            NAME:                        unknown\n"
            "            PROJECTION_TYPE:             0\n"
            "            SEARCH_TYPE:                 0\n"
            "            SIDE:                        0\n"
            "            TOLERANCE:                   1e-06\n"
            "            MAXIMUM_PROJECTION_DISTANCE: 1e+06\n"
            "            MINIMUM_PROJECTION_DISTANCE: 1e+06\n"
            "            NORMALS_SMOOTHING_STEPS:     0\n"
            "            TRIANGULATED_SIDE:           0\n"
            "            RS_CONNECTION:               0\n"
            "            IS_PERIODIC:                 0\n");
}

TEST(FullNonMatching, UnstructuredPatchesCountFromZeroInTheFile) {
  for (const auto type : {TLProjectType::hexa, TLProjectType::marine}) {
    TLFNMB record(type);
    const std::string line = "            Left_face:            side_a 3  1  0\n";
    ASSERT_EQ(readText(record, "VERSION 1.5\n" + line).result, 1);
    ASSERT_EQ(record.leftPatches.size(), 1U);
    const auto& patch = *record.leftPatches[0];
    EXPECT_EQ(patch.block(), 4);
    EXPECT_EQ(patch.face(), 1);
    EXPECT_EQ(patch.patch(), 1);
    EXPECT_EQ(patch.name, "");
    const auto text = written(record);
    EXPECT_EQ(text.rfind("            VERSION                      1.5\n", 0), 0U);
    EXPECT_EQ(text.substr(text.size() - line.size()), line);
  }
  TLFNMB nameless(TLProjectType::hexa);
  ASSERT_EQ(readText(nameless, "Right_face: 0 0 5\n").result, 1);
  EXPECT_EQ(nameless.rightPatches[0]->patch(), 6);
  TLFNMB again(TLProjectType::hexa);
  ASSERT_EQ(readText(again, written(nameless)).result, 1);
  EXPECT_EQ(written(again), written(nameless));
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

struct Bad {
  const char* text;
  const char* console;
};

TEST(FullNonMatching, BadLines) {
  const Bad cases[] = {
      {"version\n", " TLFNMB: wrong bc header: cannot determine bc version\n"},
      {"left_face: a 1 2\n", "wrong TLFNMBPatches format\n"},
      {"Right_face:\n", "wrong TLFNMBPatches format\n"},
      {"side:\n", "  wrong format for4: side:\n"},
      {"tolerance:\n", "  wrong format for36: tolerance:\n"},
  };
  for (const auto& bad : cases) {
    TLFNMB record(TLProjectType::structured);
    const auto reading = readText(record, bad.text);
    EXPECT_EQ(reading.result, 0) << bad.text;
    EXPECT_EQ(reading.console, bad.console) << bad.text;
  }
}

TEST(HexaPartition, RoundTripKeepsItsVersion) {
  const std::string text =
      "        VERSION\t\t1.5\n"
      "        PARTITION_NAME\tpart of two words\n"
      "        PARTITION_ID\t\t3\n"
      "        NB_CELLS\t\t120000\n"
      "        NB_VERTICES\t\t131072\n";
  EXPECT_EQ(rewritten<TLHexaPartition>(text + "        TL_END   hexa_partition\nNB_CELLS 1\n"),
            text);
  TLHexaPartition record;
  const auto reading = readText(record, "Version\n");
  EXPECT_EQ(reading.result, 0);
  EXPECT_EQ(reading.console, " wrong block header: cannot determine block version\n");
}

TEST(MeridionnalPatch, SevenIndices) {
  TLMeridionnalPatch patch;
  EXPECT_EQ(patch.readLine("meridionnal_patch 1 2 3 4 5 6 7 8"), 1);
  EXPECT_EQ(written(patch), "        MERIDIONNAL_PATCH            1 2 3 4 5 6 7\n");
  std::ostringstream console;
  TLConsoleRedirect redirect(console);
  EXPECT_EQ(patch.readLine("meridionnal_patch 9 9 9 9 9 9"), 0);
  EXPECT_EQ(console.str(), " wrong TLMeridionnalPatch indices: cannot determine bc indices\n");
  EXPECT_EQ(patch.indices[0], 1);
}

TEST(TopologicalBlade, RoundTrip) {
  const std::string text =
      "        VERSION                      1.0\n"
      "        NAME                         main blade\n"
      "        GROUP_NAME                   rotor\n"
      "          TL_BEGIN leading_edge\n"
      "            VERSION                  1.0\n"
      "            BLOCK_NAME               domain_1\n"
      "            INDICES                  1 2 3 4 5\n"
      "          TL_END   leading_edge\n"
      "          TL_BEGIN trailing_edge\n"
      "            VERSION                  1.0\n"
      "            BLOCK_NAME               domain_2\n"
      "            INDICES                  6\n"
      "          TL_END   trailing_edge\n"
      "          TL_BEGIN BladeTransitionParameters\n"
      "   anything  at all \n"
      "          TL_END   BladeTransitionParameters\n"
      "          TL_BEGIN topological_patch\n"
      "            VERSION                  1.0\n"
      "            BLOCK_NAME               domain_3\n"
      "            INDICES                  1 1 1 9 9 1\n"
      "          TL_END   topological_patch\n";
  EXPECT_EQ(rewritten<TLTopologicalBlade>(text), text);
  // An edge closes under any of its names, whatever it was opened with.
  TLTopologicalBlade blade;
  EXPECT_EQ(readText(blade,
                     "TL_BEGIN leading_edge\nblock_name a\nTL_END topological_edge\n"
                     "TL_BEGIN leading_edge\nblock_name b\nTL_END trailing_edge\nname c\n")
                .result,
            1);
  EXPECT_EQ(blade.leadingEdges.size(), 2U);
  EXPECT_EQ(blade.name, "c");
  const auto reading = readText(blade, "version\n");
  EXPECT_EQ(reading.result, 0);
  EXPECT_EQ(reading.console, " wrong face header: cannot determine topological_blade version\n");
}

}  // namespace
