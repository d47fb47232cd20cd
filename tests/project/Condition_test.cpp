#include <gtest/gtest.h>

#include "project/TLFace.h"
#include "project/TLProjectType.h"
#include "support/RecordTexts.h"

namespace {

constexpr auto kType = TLProjectType::structured;

TEST(Condition, WithoutATypeStaysReadable) {
  const auto text = rewritten<TLBC>("INDICES 1 2 3 4\n", kType);
  EXPECT_EQ(text.find("\n            TYPE"), std::string::npos);
  EXPECT_EQ(rewritten<TLBC>(text, kType), text);
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
  TLBC grows(kType);
  EXPECT_EQ(grows.controlSurfaceName(1), "UNDEFINED");
  EXPECT_EQ(grows.controlSurfaceNames,
            (std::vector<RWCString>{"No_Force_and_Torque", "UNDEFINED"}));
  TLBC inner(kType);  // its own record counts as well
  readText(inner,
           "TL_BEGIN bc_parameters\nTYPE SOLID\nTYPE_ID 28\nTL_END bc_parameters\n"
           "TL_BEGIN unknown\nTYPE XXX\nTL_END unknown\nTYPE INL\ncontrol_surface 2\n");
  EXPECT_EQ(inner.controlSurfaceNames, std::vector<RWCString>{"inlet_1"});
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
