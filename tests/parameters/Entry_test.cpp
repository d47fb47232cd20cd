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

// The value form ------------------------------------------------------------------------------

struct ValueForm {
  const char* label;
  Handle<TLEntry> (*make)();
  const char* line;
  const char* written;
};

template <class Entry>
Handle<TLEntry> make() {
  return makeHandle<Entry>();
}

class EntryValueForm : public testing::TestWithParam<ValueForm> {};

TEST_P(EntryValueForm, ReadsAndWrites) {
  const auto entry = GetParam().make();
  EXPECT_EQ(entry->readLine(GetParam().line), 1);
  EXPECT_EQ(written(*entry), GetParam().written);
  const auto again = GetParam().make();
  EXPECT_EQ(again->readLine(GetParam().written), 1);
  EXPECT_EQ(written(*again), GetParam().written);
}

const ValueForm kValueForms[] = {
    {"integer", &make<TLIntegerEntry>, "integer_entry two words 7",
     "\t\t\t\tINTEGER_ENTRY\t\ttwo words\t\t7\n"},
    {"real", &make<TLRealEntry>, "REAL_ENTRY one 0.123456789",
     "\t\t\t\tREAL_ENTRY\t\tone\t\t0.123457\n"},
    {"string", &make<TLStringEntry>, "STRING_ENTRY one rest of the  line",
     "\t\t\t\tSTRING_ENTRY\t\tone\t\trest of the line\n"},
    {"vector", &make<TLVectorEntry>, "VECTOR_ENTRY an axis 1 0.5 -2",
     "\t\t\t\tVECTOR_ENTRY\t\tan axis\t\t1 0.5 -2\n"},
    {"file", &make<TLFileEntry>, "FILENAME_ENTRY one /a/b.cgns",
     "\t\t\t\tFILENAME_ENTRY\t\tone\t\t/a/b.cgns\n"},
    {"patch", &make<TLPatchEntry>, "PATCH_ENTRY a patch 1 2 3",
     "\t\t\t\tPATCH_ENTRY\t\ta patch\t\t1 2 3\n"},
    {"choice", &make<TLChoice>, "SUB_CHOICE a thing 3",
     "                CHOICE_ENTRY          a thing 3\n"},
    {"choiceEntry", &make<TLChoiceEntry>, "CHOICE_ENTRY a thing 3",
     "                CHOICE_ENTRY          a thing 3\n"},
};

INSTANTIATE_TEST_SUITE_P(Kinds, EntryValueForm, testing::ValuesIn(kValueForms),
                         [](const auto& info) { return std::string(info.param.label); });

TEST(Entry, Defaults) {
  TLEntry entry;
  EXPECT_EQ(entry.readLine("anything"), 1);
  EXPECT_EQ(written(entry), "                name                                   unknown\n");
  EXPECT_EQ(entry.condition, "none");
  EXPECT_EQ(entry.valueUnitsName, "unknown");
  EXPECT_EQ(entry.position, -1);
  EXPECT_EQ(TLRealEntry().minValue, 1000000.0);
  EXPECT_EQ(TLFileEntry().file.path(), "/usr/unknown");
  const TLPhysicalEntry physical;
  EXPECT_EQ(physical.type, "variable");
  EXPECT_TRUE(physical.timeProfile && physical.spaceProfile && physical.polynom &&
              physical.frequencyProfile);
}

// The block form ------------------------------------------------------------------------------

constexpr const char* kGui =
    "begin_gui_construction\n CONDITION a > 3\n unknown 3\n EXPERT_MODE 2\nend_gui_construction\n";

