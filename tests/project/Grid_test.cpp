#include <gtest/gtest.h>

#include "project/TLGrid.h"
#include "project/TLProjectType.h"
#include "support/RecordTexts.h"
#include "support/RunFileGenerator.h"

namespace {

constexpr auto kStructured = TLProjectType::structured;

TEST(Grid, PlacesCountFromOne) {
  RunFileOptions options;
  const RunFileGenerator generator(options);
  TLGrid record(kStructured);
  ASSERT_EQ(readText(record, generator.grid()).result, 1);
  EXPECT_EQ(record.block(1), record.blocks[0].get());
  EXPECT_EQ(record.block(8), record.blocks[7].get());
  EXPECT_EQ(record.block(0), nullptr);
  EXPECT_EQ(record.block(9), nullptr);
  EXPECT_EQ(record.block(-2147483647 - 1), nullptr);
  EXPECT_EQ(record.face(8, 7), nullptr);
  EXPECT_EQ(record.patch(8, 6, 2), nullptr);
  EXPECT_EQ(record.patch(2, 6, 1), record.blocks[1]->faces[5]->conditions[0].get());
  int connections = 0;
  for (int block = 1; block <= 8; ++block) {
    for (int face = 0; face < 6; ++face) {
      const TLBC& patch = *record.patch(block, face + 1, 1);
      EXPECT_EQ(patch.isConnection(), generator.neighbour(block, face) != 0);
      if (!patch.isConnection()) continue;
      ++connections;
      EXPECT_EQ(patch.connectedBlock(), generator.neighbour(block, face));
      const TLBC& other =
          *record.patch(patch.connectedBlock(), patch.connectedFace(), patch.connectedPatch());
      EXPECT_EQ(other.connectedBlock(), block);
    }
  }
  EXPECT_EQ(connections, 24);
}

TEST(Grid, LinksConditionsToTheComputationsRecords) {
  TLGrid record(kStructured);
  const std::string condition =
      "TL_BEGIN boundary_condition\nTYPE INL\nINDICES 1 2 1 2\ncontrol_surface 5\n";
  const std::string end = "TL_END boundary_condition\n";
  ASSERT_EQ(
      readText(record, "TL_BEGIN block\nTL_BEGIN face\n" + condition + "bc_parameters_index 1\n" +
                           end + condition + end + condition + "bc_parameters_index 9\n" + end +
                           condition + "TL_BEGIN bc_parameters\nTYPE_ID 7\nTL_END bc_parameters\n" +
                           end + "TL_END face\nTL_END block\n")
          .result,
      1);
  std::vector<Handle<TLBCParameters>> list{makeHandle<TLBCParameters>(),
                                           makeHandle<TLBCParameters>()};
  list[1]->typeId = 28;
  record.moveParametersTo(list);
  record.linkParameters(list);
  const auto& conditions = record.blocks[0]->faces[0]->conditions;
  EXPECT_EQ(conditions[0]->parameters, list[1]);
  EXPECT_EQ(conditions[0]->controlSurfaceNames, std::vector<RWCString>{"inlet_4"});
  EXPECT_FALSE(conditions[1]->parameters);
  EXPECT_FALSE(conditions[2]->parameters);
  // An own record joins the list.
  ASSERT_EQ(list.size(), 3U);
  EXPECT_EQ(list[2]->typeId, 7);
  EXPECT_EQ(conditions[3]->bcParametersIndex, 2);
}

}  // namespace
