#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <iostream>

#include "parameters/TLBCDataBase.h"
#include "support/Definitions.h"
#include "support/RecordTexts.h"

namespace {

using ::testing::ElementsAre;

TEST(Conditions, EntriesOfAllForms) {
  TLBCParameters record;
  EXPECT_EQ(readText(record,
                     "SUBTYPE1 a b\nSUBTYPE2 c\nSUBTYPE d\nNAME the inlet\nEXPERT_MODE 1\n"
                     "TL_BEGIN multy_choice\nNAME many\nVALUE 3\nTL_END multy_choice\n"
                     "TL_BEGIN chemical_physical_entry\nNAME species\nTL_END physical_entry\n"
                     "TL_BEGIN physical_entry\nNAME Phi\nTL_END physical_entry\n"
                     "TL_BEGIN real_entry\nVALUE 3\nTL_END real_entry\n"
                     "TL_BEGIN real_entry_def\nNAME hidden\nTL_END real_entry\n"
                     "TL_BEGIN single_choice_def\nNAME choice\nTL_END choice_entry\n"
                     "REAL_ENTRY last one 2.5\n"
                     "TL_BEGIN nobody_knows\nREAL_ENTRY no 1\nTL_END nobody_knows\n"
                     "TL_END   real_entry\n"
                     "TL_END bc_parameters\n")
                .result,
            1);
  EXPECT_THAT(record.subType1, ElementsAre("a b"));
  EXPECT_THAT(record.subType2, ElementsAre("c"));
  EXPECT_THAT(record.subType, ElementsAre("d"));
  EXPECT_TRUE(record.physicalEntries.empty());
  ASSERT_EQ(record.realEntries.size(), 1U);
  EXPECT_EQ(record.realEntries[0]->name, "last one");
  EXPECT_EQ(record.realEntries[0]->position, 6);
  EXPECT_EQ(record.choiceEntry("many")->value, 3);
  EXPECT_EQ(record.entry("hidden"), Handle<TLEntry>(record.realEntriesDef.at(0).get()));
  EXPECT_EQ(record.entry("species")->position, 1);
  std::ostringstream out;
  const TLConsoleRedirect redirect(out);
  EXPECT_FALSE(record.choiceEntry("none"));
  EXPECT_EQ(out.str(), "ERROR !!\nTLBCParameters::choiceEntryPtr\nRWCString none not found.\n");
}

TEST(Conditions, ImpedanceIsTakenFromTwoReals) {
  TLBCParameters record;
  readText(record,
           "TYPE_ID 13\nTYPE_OPSEL 2\nREAL_ENTRY Resistance (real part) 3\n"
           "REAL_ENTRY Reactance (imaginary part) 4\nVECTOR_ENTRY acoustic_impedance 1 2 9\n");
  EXPECT_THAT(record.vectorEntries.at(0)->value, ElementsAre(3, 4, 9));
}

// The database --------------------------------------------------------------------------------

// Kinds 3 and 4, and 1003 as an old name of 3.
constexpr const char* kKinds =
    "VERSION 1.0\n"
    "TL_BEGIN bc_parameters\n  TYPE_ID 3\n  TYPE_OPSEL 1\n  NAME Kind 3\n"
    "  TL_BEGIN physical_entry\n    NAME Pressure\n    TYPE variable\n    VALUE 1\n"
    "    VALUE_UNITS_NAME pressure\n  TL_END physical_entry\n"
    "  REAL_ENTRY Real 0 3.25\n  REAL_ENTRY Real 1 3.25\n  INTEGER_ENTRY Turns 3\n"
    "  CHOICE_ENTRY Law 1\nTL_END bc_parameters\n"
    "TL_BEGIN bc_parameters\n  TYPE_ID 4\n  TYPE_OPSEL 1\nTL_END bc_parameters\n"
    "BEGIN_BACKWARD_COMPATIBILITY\n  TYPE_NEW 3\n  OPSEL_NEW 1\n  TYPE_OLD 1003\n  OPSEL_OLD 1\n"
    "  REAL_ENTRIES 1 0\n  NEW_VALUE Law 0\nEND_BACKWARD_COMPATIBILITY\n";

class ConditionsBase : public testing::Test {
 protected:
  ConditionsBase() { EXPECT_EQ(readText(base_, kKinds).result, 1); }

