#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <iostream>

#include "parameters/TLBCDataBase.h"
#include "support/DefinitionGenerator.h"
#include "support/Definitions.h"
#include "support/RecordTexts.h"

namespace {

using ::testing::ElementsAre;

constexpr const char* kHead =
    "              VERSION                 3.0\n"
    "              TLBCTYPE                wall\n"
    "              TYPE                    SOLID\n"
    "              TYPE_ID                 13\n"
    "              TYPE_OPSEL              2\n"
    "              CONDITION               none\n";
constexpr const char* kPhysical =
    "              TL_BEGIN physical_entry\n"
    "                VERSION               1.0\n"
    "                NAME                  Heat Flux\n"
    "                TYPE                  constant\n"
    "                VALUE                 12.5\n"
    "                non_deterministic_data                 0\n"
    "              TL_END   physical_entry\n";
constexpr const char* kReal =
    "              TL_BEGIN real_entry_full\n"
    "                name                                   Wall Speed\n"
    "                value                                  3\n"
    "                non_deterministic_data                 0\n"
    "              TL_END   real_entry\n";
constexpr const char* kLines =
    "\t\t\t\tVECTOR_ENTRY\t\tAxis of it\t\t0 0 1\n"
    "\t\t\t\tINTEGER_ENTRY\t\tTurns\t\t4\n"
    "                CHOICE_ENTRY          Law of heat 2\n"
    "\t\t\t\tSTRING_ENTRY\t\tLabel\t\tthe wall\n";
constexpr const char* kLagrangian =
    "              TL_BEGIN lagrangian_physical_entry\n"
    "   NAME Bounce \n  whatever\n"
    "              TL_END   lagrangian_physical_entry\n";
constexpr const char* kFrame =
    "              LOCAL_SYSTEM              1\n"
    "              LOCAL_LIFT_DIRECTION      0 1 0\n"
    "              LOCAL_DRAG_DIRECTION      1 0 0\n"
    "              LOCAL_MOMENT_DIRECTION    0 0 1\n"
    "              LOCAL_MOMENT_CENTER       0.5 0 0\n";

std::string all() {
  return std::string(kHead) + kPhysical + kReal + kLines + kLagrangian + kFrame;
}

TEST(Conditions, RoundTrip) {
  EXPECT_EQ(rewritten<TLBCParameters>(all() + "TL_END control_surface\n"), all());
  TLBCParameters record;
  readText(record, all());
  EXPECT_EQ(record.shortWord, "SOL");
  EXPECT_EQ(record.lagrangianEntries.at(0)->shortWord, "SOL");
  record.type = "OUTLET";
  const std::string outlet = written(record);
  EXPECT_EQ(outlet.find("LOCAL_"), std::string::npos);
  EXPECT_EQ(outlet.find("lagrangian"), std::string::npos);
  record.bcType = "UNDEFINED";
  EXPECT_EQ(written(record).find("TLBCTYPE"), std::string::npos);
}

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

TEST(Conditions, ImpedanceStandsInTwoReals) {
  const std::string reals =
      "REAL_ENTRY Resistance (real part) 3\nREAL_ENTRY Reactance (imaginary part) 4\n"
      "VECTOR_ENTRY acoustic_impedance 1 2 9\nVECTOR_ENTRY other 1 2 3\n";
  for (const auto& [id, opsel, applies] :
       {std::tuple{13, 2, true}, {113, 2, true}, {16, 2, true}, {13, 1, false}, {14, 2, false}}) {
    TLBCParameters record;
    readText(record, "TYPE_ID " + std::to_string(id) + "\nTYPE_OPSEL " + std::to_string(opsel) +
                         '\n' + reals);
    EXPECT_THAT(record.vectorEntries.at(0)->value,
                applies ? ElementsAre(3, 4, 9) : ElementsAre(1, 2, 9));
    const std::string text = written(record);
    EXPECT_EQ(text.find("acoustic_impedance") == std::string::npos, applies);
    EXPECT_NE(text.find("other"), std::string::npos);
    EXPECT_NE(text.find("Resistance"), std::string::npos);
  }
}

TEST(Conditions, BadLines) {
  const auto console = [](const char* text) {
    TLBCParameters record;
    const auto reading = readText(record, text);
    EXPECT_EQ(reading.result, 0) << text;
    return reading.console;
  };
  EXPECT_EQ(console("VERSION\n"),
            " wrong bc parameters header: cannot determine bc parameters version\n");
  EXPECT_EQ(console("LOCAL_SYSTEM 1\nLOCAL_MOMENT_CENTER 1\n"),
            "  wrong format for43:LOCAL_MOMENT_CENTER 1\n");
  EXPECT_EQ(console("REAL_ENTRY\n"), "  wrong format for23: REAL_ENTRY\n");
}

// The database --------------------------------------------------------------------------------

class ConditionsBase : public testing::Test {
 protected:
  int read(const std::string& text) { return readText(base_, text).result; }
  std::pair<Handle<TLBCParameters>, std::string> find(int id, int opsel) {
    std::ostringstream out;
    const TLConsoleRedirect redirect(out);
    auto found = base_.find(id, opsel);
    return {found, out.str()};
  }

