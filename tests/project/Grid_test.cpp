#include <gtest/gtest.h>

#include "project/TLGrid.h"
#include "project/TLProjectType.h"
#include "support/RecordTexts.h"
#include "support/RunFileGenerator.h"

namespace {

constexpr auto kStructured = TLProjectType::structured;

std::string grid(const std::string& lines) {
  TLGrid record(kStructured);
  EXPECT_EQ(readText(record, lines).result, 1);
  return written(record);
}

TEST(Grid, GeneratedMeshesRoundTrip) {
  RunFileOptions options;
  options.blocks = {3, 2, 2};
  options.patchesPerFace = 3;
  options.fullNonMatching = 2;
  options.sizeSpread = 8;
  for (const bool unstructured : {false, true}) {
    options.unstructured = unstructured;
    const auto text = RunFileGenerator(options).grid();
    EXPECT_EQ(rewritten<TLGrid>(text, unstructured ? TLProjectType::hexa : kStructured), text);
  }
}

TEST(Grid, CutAnywhereItReadsOrRefusesWithoutHarm) {
  RunFileOptions options;
  options.blocks = {2, 1, 1};
  options.fullNonMatching = 1;
  options.unstructured = true;
  options.furtherParameters = 1;
  const auto text = RunFileGenerator(options).grid();
  for (std::size_t end = text.find('\n'); end != std::string::npos;
       end = text.find('\n', end + 1)) {
    TLGrid record(TLProjectType::hexa);
    const auto reading = readText(record, text.substr(0, end + 1));
    EXPECT_EQ(reading.result, 1) << text.substr(0, end + 1).substr(end > 60 ? end - 60 : 0);
    EXPECT_EQ(reading.console, "");
  }
}

TEST(Grid, NewRecordAndKeys) {
  EXPECT_EQ(grid("ZyvGridVersion 61\nshowKM5message 1\nGRIDUNIT 0.001\nnumber_of_grid_level_j 4\n"),
            "      VERSION                        1.0\n"
            "      GRIDUNIT                       0.001\n"
            "      NUMBER_OF_GRID_LEVEL_I         1\n"
            "      NUMBER_OF_GRID_LEVEL_J         4\n"
            "      NUMBER_OF_GRID_LEVEL_K         1\n"
            "      ZYVGRIDVERSION                 61\n"
            "      SHOWKM5MESSAGE                 1\n");
}

TEST(Grid, ChildrenInTheirOrder) {
  const std::string head = grid("");
  TLBlock block(kStructured);
  const std::string blade =
      "      TL_BEGIN blade_definition\n"
      "        VERSION                      1.0\n"
      "        NAME                         b\n"
      "        GROUP_NAME                   g\n"
      "      TL_END   blade_definition\n";
  const std::string connection = "      TL_BEGIN fnmb_connection\n" + written(TLFNMB(kStructured)) +
                                 "      TL_END   fnmb_connection\n";
  const std::string turbo =
      "      TL_BEGIN initial_solution_turbo\n  VERSION 1.0\n kept\n"
      "      TL_END   initial_solution_turbo\n";
  std::ostringstream console;
  TLConsoleRedirect redirect(console);
  const std::string mesh = "      TL_BEGIN block\n" + written(block) + "      TL_END   block\n";
  // Patches of the three lists go under one key.
  const std::string patches =
      "        MERIDIONNAL_PATCH            1 2 3 4 5 6 7\n"
      "        MERIDIONNAL_PATCH            2 2 3 4 5 6 7\n"
      "        MERIDIONNAL_PATCH            3 2 3 4 5 6 7\n";
  EXPECT_EQ(grid("meridionnal_patchss 3 2 3 4 5 6 7\nmeridionnal_patch 1 2 3 4 5 6 7 8\n"
                 "meridionnal_patchps 2 2 3 4 5 6 7\n" +
                 blade + connection + turbo + "TL_BEGIN other\nGRIDUNIT 3\nTL_END other\n" + mesh),
            head + mesh + turbo + connection + blade + patches);
}

TEST(Grid, ControlSurfaces) {
  TLGrid record(kStructured);
  ASSERT_EQ(readText(record,
                     "TL_BEGIN control_surface\nVERSION 3.0\nTYPE SOLID\nTL_END control_surface\n")
                .result,
            1);
  ASSERT_EQ(record.controlSurfaces.size(), 1U);
  const auto text = written(record);
  EXPECT_NE(text.find("      TL_BEGIN control_surface\n"), std::string::npos);
  EXPECT_EQ(rewritten<TLGrid>(text, kStructured), text);
}

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

TEST(Grid, AFaultBelowEndsTheRead) {
  const struct {
    const char* text;
    const char* console;
  } cases[] = {
      {"version\n", " wrong grid header: cannot determine grid version\n"},
      {"meridionnal_patchss 1 2 3 4 5 6\n",
       " wrong TLMeridionnalPatch indices: cannot determine bc indices\n"},
      {"gridunit\n", "  wrong format for36: gridunit\n"},
      {"tl_begin block\ntl_begin face\ntl_begin boundary_condition\nindices\n",
       " wrong bc indices: cannot determine bc indices\n"},
      {"tl_begin fnmb_connection\nleft_face: x\n", "wrong TLFNMBPatches format\n"},
      {"tl_begin initial_solution_turbo\nversion\n",
       " wrong TLInitSolTurbo entry header: cannot determine TLInitSolTurbo entry version\n"},
  };
  for (const auto& bad : cases) {
    TLGrid record(kStructured);
    const auto reading = readText(record, bad.text);
    EXPECT_EQ(reading.result, 0) << bad.text;
    EXPECT_EQ(reading.console, bad.console);
    EXPECT_TRUE(record.blocks.empty() && record.connections.empty());
  }
}

}  // namespace
