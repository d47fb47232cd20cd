#include <gtest/gtest.h>

#include "project/TLFace.h"
#include "project/TLProjectType.h"
#include "support/RecordTexts.h"

namespace {

constexpr auto kType = TLProjectType::structured;

TEST(Condition, WrittenIsWhatBelongsToTheType) {
  const auto has = [](const std::string& text, const char* key) {
    return text.find(key) != std::string::npos;
  };
  for (const std::string type : {"SOL", "INL", "OUT", "ROT", "MIR", "CON", "NMB", "PER", "PERNM"}) {
    const auto text = rewritten<TLBC>(
        "TYPE " + type +
            "\nINDICES 1 2 3 4\nCONNECTION_INFO 4 1 2 0 1 -1\nMODAL_STRUCTURE_INDEX 5\n"
            "TL_BEGIN initial_solution_turbo\nTL_END initial_solution_turbo\n",
        kType);
    EXPECT_EQ(has(text, "CONNECTION_INFO"),
              type == "CON" || type == "NMB" || type == "PER" || type == "PERNM");
    EXPECT_EQ(has(text, "MODAL_STRUCTURE_INDEX"), type == "SOL");
    EXPECT_EQ(has(text, "TL_BEGIN initial_solution_turbo"), type == "INL" || type == "ROT") << text;
  }
}

TEST(Condition, WithoutATypeStaysReadable) {
  const auto text = rewritten<TLBC>("INDICES 1 2 3 4\n", kType);
  EXPECT_EQ(text.find("\n            TYPE"), std::string::npos);
  EXPECT_EQ(rewritten<TLBC>(text, kType), text);
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
  TLBC grows(kType);
  EXPECT_EQ(grows.controlSurfaceName(1), "UNDEFINED");
  EXPECT_EQ(grows.controlSurfaceNames,
            (std::vector<RWCString>{"No_Force_and_Torque", "UNDEFINED"}));
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
  TLBC inner(kType);  // its own record counts as well
  readText(inner,
           "TL_BEGIN bc_parameters\nTYPE SOLID\nTYPE_ID 28\nTL_END bc_parameters\n"
           "TL_BEGIN unknown\nTYPE XXX\nTL_END unknown\nTYPE INL\ncontrol_surface 2\n");
  EXPECT_EQ(inner.controlSurfaceNames, std::vector<RWCString>{"inlet_1"});
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

TEST(Face, Directions) {
  for (const auto& [word, u, w] : {std::tuple{"kmin", 0, 1},
                                   {"KMAX", 0, 1},
                                   {"Jmin", 0, 2},
                                   {"jmax", 0, 2},
                                   {"IMIN", 1, 2},
                                   {"imax", 1, 2}}) {
    TLFace face(kType);
    ASSERT_EQ(readText(face, std::string("TYPE ") + word + "\ntype sideways\n").result, 1);
    EXPECT_EQ(face.uDirection(), u) << word;
    EXPECT_EQ(face.wDirection(), w) << word;
  }
}

}  // namespace
