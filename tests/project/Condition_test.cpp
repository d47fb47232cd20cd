#include <gtest/gtest.h>

#include "project/TLFace.h"
#include "project/TLProjectType.h"
#include "support/RecordTexts.h"

namespace {

using Indices = std::array<std::int32_t, 4>;

constexpr auto kType = TLProjectType::structured;

// The lines of a condition of one type, as they are written.
std::string condition(const std::string& type, bool connection = false) {
  std::string text =
      "            VERSION                   4.0\n"
      "            NAME                      blade 1\n"
      "            BC_PARAMETERS_INDEX        7\n"
      "            TYPE                      " +
      type +
      "\n"
      "            INDICES                   1 17 1 33\n"
      "            BC_INDICES                3 2 1\n";
  if (connection) text += "            CONNECTION_INFO           4 1 2 0 1 -1\n";
  text +=
      "            LAGRANGIAN_GROUP_NAME   particles a\n"
      "            COUPLING_NAME           shaft\n"
      "            COUPLING_TYPE           2\n"
      "            DEFORMATION_TYPE        3\n";
  if (type == "SOL") text += "            MODAL_STRUCTURE_INDEX   5\n";
  return text;
}

TEST(Condition, RoundTripOfEachType) {
  for (const char* type : {"SOL", "INL", "OUT", "ROT", "MIR"}) {
    // Written is what belongs to the type, whatever was read.
    const auto all = condition(type) + "CONNECTION_INFO 4 1 2 0 1 -1\nMODAL_STRUCTURE_INDEX 5\n";
    EXPECT_EQ(rewritten<TLBC>(condition(type), kType), condition(type)) << type;
    EXPECT_EQ(rewritten<TLBC>(all, kType), condition(type)) << type;
  }
  for (const char* type : {"CON", "NMB", "PER", "PERNM"}) {
    EXPECT_EQ(rewritten<TLBC>(condition(type, true), kType), condition(type, true)) << type;
  }
}

TEST(Condition, WithoutATypeStaysReadable) {
  const auto text = rewritten<TLBC>("INDICES 1 2 3 4\n", kType);
  EXPECT_EQ(text.find("\n            TYPE"), std::string::npos);
  EXPECT_EQ(rewritten<TLBC>(text, kType), text);
}

TEST(Condition, ConnectionCountsFromOne) {
  TLBC record(kType);
  readText(record, condition("PER", true));
  EXPECT_TRUE(record.isConnection());
  EXPECT_EQ(record.connectedBlock(), 4);
  EXPECT_EQ(record.connectedFace(), 1);
  EXPECT_EQ(record.connectedPatch(), 2);
  EXPECT_EQ(record.indices, (Indices{1, 17, 1, 33}));
}

TEST(Condition, EarlierKeysWinOnALine) {
  TLBC record(kType);
  ASSERT_EQ(readText(record, "NAME the condition of type x\n").result, 1);
  EXPECT_EQ(record.name, "");
  EXPECT_EQ(record.condition, "the condition of type x");
}

TEST(Condition, ControlSurfacesOfASolid) {
  auto solid = makeHandle<TLBCParameters>();
  solid->type = "SOLID";
  const std::string line = "              CONTROL_SURFACE_NAME              ";
  for (const char* type : {"SOL", "ROT", "INL", "CON"}) {
    TLBC record(kType);
    readText(record, std::string("TYPE ") + type +
                         "\ncontrol_surface_name No_Force_and_Torque\n"
                         "control_surface_name my surface\n");
    const auto without = written(record);
    EXPECT_EQ(without.find("CONTROL_SURFACE"), std::string::npos) << type;
    record.parameters = solid;
    const bool has = type == std::string("SOL") || type == std::string("ROT");
    EXPECT_EQ(written(record), without + (has ? line + "my surface\n" : "")) << type;
  }
}

TEST(Condition, ControlSurfaceNamesGrowOnDemand) {
  TLBC record(kType);
  EXPECT_EQ(record.controlSurfaceName(2), "UNDEFINED");
  EXPECT_EQ(record.controlSurfaceNames,
            (std::vector<RWCString>{"No_Force_and_Torque", "UNDEFINED", "UNDEFINED"}));
}

TEST(Condition, NamesFromTheFirstControlSurface) {
  const struct {
    const char* text;
    std::int32_t typeId;
    std::vector<RWCString> names;
  } cases[] = {
      {"type SOL\ncontrol_surface 3\n", 0, {"No_Force_and_Torque", "Force_and_Torque"}},
      {"type SOL\ncontrol_surface 0\ncontrol_surface 3\n", 0, {}},
      {"type SOL\n", 0, {}},
      {"type SOL\ncontrol_surface 3\ncontrol_surface_name own\n", 0, {"own"}},
      {"type INL\ncontrol_surface 3\n", 28, {"inlet_2"}},
      {"type INL\ncontrol_surface 3\n", 27, {}},
      {"type OUT\ncontrol_surface 12\n", 27, {"outlet_11"}},
      {"type OUT\ncontrol_surface 12\n", 28, {}},
      {"type CON\ncontrol_surface 12\n", 28, {}},
  };
  for (const auto& one : cases) {
    TLBC record(kType);
    ASSERT_EQ(readText(record, one.text).result, 1);
    record.parameters = makeHandle<TLBCParameters>();
    record.parameters->typeId = one.typeId;
    record.settleControlSurfaceNames();
    record.settleControlSurfaceNames();
    EXPECT_EQ(record.controlSurfaceNames, one.names) << one.text;
  }
}

TEST(Condition, BlocksInside) {
  const std::string turbo =
      "            TL_BEGIN initial_solution_turbo\n"
      "              VERSION 1.0\n"
      "              kept  as it stands\n"
      "            TL_END   initial_solution_turbo\n";
  for (const char* type : {"INL", "ROT"}) {
    EXPECT_EQ(rewritten<TLBC>(condition(type) + turbo, kType), condition(type) + turbo);
  }
  EXPECT_EQ(rewritten<TLBC>(condition("OUT") + turbo, kType), condition("OUT"));
  const std::string sector =
      "            TL_BEGIN injection_sector\n"
      "              VERSION 5.0\n"
      "              kept  too\n"
      "            TL_END   injection_sector\n";
  EXPECT_EQ(rewritten<TLBC>(condition("SOL") + sector, kType), condition("SOL") + sector);
  TLBC record(kType);
  ASSERT_EQ(readText(record,
                     "TL_BEGIN bc_parameters\nVERSION 3.0\nTYPE SOLID\nTYPE_ID 28\n"
                     "TL_END bc_parameters\n"
                     "TL_BEGIN unknown\nTYPE XXX\nTL_END unknown\n"
                     "TYPE INL\ncontrol_surface 2\nTL_END boundary_condition\n")
                .result,
            1);
  ASSERT_TRUE(record.parameters);
  EXPECT_EQ(record.type, "INL");
  EXPECT_EQ(record.controlSurfaceNames, std::vector<RWCString>{"inlet_1"});
}

TEST(Condition, BadLines) {
  const struct {
    const char* text;
    const char* console;
  } cases[] = {
      {"version\n", " wrong bc header: cannot determine bc version\n"},
      {"indices 1 2 3\n", " wrong bc indices: cannot determine bc indices\n"},
      {"bc_indices 1 2\n", " wrong bc patch indices: cannot determine bc indices\n"},
      {"connection_info 1 2 3 4 5\n", " wrong bc connection: cannot determine bc connection\n"},
      {"type\n", "  wrong format for16: type\n"},
      {"coupling_type\n", "  wrong format for4: coupling_type\n"},
      {"TL_BEGIN bc_parameters\nversion\n",
       " wrong bc parameters header: cannot determine bc parameters version\n"},
  };
  for (const auto& bad : cases) {
    TLBC record(kType);
    const auto reading = readText(record, bad.text);
    EXPECT_EQ(reading.result, 0) << bad.text;
    EXPECT_EQ(reading.console, bad.console);
    EXPECT_EQ(record.patchCount(), 0);
    EXPECT_EQ(record.indices, Indices{});
  }
}

TEST(Face, RoundTrip) {
  const std::string inner = "          TL_BEGIN boundary_condition\n" + condition("SOL") +
                            "          TL_END   boundary_condition\n";
  for (const char* side : {"IMAX", "JMAX", "KMAX", "IMIN", "JMIN", "KMIN"}) {
    const std::string head = std::string("          VERSION                     1.0\n") +
                             "          TYPE                        " + side + "\n" +
                             "          INDEX                       4\n";
    EXPECT_EQ(rewritten<TLFace>(head, kType), head);
    EXPECT_EQ(rewritten<TLFace>(head + inner + inner, kType), head + inner + inner);
  }
}

TEST(Face, ConditionsWithoutPatchesAreLeftOut) {
  TLFace face(kType);
  ASSERT_EQ(readText(face,
                     "TL_BEGIN boundary_condition\nTYPE SOL\nTL_END boundary_condition\n"
                     "TL_BEGIN boundary_condition\nTYPE INL\nINDICES 1 2 3 4\n")
                .result,
            1);
  ASSERT_EQ(face.conditions.size(), 2U);
  EXPECT_EQ(face.conditions[0]->patchCount(), 0);
  const auto text = written(face);
  EXPECT_EQ(text.find("SOL"), std::string::npos);
  EXPECT_NE(text.find("INL"), std::string::npos);
  face.conditions[0]->setIndices({1, 2, 3, 4});
  EXPECT_NE(written(face).find("SOL"), std::string::npos);
}

TEST(Face, SidesAndDirections) {
  const struct {
    const char* word;
    std::int32_t type;
    int u;
    int w;
  } cases[] = {
      {"kmin", TLFaceSide::kmin, 0, 1}, {"KMAX", TLFaceSide::kmax, 0, 1},
      {"Jmin", TLFaceSide::jmin, 0, 2}, {"jmax", TLFaceSide::jmax, 0, 2},
      {"IMIN", TLFaceSide::imin, 1, 2}, {"imax", TLFaceSide::imax, 1, 2},
  };
  for (const auto& one : cases) {
    TLFace face(kType);
    ASSERT_EQ(readText(face, std::string("TYPE ") + one.word + "\ntype sideways\n").result, 1);
    EXPECT_EQ(face.type, one.type);
    EXPECT_EQ(face.uDirection(), one.u);
    EXPECT_EQ(face.wDirection(), one.w);
  }
}

TEST(Face, BadLinesAndFailedChildren) {
  const struct {
    const char* text;
    const char* console;
  } cases[] = {
      {"type\n", " wrong Type: cannot determine Face Type\n"},
      {"version\n", " wrong face header: cannot determine face version\n"},
      {"index\n", "  wrong format for4: index\n"},
      {"tl_begin boundary_condition\nindices 1\n",
       " wrong bc indices: cannot determine bc indices\n"},
  };
  for (const auto& bad : cases) {
    TLFace face(kType);
    const auto reading = readText(face, bad.text);
    EXPECT_EQ(reading.result, 0) << bad.text;
    EXPECT_EQ(reading.console, bad.console);
    EXPECT_TRUE(face.conditions.empty());
  }
}

}  // namespace