TEST(EntryBlock, TakesItsKeys) {
  TLIntegerEntry integer;
  EXPECT_EQ(readText(integer, std::string(kGui) + "NAME number of it\nVALUE 12x\n"
                                                  "TL_END integer_entry\n")
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
}

TEST(EntryBlock, FullRealEntry) {
  TLRealEntry entry;
  TLTextSource source(
      "CONTROL_ROLE r\nCONTROL_KEY k\nNAME speed of it\nVALUE 1.23456789\nMIN_VALUE 0.5\n"
      "VALUE_UNITS_NAME speed\nNON_DETERMINISTIC_DATA 1\nTL_BEGIN other\nVALUE 9\nTL_END other\n"
      "TL_BEGIN NonDeterministicData\n  any  thing \nTL_END NonDeterministicData\n"
      "TL_END real_entry\nbehind\n");
  EXPECT_EQ(entry.readBlock(source), 1);
  EXPECT_EQ(source.readLine(), "behind");
  EXPECT_EQ(entry.minValue, 0.5);
  TLTextSink sink;
  entry.writeFull(sink);
  const std::string text =
      "                name                                   speed of it\n"
      "                value                                  1.23457\n"
      "                non_deterministic_data                 1\n"
      "                TL_BEGIN NonDeterministicData\n"
      "  any  thing \n"
      "                TL_END NonDeterministicData\n";
  EXPECT_EQ(sink.text(), text);
  entry.nonDeterministic = 0;
  TLTextSink plain;
  entry.writeFull(plain);
  EXPECT_EQ(plain.text().find("TL_BEGIN"), std::string::npos);
}

// Each form ends at any of its names and at no other.
TEST(EntryBlock, ClosingNames) {
  const std::vector<std::string> common = {"integer_entry",
                                           "vector_entry",
                                           "real_entry",
                                           "physical_entry",
                                           "multy_choice",
                                           "string_entry",
                                           "chemical_physical_entry",
                                           "lagrangian_physical_entry"};
  const auto closes = [](auto entry, const std::string& name) {
    TLTextSource source(" x\nTL_END   " + name + "\nbehind\n");
    EXPECT_EQ(entry.readBlock(source), 1);
    return source.readLine() == "behind";
  };
  for (const auto& name : common) {
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
  fails(TLVectorEntry(), "value 1 2\n", "  wrong format for43:value 1 2\n");
  fails(TLChoiceEntry(), "sub_choice\n", "  wrong format for21: sub_choice\n");
  fails(TLPhysicalEntry(), "version\n",
        " wrong physical entry header: cannot determine physical entry version\n");
  fails(TLPhysicalEntry(), "tl_begin time_profile_entry\nversion\n",
        " wrong profile entry header: cannot determine profile entry version\n");
  fails(TLIntegerEntry(), "begin_gui_construction\nexpert_mode\n",
        "  wrong format for4: expert_mode\n");
}

// Physical entries ----------------------------------------------------------------------------

constexpr const char* kPhysical =
    "                VERSION               1.0\n"
    "                NAME                  Static Pressure\n"
    "                TYPE                  variable\n"
    "                VALUE                 101325.12345678\n"
    "                non_deterministic_data                 0\n"
    "                VARIABLETYPE          fct(time)\n"
    "                EXTERNAL_PROFILE      a file\n"
    "                TL_BEGIN time_profile_entry\n"
    "   NPT 2\n  0 1.23456789012345\n # kept\n"
    "                TL_END   time_profile_entry\n"
    "                TL_BEGIN space_profile_entry\n"
    "                TL_END   space_profile_entry\n"
    "                TL_BEGIN polynom_entry\n"
    "                TL_END   polynom_entry\n"
    "                TL_BEGIN frequency_profile_entry\n"
    "                TL_END   frequency_profile_entry\n";

TEST(PhysicalEntry, RoundTrip) {
  EXPECT_EQ(rewritten<TLPhysicalEntry>(kPhysical), kPhysical);
  TLPhysicalEntry entry;
  readText(entry, kPhysical);
  EXPECT_EQ(entry.variableTypeCode(), 3);
  EXPECT_NEAR(entry.value, 101325.12345678, 1e-9);
}

TEST(PhysicalEntry, AConstantOneLosesItsLaws) {
  TLPhysicalEntry entry;
  readText(entry, kPhysical);
  entry.type = "CONSTANT";
  const std::string text = written(entry);
  EXPECT_EQ(text.find("VARIABLETYPE"), std::string::npos);
  EXPECT_EQ(text.find("time_profile"), std::string::npos);
  EXPECT_NE(text.find("TYPE                  CONSTANT\n"), std::string::npos);
}

TEST(PhysicalEntry, RestoresThePrecision) {
  TLTextSink sink;
  TLPhysicalEntry().write(sink);
  EXPECT_EQ(sink.precision(), 6);
}

TEST(PhysicalEntry, VariableTypes) {
  TLPhysicalEntry entry;
  const char* texts[] = {"constant",  "fct(space-time)", "fct(space)",
                         "fct(time)", "polynom",         "default"};
  for (int code = 1; code < 6; ++code) {
    entry.setVariableTypeCode(code);
    EXPECT_EQ(entry.variableType, texts[code]);
    EXPECT_EQ(entry.variableTypeCode(), code);
  }
  for (const int code : {0, 6, -1}) {
    entry.setVariableTypeCode(code);
    EXPECT_EQ(entry.variableType, "constant");
  }
  entry.variableType = "FCT(Space)";
  EXPECT_EQ(entry.variableTypeCode(), 2);
  entry.variableType = "nonsense";
  EXPECT_EQ(entry.variableTypeCode(), 0);
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
  EXPECT_EQ(TLFile("name").directory(), "");
  EXPECT_TRUE(TLFile().isUnknown());
  EXPECT_TRUE(TLFile("/x/undefined").isUnknown());
  EXPECT_FALSE(TLFile("/x/y").isUnknown());
}

}  // namespace