  TLBCDataBase base_;
  std::ostringstream console_;
  TLConsoleRedirect redirect_{console_};
};

TEST_F(ConditionsBase, FindsDefinitionsAndOldKinds) {
  ASSERT_EQ(base_.definitions().size(), 2U);
  EXPECT_EQ(base_.find(4, 1), base_.definitions()[1]);
  const auto target = base_.find(1003, 1);
  EXPECT_EQ(target, base_.backwardTargets().at(0));
  EXPECT_EQ(target->typeId, 1003);
  EXPECT_EQ(target->name, "Kind 3");
  EXPECT_EQ(target->choiceEntry("Law")->value, 0);
  EXPECT_EQ(base_.find(3, 1)->choiceEntry("Law")->value, 1);  // the definition: another record
  EXPECT_EQ(console_.str(), "");
  EXPECT_EQ(base_.find(7, 9)->type, "UNDEFINED");
  EXPECT_EQ(console_.str(), "BOUNDARY CONDITION Id = 7 OPSEL = 9 NOT YET DEFINED\n");
  EXPECT_EQ(base_.missingTypeId(), 7);
  EXPECT_EQ(base_.missingTypeOpsel(), 9);
}

TEST_F(ConditionsBase, BringsAProjectsRecordInLine) {
  auto record = makeHandle<TLBCParameters>();
  const auto text = [](int id) {
    return "TYPE_ID " + std::to_string(id) +
           "\nTYPE_OPSEL 1\nNAME mine\nREAL_ENTRY Real 0 77\nREAL_ENTRY gone 1\n"
           "INTEGER_ENTRY Turns 99\nTL_BEGIN physical_entry\nNAME Pressure\nTYPE constant\n"
           "VALUE 8\nTL_END physical_entry\n";
  };
  readText(*record, text(3));
  const auto made = base_.inLine(record);
  EXPECT_NE(made, record);
  EXPECT_EQ(made->name, "mine");
  EXPECT_EQ(made->realEntries.at(0)->value, 77.0);
  EXPECT_EQ(made->realEntries.at(1)->value, 3.25);  // as defined
  EXPECT_EQ(made->integerEntries.at(0)->value, 99);
  EXPECT_FALSE(made->entry("gone"));
  EXPECT_EQ(made->physicalEntries.at(0)->value, 8.0);
  EXPECT_TRUE(made->physicalEntries.at(0)->isConstant());
  EXPECT_EQ(made->physicalEntries.at(0)->valueUnitsName, "pressure");
  EXPECT_EQ(base_.definitions()[0]->realEntries[0]->value, 3.25);

  readText(*record, text(1003));  // its old place 0 goes to the new place 1
  EXPECT_EQ(base_.inLine(record)->realEntries[1]->value, 77.0);
  EXPECT_EQ(base_.inLine(record)->typeId, 1003);

  // The definition has both under another kind.
  readText(*record, "TYPE_ID 3\nTYPE_OPSEL 1\nREAL_ENTRY Pressure 5\nINTEGER_ENTRY Law 7\n");
  EXPECT_EQ(base_.inLine(record)->physicalEntries.at(0)->value, 5.0);
  EXPECT_EQ(base_.inLine(record)->choiceEntries.at(0)->value, 7);

  readText(*record, text(500));
  EXPECT_EQ(base_.inLine(record), record);
}

TEST_F(ConditionsBase, TellsAShortLineOfPairs) {
  TLBCBackwardRecord record;
  TLTextSource source(
      "PHYSICAL_ENTRIES 1\nVECTOR_ENTRIES 2 3\nNEW_VALUE a b 4\nend_backward_compatibility\nx");
  EXPECT_EQ(record.read(source), 1);
  EXPECT_EQ(console_.str(), "TLBCBackwardRecord : not a correct line PHYSICAL_ENTRIES 1\n");
  EXPECT_THAT(record.vectorEntries, ElementsAre(std::pair{2, 3}));
  EXPECT_THAT(record.newValues, ElementsAre(std::pair<RWCString, std::int32_t>{"a b", 4}));
  EXPECT_EQ(source.readLine(), "x");
}

TEST(ConditionsFile, IsChosenBySolverAndMode) {
  const Definitions definitions;
  const auto kind = [](int id) {
    return "TL_BEGIN bc_parameters\nTYPE_ID " + std::to_string(id) + "\nTL_END bc_parameters\n";
  };
  definitions.write("velstra_bc.def", kind(1));
  definitions.write("lumbrake_bc.def", kind(2));
  definitions.write("lumbrake_bc_auto.def", kind(3));
  TLBCDataBase base;
  for (const auto& [solver, mode, id] :
       {std::tuple{0, 0, 1}, {0, 1, 1}, {2, 0, 2}, {2, 2, 2}, {2, 1, 3}, {4, 0, 1}}) {
    base.load(solver, mode);
    ASSERT_EQ(base.definitions().size(), 1U);
    EXPECT_EQ(base.definitions()[0]->typeId, id);
  }
}

TEST(ConditionsFileDeathTest, FailuresEndTheProcess) {
  const auto load = [](const char* text) {
    const TLConsoleRedirect redirect(std::cerr);
    const Definitions definitions;
    definitions.write("velstra_bc.def", text);
    TLBCDataBase().load(0, 0);
  };
  const auto good = testing::ExitedWithCode(0);
  EXPECT_EXIT(load("TL_BEGIN bc_parameters\nTYPE\n"), good, "TLBCDataBase::read File error !!!");
  EXPECT_EXIT(load("begin_backward_compatibility\nTYPE_NEW 5\nOPSEL_NEW 6\n"
                   "end_backward_compatibility\n"),
              good, "^Wrong BC backward record format id 5, opsel 6\n$");
  const auto nowhere = [](const char* directory) {
    const TLConsoleRedirect redirect(std::cerr);
    const TVariable variable("VELSTRA_DIR", directory);
    TLBCDataBase().load(2, 1);
  };
  EXPECT_EXIT(nowhere("/no"), good,
              "^\\*\\*\\*\\* Cannot Open BC DataBase, Check the file '/no/lumbrake_bc_auto.def");
  EXPECT_EXIT(nowhere(nullptr), good,
              "^\\*\\*\\*\\* Cannot Start BC DataBase, Check VELSTRA_DIR env. variable \n$");
}

TEST(ControlSurface, HasItsEntries) {
  const auto surface = TLBCParameters::makeControlSurface(3);
  EXPECT_TRUE(surface->entry("outlet_3"));
  EXPECT_TRUE(surface->entry("Reference_Control_Surface"));
  EXPECT_EQ(TLBCParameters::rotationalSpeed("rotational_speed_2 "), 2);
  EXPECT_EQ(TLBCParameters::rotationalSpeed("Rotational_speed_2"), 0);
}

}  // namespace
