#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <iostream>
#include <limits>

#include "messaging/TLSteeringDataBase.h"
#include "messaging/TLSteeringParameters.h"
#include "support/Definitions.h"
#include "support/RecordTexts.h"

namespace {

using ::testing::ElementsAre;

constexpr const char* kRecord =
    "              VERSION                 2.0\n"
    "              TYPE_NAME               the type\n"
    "              NAME                    temperature at the wall\n"
    "              VALUE_UNITS_NAME        a unit\n"
    "              TYPE_ID                 3\n"
    "              GRID_LEVEL_I              1\n"
    "              GRID_LEVEL_J              2\n"
    "              GRID_LEVEL_K              3\n"
    "              STEERING_TYPE           curve\n"
    "              TYPE_OPSEL              21\n"
    "              NUMBER_OF_VALUES        2\n"
    "\t\t\t\tREAL_ENTRY\t\tlimit of it\t\t0.5\n"
    "\t\t\t\tVECTOR_ENTRY\t\taxis\t\t0 0 1\n"
    "\t\t\t\tINTEGER_ENTRY\t\toutput interval\t\t10\n"
    "                CHOICE_ENTRY          save now 1\n"
    "\t\t\t\tSTRING_ENTRY\t\tlabel\t\tsome text\n";

std::vector<float> xs(const TLSteeringParameter& parameter) {
  if (parameter.xValues() == nullptr) return {};
  return {parameter.xValues(), parameter.xValues() + parameter.valueCount()};
}

std::vector<float> ys(const TLSteeringParameter& parameter) {
  if (parameter.yValues() == nullptr) return {};
  return {parameter.yValues(), parameter.yValues() + parameter.valueCount()};
}

void merge(TLSteeringParameter& parameter, std::vector<float> x, std::vector<float> y) {
  parameter.mergeValues(static_cast<std::int32_t>(x.size()), x.data(), y.data());
}

// The record ----------------------------------------------------------------------------------

TEST(SteeringParameter, RoundTrip) {
  EXPECT_EQ(rewritten<TLSteeringParameter>(kRecord), kRecord);
  TLSteeringParameter parameter;
  parameter.name.clear();
  parameter.valueUnitsName.clear();
  parameter.type = 7;
  const std::string text = written(parameter);
  EXPECT_NE(text.find("              NAME                    unknown\n"), std::string::npos);
  EXPECT_NE(text.find("              VALUE_UNITS_NAME        UNDEFINED\n"), std::string::npos);
  EXPECT_NE(text.find("              STEERING_TYPE           \n"), std::string::npos);
}

TEST(SteeringParameter, EntriesInBothForms) {
  TLSteeringParameter parameter;
  EXPECT_EQ(readText(parameter,
                     "TYPE 4\nUSER_NAME the user's\nCONDITION c\nSTEERING_TYPE nonsense\n"
                     "TL_BEGIN real_entry\nVALUE 3\nTL_END real_entry\n"  // no name: dropped
                     "TL_BEGIN real_entry\nNAME r\nVALUE 3\nTL_END real_entry\n"
                     "TL_BEGIN choice_entry\nVALUE 3\nTL_END choice_entry\n"
                     "TL_BEGIN single_choice\nVALUE 3\nTL_END choice_entry\n"
                     "TL_BEGIN multy_choice\nNAME m\nSUB_CHOICE one 1\nTL_END multy_choice\n"
                     "INTEGER_ENTRY i 4\nTL_END TL_steering_parameter\n")
                .result,
            1);
  EXPECT_EQ(parameter.typeId, 4);
  EXPECT_EQ(parameter.userName, "the user's");
  EXPECT_EQ(parameter.type, TL_STEERING_RESIDUAL);
  ASSERT_EQ(parameter.realEntries.size(), 1U);
  EXPECT_EQ(parameter.realEntries[0]->position, 1);
  ASSERT_EQ(parameter.choiceEntries.size(), 2U);
  EXPECT_EQ(parameter.choiceEntries[0]->name, "unknown");
  EXPECT_EQ(parameter.integerEntries.at(0)->position, 5);
}

TEST(SteeringParameter, BadLinesAndPlaces) {
  TLSteeringParameter parameter;
  const auto header = readText(parameter, "VERSION\n");
  EXPECT_EQ(header.result, 0);
  EXPECT_EQ(header.console, "wrong bc parameters header: cannot determine bc parameters version\n");
  EXPECT_EQ(readText(parameter, "TYPE_OPSEL\n").result, 0);
  EXPECT_EQ(readText(parameter, "NUMBER_OF_VALUES -7\n").result, 1);
  EXPECT_EQ(parameter.valueCount(), 0);
  ASSERT_TRUE(parameter.vectorEntry(2));  // a list grows on access
  EXPECT_EQ(parameter.vectorEntries.size(), 3U);
  EXPECT_FALSE(parameter.realEntry(-1));
  EXPECT_FALSE(parameter.stringEntry(2000000000));
}

// The series ----------------------------------------------------------------------------------

TEST(SteeringValues, AResidualKeepsWhatGoesOn) {
  TLSteeringParameter parameter;
  merge(parameter, {1, 2, 2, 1, 3}, {10, 20, 21, 11, 30});
  EXPECT_THAT(xs(parameter), ElementsAre(1, 2, 3));
  EXPECT_THAT(ys(parameter), ElementsAre(10, 20, 30));
  merge(parameter, {3, 4, std::nanf(""), 5}, {31, 40, 0, 50});
  EXPECT_THAT(xs(parameter), ElementsAre(1, 2, 3, 4, 5));
  merge(parameter, {}, {});
  EXPECT_EQ(parameter.valueCount(), 5);
  TLSteeringParameter late;
  merge(late, {-1, 0, 7}, {1, 2, 3});  // above -1 counts, whatever number a series begins with
  EXPECT_THAT(xs(late), ElementsAre(0, 7));
}

TEST(SteeringValues, OthersAreReplaced) {
  TLSteeringParameter parameter;
  parameter.setType(TL_STEERING_CURVE);
  merge(parameter, {3, 1, 2}, {1, 2, 3});
  EXPECT_THAT(xs(parameter), ElementsAre(3, 1, 2));
  const float infinity = std::numeric_limits<float>::infinity();  // what is no number is dropped
  merge(parameter, {9, 2, 3, 4, 5},
        {infinity, -infinity, std::nanf(""), -std::nanf(""), std::numeric_limits<float>::max()});
  EXPECT_THAT(xs(parameter), ElementsAre(5));
  merge(parameter, {1}, {std::nanf("")});
  EXPECT_EQ(parameter.valueCount(), 0);
  parameter.setValueCount(40);
  parameter.clearValues();
  EXPECT_EQ(parameter.valueCount(), 40) << "a count without points stays";
}

TEST(SteeringValues, CapacityGrowsByHundredsUntilTheValuesAreTakenOver) {
  TLSteeringParameter from;
  for (int i = 1; i <= 250; ++i) {
    merge(from, {static_cast<float>(i)}, {1});
    EXPECT_EQ(from.capacity(), (i + 99) / 100 * 100);
  }
  from.setType(TL_STEERING_RESIDUAL);
  EXPECT_EQ(from.valueCount(), 250);
  TLSteeringParameter to;
  merge(to, {9}, {9});
  to.takeValues(from);
  to.takeValues(to);
  EXPECT_EQ(to.valueCount(), 250);
  EXPECT_EQ(to.capacity(), 250);
  EXPECT_EQ(from.valueCount(), 0);
  EXPECT_EQ(from.yValues(), nullptr);
  to.setType(TL_STEERING_SURFACE);
  EXPECT_EQ(to.valueCount(), 0);
  EXPECT_EQ(to.capacity(), 0);
}

// The files -----------------------------------------------------------------------------------

class SteeringFile : public testing::Test {
 protected:
  SteeringFile() : path_(files_.file("a.steering")) {
    set_.parameter(0)->name = "residual";
    merge(*set_.parameter(0), {1, 2}, {1.5, -2});
    set_.parameter(1)->name = "nothing yet";
    set_.parameter(2)->setType(TL_STEERING_CURVE);
    merge(*set_.parameter(2), {7}, {8});
  }

