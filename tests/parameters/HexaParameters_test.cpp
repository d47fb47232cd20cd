#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <iostream>

#include "parameters/TLHexaParametersDataBase.h"
#include "support/Definitions.h"
#include "support/RecordTexts.h"

namespace {

using ::testing::ElementsAre;

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

TEST(HexaParameters, FindsTheFirstOfAName) {
  TLHexaParameters list;
  readText(list,
           "TL_BEGIN tlparameter\nNAME a_\nTL_END tlparameter\n"
           "TL_BEGIN tlparameter\nNAME b_\nTL_END tlparameter\n"
           "TL_BEGIN tlparameter\nNAME b_\nTL_END tlparameter\n");
  ASSERT_EQ(list.parameters.size(), 3U);
  EXPECT_EQ(list.find("b_"), list.parameters[1].get());
  EXPECT_EQ(list.find("c_"), nullptr);
}

TEST(HexaDefinitionDeathTest, FileByKind) {
  const std::string setting = "TL_BEGIN tlparameter\nNAME a_\nTL_END tlparameter\n";
  const Definitions definitions;
  definitions.write("lumbrake.def", setting);
  definitions.write("lumbrake_auto.def", setting + setting);
  EXPECT_EQ(TLHexaParametersDataBase(0).parameters.size(), 1U);
  EXPECT_EQ(TLHexaParametersDataBase(2).parameters.size(), 1U);
  EXPECT_EQ(TLHexaParametersDataBase(1).parameters.size(), 2U);
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