  TLBCDataBase base_;
};

TEST_F(ConditionsBase, FindsDefinitionsAndOldKinds) {
  ASSERT_EQ(read(makeConditionsDefinition(200)), 1);
  EXPECT_EQ(base_.definitions().size(), 200U);
  EXPECT_EQ(base_.backwardRecords().size(), 20U);
  EXPECT_EQ(find(150, 1).first, base_.definitions()[149]);
  const auto [target, console] = find(1010, 1);
  EXPECT_EQ(target, base_.backwardTargets()[0]);
  EXPECT_EQ(console, "");
  EXPECT_EQ(target->typeId, 1010);
  EXPECT_EQ(target->name, "Kind 10");
  EXPECT_EQ(target->choiceEntry("Law")->value, 0);
  EXPECT_EQ(find(10, 1).first->choiceEntry("Law")->value, 1);  // the definition is another record
  for (int call = 0; call < 2; ++call) {
    const auto [empty, told] = find(7, 9);
    ASSERT_TRUE(empty);
    EXPECT_EQ(empty->type, "UNDEFINED");
    EXPECT_EQ(told, "BOUNDARY CONDITION Id = 7 OPSEL = 9 NOT YET DEFINED\n");
  }
  EXPECT_EQ(base_.missingTypeId(), 7);
  EXPECT_EQ(base_.missingTypeOpsel(), 9);
}

TEST_F(ConditionsBase, BringsAProjectsRecordInLine) {
  ASSERT_EQ(read(makeConditionsDefinition(10)), 1);
  auto record = makeHandle<TLBCParameters>();
  const auto text = [](int id) {
    return "TYPE_ID " + std::to_string(id) +
           "\nTYPE_OPSEL 1\nNAME mine\nREAL_ENTRY Real 0 77\nREAL_ENTRY gone 1\n"
           "INTEGER_ENTRY Turns 99\nCHOICE_ENTRY Law 1\n"
           "TL_BEGIN physical_entry\nNAME Quantity 2\nTYPE constant\nVALUE 8\n"
           "TL_END physical_entry\n";
  };
  readText(*record, text(3));
  const auto made = base_.inLine(record);
  EXPECT_NE(made, record);
  EXPECT_EQ(made->name, "mine");
  ASSERT_EQ(made->realEntries.size(), 4U);
  EXPECT_EQ(made->realEntries[0]->value, 77.0);
  EXPECT_EQ(made->realEntries[1]->value, 3.25);  // as defined
  EXPECT_EQ(made->integerEntries.at(0)->value, 99);
  EXPECT_FALSE(made->entry("gone"));
  EXPECT_EQ(made->physicalEntries.at(2)->value, 8.0);
  EXPECT_TRUE(made->physicalEntries.at(2)->isConstant());
  EXPECT_EQ(made->physicalEntries.at(2)->valueUnitsName, "length");
  EXPECT_EQ(base_.definitions()[2]->realEntries[0]->value, 3.25);

  readText(*record, text(1010));  // its old place 0 goes to the new place 1
  EXPECT_EQ(base_.inLine(record)->realEntries[1]->value, 77.0);
  EXPECT_EQ(base_.inLine(record)->typeId, 1010);

  readText(*record, text(500));
  std::ostringstream out;
  const TLConsoleRedirect redirect(out);
  EXPECT_EQ(base_.inLine(record), record);
}

TEST_F(ConditionsBase, TellsAShortLineOfPairs) {
  std::ostringstream out;
  const TLConsoleRedirect redirect(out);
  TLBCBackwardRecord record;
  TLTextSource source(
      "PHYSICAL_ENTRIES 1\nVECTOR_ENTRIES 2 3\nNEW_VALUE a b 4\nend_backward_compatibility\nx");
  EXPECT_EQ(record.read(source), 1);
  EXPECT_EQ(out.str(), "TLBCBackwardRecord : not a correct line PHYSICAL_ENTRIES 1\n");
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
  EXPECT_EQ(TLBCParameters::rotationalSpeed(" rotational_speed_1"), 1);
  EXPECT_EQ(TLBCParameters::rotationalSpeed("rotational_speed_2 "), 2);
  EXPECT_EQ(TLBCParameters::rotationalSpeed("Rotational_speed_2"), 0);
}

}  // namespace