  RWCString readAgain(bool& good) {
    std::ostringstream out;
    const TLConsoleRedirect redirect(out);
    good = again_.read(path_);
    return out.str();
  }

  const TTempDir files_;
  const std::string path_;
  TLSteeringParameters set_;
  TLSteeringParameters again_;
};

TEST_F(SteeringFile, ReadsBackEqual) {
  set_.name = path_;
  set_.modified = 1;
  set_.save();
  EXPECT_EQ(set_.modified, 0);
  const std::string text = files_.read("a.steering");
  EXPECT_EQ(text.rfind("          VERSION                     1.0\n"
                       "          NAME                       " +
                           path_ +
                           "\n          updateInBatch                       0\n"
                           "          TL_BEGIN TL_steering_parameter\n"
                           "              VERSION                 2.0\n",
                       0),
            0U);
  EXPECT_EQ(text.substr(text.rfind("          TL_END")),
            "          TL_END   TL_steering_parameter\n");
  const std::string bytes = files_.read("a.steering.binary");
  ASSERT_EQ(bytes.size(), 24U);
  EXPECT_EQ(bytes.substr(0, 12), std::string("\x3f\x80\0\0\x40\0\0\0\x3f\xc0\0\0", 12));
  bool good = false;
  EXPECT_EQ(readAgain(good), "");
  EXPECT_TRUE(good);
  EXPECT_EQ(again_.name, path_);
  EXPECT_EQ(again_.version, 1.0F);
  ASSERT_EQ(again_.parameters.size(), 3U);
  EXPECT_THAT(xs(*again_.parameter(0)), ElementsAre(1, 2));
  EXPECT_THAT(ys(*again_.parameter(0)), ElementsAre(1.5, -2));
  EXPECT_THAT(ys(*again_.parameter(2)), ElementsAre(8));
  again_.save();
  EXPECT_EQ(files_.read("a.steering"), text);
  EXPECT_EQ(files_.read("a.steering.binary"), bytes);
}

TEST_F(SteeringFile, BinaryFilesThatAreMissingOrTooShort) {
  set_.saveAs(path_);
  files_.write("a.steering.binary", files_.read("a.steering.binary").substr(0, 14));
  bool good = false;
  EXPECT_EQ(readAgain(good), "");
  EXPECT_TRUE(good);
  EXPECT_THAT(ys(*again_.parameter(0)), ElementsAre(1.5, 0));
  EXPECT_THAT(xs(*again_.parameter(2)), ElementsAre(0));

  std::filesystem::remove(path_ + ".binary");
  EXPECT_EQ(readAgain(good), "ERROR: file: " + path_ + ".binary does not exist\n");
  EXPECT_FALSE(good);
  EXPECT_EQ(again_.parameters.size(), 3U);

  // A count that lies takes no space.
  files_.write("a.steering",
               "TL_BEGIN TL_steering_parameter\nNUMBER_OF_VALUES 2147483647\n"
               "TL_END TL_steering_parameter\n");
  files_.write("a.steering.binary", std::string(16, '\0'));
  readAgain(good);
  EXPECT_TRUE(good);
  EXPECT_EQ(again_.parameter(0)->valueCount(), 2);
}

TEST_F(SteeringFile, SetsWithoutAFileAreNeverSaved) {
  set_.save();
  set_.saveAs("unknown");
  set_.updateInBatch = 1;
  set_.saveAs(path_);
  EXPECT_EQ(files_.count(), 0);
  bool good = true;
  EXPECT_EQ(readAgain(good), "");
  EXPECT_FALSE(good);
  EXPECT_EQ(again_.name, path_);
}

TEST_F(SteeringFile, OtherBlocksAreSkippedAndTheDataBasesEndEndsIt) {
  TLTextSource source(
      "VERSION 3\nupdateInBatch 1\nTL_BEGIN other\nVERSION\nTL_END other\n"
      "TL_BEGIN TL_steering_parameter_database\nTL_BEGIN TL_steering_parameter\n"
      "TL_END TL_steering_parameter\nTL_END TL_steering_parameter_database\n"
      "TL_BEGIN TL_steering_parameter\nTL_END TL_steering_parameter\n"
      "TL_END TL_steering_parameter_database\nVERSION\n");
  EXPECT_EQ(set_.readText(source), 1);
  EXPECT_EQ(set_.parameters.size(), 1U);
  EXPECT_EQ(set_.updateInBatch, 1);
}

// The database --------------------------------------------------------------------------------

TEST(SteeringDataBase, MakesParameters) {
  const std::string solver =
      "VERSION 1\nTL_BEGIN TL_steering_parameter_database\nTL_BEGIN TL_steering_parameter\n"
      "TL_END TL_steering_parameter\nTL_END TL_steering_parameter_database\n"
      "TL_BEGIN TL_steering_parameter\nNAME first\nVALUE_UNITS_NAME length\nTYPE 9\nTYPE_OPSEL 2\n"
      "TL_END TL_steering_parameter\n";
  const std::string interface =
      "TL_BEGIN TL_steering_parameter_interface\nTYPE 1\nTYPE_NAME shown\nSTEERING_TYPE curve\n"
      "INTEGER_ENTRY interval 10\nTL_END TL_steering_parameter_interface\n";
  TLSteeringDataBase base;
  ASSERT_EQ(readText(base, solver + interface + "TL_END anything\n" + solver).result, 1);
  EXPECT_EQ(base.solverParameters.size(), 1U);
  EXPECT_EQ(base.interfaceParameters.size(), 1U);
  const auto made = base.makeParameter(2);
  ASSERT_TRUE(made);
  EXPECT_EQ(made->name, "first");
  EXPECT_EQ(made->valueUnitsName, "length");
  EXPECT_EQ(made->typeName, "shown");
  EXPECT_EQ(made->type, TL_STEERING_CURVE);
  EXPECT_EQ(made->typeId, 1);
  EXPECT_EQ(made->typeOpsel, 2);
  made->integerEntries.at(0)->value = 99;
  EXPECT_EQ(base.interfaceParameters[0]->integerEntries[0]->value, 10);
  EXPECT_FALSE(base.makeParameter(3));
  readText(base, solver);
  EXPECT_FALSE(base.makeParameter(2));
  EXPECT_EQ(readText(base, "TL_BEGIN TL_steering_parameter\nVERSION\n").result, 0);
  const Definitions definitions;  // a new set is what the process's database can make
  definitions.write("velstra_steering.def", solver + interface);
  TLSteeringDataBase::instance().load(0, 0);
  EXPECT_EQ(TLSteeringParameters().parameters.at(0)->name, "first");
}

TEST(SteeringDataBase, FileByTypeAndMode) {
  const Definitions definitions;
  const auto named = [&](const char* file, const char* name) {
    definitions.write(file, std::string("TL_BEGIN TL_steering_parameter\nNAME ") + name +
                                "\nTL_END TL_steering_parameter\n");
  };
  named("velstra_steering.def", "structured");
  named("lumbrake_steering.def", "hexa");
  named("lumbrake_steering_auto.def", "automatic");
  named("quorel_steering.def", "marine");
  TLSteeringDataBase base;
  for (const auto& [type, mode, name] : {std::tuple{0, 0, "structured"},
                                         {1, 1, "structured"},
                                         {2, 0, "hexa"},
                                         {2, 2, "hexa"},
                                         {2, 1, "automatic"},
                                         {2, 3, "automatic"},
                                         {4, 1, "marine"}}) {
    base.load(type, mode);
    EXPECT_EQ(base.solverParameters.at(0)->name, name) << type << ' ' << mode;
  }
  const TVariable unset("VELSTRA_DIR", nullptr);
  std::ostringstream out;
  const TLConsoleRedirect redirect(out);
  base.load(0, 0);
  EXPECT_EQ(out.str(), "**** Cannot Start BC DataBase, Check VELSTRA_DIR env. variable\n");
  EXPECT_EQ(base.solverParameters.size(), 1U);
}

TEST(SteeringDataBaseDeathTest, EndsTheProcessWithoutItsFile) {
  const TVariable nowhere("VELSTRA_DIR", "/no/such");
  EXPECT_EXIT(
      {
        const TLConsoleRedirect redirect(std::cerr);
        TLSteeringDataBase().load(4, 0);
      },
      testing::ExitedWithCode(0),
      "^\\*\\*\\*\\* Cannot Open Steering DataBase, Check the file \n"
      "/no/such/quorel_steering.def\n$");
}

}  // namespace
