#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <iostream>

#include "parameters/TLHexaParametersDataBase.h"
#include "support/DefinitionGenerator.h"
#include "support/Definitions.h"
#include "support/RecordTexts.h"

namespace {

using ::testing::ElementsAre;

std::string setting(const char* name, const char* type, const char* number, const char* value) {
  return std::string("          VERSION                     1.0\n\n") +
         "          NAME                        " + name + '\n' +
         "          GLOBAL                      yes\n" + "          TYPE                        " +
         type + '\n' + "          EXPERT                      no\n" +
         "          NUMBER                      " + number + '\n' +
         "          VALUE                       " + value + '\n';
}

TEST(HexaParameter, RoundTrip) {
  for (const auto& text : {
           setting("tm_cflV_", "REAL", "1", "0.5"),
           setting("a_", "INTEGER", "2 3", "1 2 3 4 5 6"),
           setting("sns_alpha_", "FLOAT", "2 1", "1.5 2"),
           setting("s_", "STRING", "1", "'two words'"),
           setting("s_", "STRING", "1", "''"),
           setting("s_", "STRING", "4", "one 'two words' '' three"),
           setting("none_", "REAL", "0", ""),
       }) {
    EXPECT_EQ(rewritten<TLParameter>(text), text);
  }
}

TEST(HexaParameter, Keys) {
  TLParameter parameter;
  EXPECT_EQ(readText(parameter,
                     "# first\nversion 2\nQUOREL other name\nVAR_NAME v\nOBSOLETE yes\nNAME n m\n"
                     "! second\nTYPE Integer\nNUMBER 2 2 9\nOLD_VALUE 1 2 3 4\nVALUE 5 6 7 8\n"
                     "OLD_VALUE 9 9 9 9\nunknown\nTL_END tlparameter\n")
                .result,
            1);
  EXPECT_THAT(parameter.comments, ElementsAre(" first\n", " second\n"));
  EXPECT_EQ(parameter.name, "n m");
  EXPECT_EQ(parameter.quorel, "other name");
  EXPECT_EQ(parameter.obsolete, 1);
  EXPECT_EQ(parameter.value.integer(1, 0), 7);
  ASSERT_EQ(parameter.oldValues.size(), 2U);
  EXPECT_EQ(parameter.oldValues[0].integer(0, 1), 2);
  EXPECT_NE(written(parameter).find("          QUOREL                      other name\n"),
            std::string::npos);
}

TEST(HexaParameter, BadLines) {
  const struct {
    const char* text;
    const char* console;
  } rows[] = {
      {"VERSION\n", " wrong TLParameter header: cannot determine TLParameter version\n"},
      {"TYPE\n", "  wrong format for16: TYPE\n"},
      {"TYPE complex\n", ""},
      {"TYPE real\nNUMBER 3\nVALUE 1 2\n", "  wrong format for39: VALUE 1 2\n"},
      {"NUMBER 2\nVALUE 1 2\nOLD_VALUE 1\n", "  wrong format for37: OLD_VALUE 1\n"},
      {"TYPE string\nNUMBER 2\nVALUE 'a\n",
       "wrong format for 'VALUE 'a': missing ending single quote for value #1\n"},
      {"TYPE float\nNUMBER 2000000000 2000000000\nVALUE 1\n", "  wrong format for40: VALUE 1\n"},
      {"NUMBER 2000000000 2000000000\n", ""},
  };
  for (const auto& row : rows) {
    TLParameter parameter;
    const auto reading = readText(parameter, row.text);
    EXPECT_EQ(reading.result, 0) << row.text;
    EXPECT_EQ(reading.console, row.console);
  }
}

TEST(HexaParameterValue, WrongAccessIsTold) {
  std::ostringstream out;
  const TLConsoleRedirect redirect(out);
  TLParameterValue value(TLValueType::real, 2, 1);
  EXPECT_EQ(value.integer(0, 0), 0);
  value.setReal(2, 0, 1.0);
  EXPECT_EQ(value.real(0, -1), 0.0);
  value.setReal(1, 0, 4.0);
  EXPECT_EQ(value.real(1, 0), 4.0);
  EXPECT_EQ(out.str(),
            "Error accessing parameter value! Wrong type REAL instead of INTEGER. \n"
            "Error accessing parameter value! Row index 2 is out of range [0..2). \n"
            "Error accessing parameter value! Column index -1 is out of range [0..1). \n");
}

TEST(HexaParameters, RoundTripOfARealSize) {
  TLHexaParameters list;
  ASSERT_EQ(readText(list, makeHexaDefinition(400)).result, 1);
  EXPECT_EQ(list.parameters.size(), 400U);
  EXPECT_EQ(list.find("setting399_"), list.parameters[399].get());
  EXPECT_EQ(list.find("setting400_"), nullptr);
  const std::string text = written(list);
  EXPECT_EQ(rewritten<TLHexaParameters>(text), text);
  TLHexaParameters bad;
  const auto reading = readText(bad, "VERSION\n");
  EXPECT_EQ(reading.result, 0);
  EXPECT_EQ(reading.console,
            " wrong HexaParameters header: cannot determine HexaParameters version\n");
}

TEST(HexaDefinitionDeathTest, FileByKind) {
  const Definitions definitions;
  definitions.write("lumbrake.def", makeHexaDefinition(3));
  definitions.write("lumbrake_auto.def", makeHexaDefinition(5));
  EXPECT_EQ(TLHexaParametersDataBase(0).parameters.size(), 3U);
  EXPECT_EQ(TLHexaParametersDataBase(2).parameters.size(), 3U);
  EXPECT_EQ(TLHexaParametersDataBase(1).parameters.size(), 5U);
  const TVariable nowhere("VELSTRA_DIR", "/no/such");
  EXPECT_EXIT(
      {
        const TLConsoleRedirect redirect(std::cerr);
        TLHexaParametersDataBase base(1);
      },
      testing::ExitedWithCode(0),
      "^ERROR! ...\n The file /no/such/lumbrake_auto.def can not be found.\n$");
}

}  // namespace
