#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "parameters/TLChoiceEntry.h"
#include "parameters/TLFileEntry.h"
#include "parameters/TLIntegerEntry.h"
#include "parameters/TLPatchEntry.h"
#include "parameters/TLPhysicalEntry.h"
#include "parameters/TLRealEntry.h"
#include "parameters/TLStringEntry.h"
#include "parameters/TLVectorEntry.h"
#include "support/RecordTexts.h"

namespace {

using ::testing::ElementsAre;

// The lines that these forms write are in the run files of the project's tests, too.
TEST(EntryValueForm, IsOneLineOfNameAndValue) {
  const auto check = [](auto entry, const char* line, const char* expected) {
    EXPECT_EQ(entry.readLine(line), 1);
    EXPECT_EQ(written(entry), expected);
  };
  check(TLIntegerEntry(), "integer_entry two words 7", "\t\t\t\tINTEGER_ENTRY\t\ttwo words\t\t7\n");
  check(TLRealEntry(), "REAL_ENTRY one 0.123456789", "\t\t\t\tREAL_ENTRY\t\tone\t\t0.123457\n");
  check(TLStringEntry(), "STRING_ENTRY one rest of the  line",
        "\t\t\t\tSTRING_ENTRY\t\tone\t\trest of the line\n");
  check(TLVectorEntry(), "VECTOR_ENTRY an axis 1 0.5 -2",
        "\t\t\t\tVECTOR_ENTRY\t\tan axis\t\t1 0.5 -2\n");
  check(TLFileEntry(), "FILENAME_ENTRY one /a/b.cgns",
        "\t\t\t\tFILENAME_ENTRY\t\tone\t\t/a/b.cgns\n");
  check(TLPatchEntry(), "PATCH_ENTRY a patch 1 2 3", "\t\t\t\tPATCH_ENTRY\t\ta patch\t\t1 2 3\n");
  check(TLChoice(), "SUB_CHOICE a thing 3", "                CHOICE_ENTRY          a thing 3\n");
  check(TLChoiceEntry(), "CHOICE_ENTRY a thing 3",
        "                CHOICE_ENTRY          a thing 3\n");
  check(TLEntry(), "anything", "                name                                   unknown\n");
}

TEST(EntryBlock, TakesItsKeys) {
  TLIntegerEntry integer;
  EXPECT_EQ(readText(integer,
                     "begin_gui_construction\n CONDITION a > 3\n unknown 3\n EXPERT_MODE 2\n"
                     "end_gui_construction\nNAME number of it\nVALUE 12x\nTL_END integer_entry\n")
                .result,
            1);
  EXPECT_EQ(integer.name, "number of it");
  EXPECT_EQ(integer.value, 12);
  EXPECT_EQ(integer.condition, "a > 3");
  EXPECT_EQ(integer.expertMode, 2);

  TLVectorEntry vector;
  EXPECT_EQ(readText(vector, "name axis\nvalue 1 2 3\nvalue_units_name length\n").result, 1);
  EXPECT_THAT(vector.value, ElementsAre(1, 2, 3));
  EXPECT_EQ(vector.valueUnitsName, "length");

  TLStringEntry string;
  EXPECT_EQ(readText(string, "name s\nvalue  some text \ncondition c\n").result, 1);
  EXPECT_EQ(string.value, "some text");
  EXPECT_EQ(string.condition, "c");

  TLChoiceEntry choice;
  EXPECT_EQ(readText(choice,
                     "version\nname law\nsub_choice first one 0\nsub_choice second 1\n"
                     "value 1\ncontrol_role role\ncontrol_key key\nTL_END multy_choice\n")
                .result,
            1);
  ASSERT_EQ(choice.subChoices.size(), 2U);
  EXPECT_EQ(choice.subChoices[0]->name, "first one");
  EXPECT_EQ(choice.value, 1);
  EXPECT_EQ(choice.controlRole, "role");
  EXPECT_EQ(choice.controlKey, "key");

  TLRealEntry real;
  TLTextSource source("VALUE 1\nMIN_VALUE 0.5\nTL_BEGIN other\nVALUE 9\nTL_END other\n");
  EXPECT_EQ(real.readBlock(source), 1);
  EXPECT_EQ(real.minValue, 0.5);
  EXPECT_EQ(real.value, 1);
}

// Each form ends at any of its names and at no other.
TEST(EntryBlock, ClosingNames) {
  const auto closes = [](auto entry, const std::string& name) {
    TLTextSource source(" x\nTL_END   " + name + "\nbehind\n");
    EXPECT_EQ(entry.readBlock(source), 1);
    return source.readLine() == "behind";
  };
  for (const std::string name :
       {"integer_entry", "vector_entry", "real_entry", "physical_entry", "multy_choice",
        "string_entry", "chemical_physical_entry", "lagrangian_physical_entry"}) {
    EXPECT_TRUE(closes(TLIntegerEntry(), name)) << name;
    EXPECT_TRUE(closes(TLRealEntry(), name)) << name;
    EXPECT_TRUE(closes(TLStringEntry(), name)) << name;
    EXPECT_TRUE(closes(TLVectorEntry(), name)) << name;
    EXPECT_EQ(closes(TLChoiceEntry(), name), name != "string_entry") << name;
    EXPECT_EQ(closes(TLPhysicalEntry(), name),
              name != "integer_entry" && name != "vector_entry" && name != "real_entry")
        << name;
  }
  EXPECT_TRUE(closes(TLChoiceEntry(), "choice_entry"));
  EXPECT_TRUE(closes(TLPhysicalEntry(), "UncertaintyEntry"));
  EXPECT_FALSE(closes(TLRealEntry(), "real_entry_full"));
}

TEST(EntryBlock, BadLines) {
  const auto fails = [](auto entry, const char* text, const char* console) {
    const auto reading = readText(entry, text);
    EXPECT_EQ(reading.result, 0) << text;
    EXPECT_EQ(reading.console, console);
  };
  fails(TLIntegerEntry(), "value\n", "  wrong format for4: value\n");
  fails(TLIntegerEntry(), "begin_gui_construction\nexpert_mode\n",
        "  wrong format for4: expert_mode\n");
  fails(TLVectorEntry(), "value 1 2\n", "  wrong format for43:value 1 2\n");
  fails(TLChoiceEntry(), "sub_choice\n", "  wrong format for21: sub_choice\n");
  fails(TLPhysicalEntry(), "version\n",
        " wrong physical entry header: cannot determine physical entry version\n");
  fails(TLPhysicalEntry(), "tl_begin time_profile_entry\nversion\n",
        " wrong profile entry header: cannot determine profile entry version\n");
}

TEST(PhysicalEntry, KeepsManyDigitsWithoutChangingTheSinksPrecision) {
  TLPhysicalEntry entry;
  readText(entry, "VALUE 101325.12345678\n");
  TLTextSink sink;
  entry.write(sink);
  EXPECT_NE(sink.text().find("VALUE                 101325.12345678\n"), std::string::npos);
  EXPECT_EQ(sink.precision(), 6);
}

TEST(PhysicalEntry, VariableTypes) {
  TLPhysicalEntry entry;
  const char* texts[] = {"constant", "fct(space-time)", "fct(space)", "fct(time)", "polynom"};
  for (int code = 1; code < 5; ++code) {
    entry.setVariableTypeCode(code);
    EXPECT_EQ(entry.variableType, texts[code]);
    EXPECT_EQ(entry.variableTypeCode(), code);
  }
  entry.setVariableTypeCode(6);
  EXPECT_EQ(entry.variableType, "constant");
  entry.variableType = "FCT(Space)";
  EXPECT_EQ(entry.variableTypeCode(), 2);
}

TEST(Polynom, CoefficientsCanBeReplaced) {
  TLPolynom polynom;
  readText(polynom, " VERSION 1.0\n COEFFICIENTS   2 1.5 2\n other\nTL_END polynom_entry\n");
  EXPECT_THAT(polynom.coefficients(), ElementsAre(1.5, 2));
  polynom.setCoefficients({1, 2, 3});
  EXPECT_EQ(written(polynom), " VERSION 1.0\n COEFFICIENTS   3 1 2 3\n other\n");
}

TEST(File, IsTakenApart) {
  const TLFile file("/some.where/dir\\name.a.RUN");
  EXPECT_EQ(file.directory(), "/some.where/dir\\");
  EXPECT_EQ(file.name(), "name.a.RUN");
  EXPECT_EQ(file.suffix(), "RUN");
  EXPECT_EQ(file.withoutSuffix(), "/some.where/dir\\name.a");
  EXPECT_EQ(TLFile("/some.where/name").suffix(), "");
  EXPECT_TRUE(TLFile().isUnknown());
  EXPECT_TRUE(TLFile("/x/undefined").isUnknown());
  EXPECT_FALSE(TLFile("/x/y").isUnknown());
}

}  // namespace
