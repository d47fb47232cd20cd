#include <gtest/gtest.h>

#include <string>

#include "parameters/TLParametersDataBase.h"
#include "support/Definitions.h"
#include "tool/TLDefinitionSummary.h"
#include "tool/TLFileKind.h"
#include "tool/TLProjectFile.h"
#include "tool/TLProjectSummary.h"
#include "tool/TLSummary.h"

namespace {

constexpr const char* kRun =
    "TALVEN_PROJECT_FILE VERSION 1210\n"
    "PROJECT_TYPE STRUCTURED\n"
    "TL_BEGIN computation\n"
    "  NAME fan\n"
    "  POSITOIN 3\n"
    "  TL_BEGIN solver_parameters\n"
    "VELSTRA,L,1,0, 2\n"
    "CFL,R,1,1,0\n5\n"
    "NOBODY,I,1,1,0\n1\n"
    "  TL_END solver_parameters\n"
    "  TL_BEGIN grid_bc\n    TL_BEGIN block\n      NAME domain_1\n      IMAX 5\n      JMAX 5\n"
    "      KMAX 3\n    TL_END block\n  TL_END grid_bc\n"
    "TL_END computation\n";

TEST(ProjectFile, TellsWhatReadingDropsAndWhatWasMeant) {
  const Definitions definitions;
  const TTempDir dir;
  TLProjectFile file(dir.write("fan.run", kRun));
  ASSERT_TRUE(file.read(TLDefinitionNeed::rewrite, false)) << file.report().text();
  EXPECT_EQ(file.report().text(),
            file.path() +
                ":5:3: warning: no key of computation on this line: it is passed over (was "
                "\"position\" meant?)\n    POSITOIN 3\n    ^\n" +
                file.path() +
                ":10:1: warning: no key of solver_parameters on this line: it is passed over\n"
                "  NOBODY,I,1,1,0\n  ^\n");
  const std::string text = summaryOf(file.project()).text();
  for (const char* line : {"fan\n", "CFL     5  (definition: 3)\n",
                           "fluid, 5 x 5 x 3 nodes, 32 cells, 0 faces, 0 conditions\n"}) {
    EXPECT_NE(text.find(line), std::string::npos) << line << "in\n" << text;
  }
}

TEST(ProjectFile, TellsWhyItIsRefused) {
  const Definitions definitions;
  definitions.write("velstra.def", "no list\n");
  struct Case {
    const char* text;
    TLDefinitionNeed need;
    const char* told;
  };
  const Case cases[] = {
      {"TALVEN_PROJECT_FILE VERSION 1210\nTL_BEGIN computation\n"
       "   TL_BEGIN acoustic_data\n    VERSION  \n    X 1\n",
       TLDefinitionNeed::look, ":4:5: fault: version <number>\n      VERSION  \n      ^\n"},
      {"TALVEN_PROJECT_FILE VERSION 1210\nTL_BEGIN computation\nTL_BEGIN grid_bc\nTL_BEGIN block\n"
       "TL_BEGIN hexa_parameters\nTL_BEGIN tlparameter\nNUMBER 3\n  VALUE 1 2\nTL_END "
       "tlparameter\n",
       TLDefinitionNeed::look, ":8:3: fault: expected: VALUE 3 * <float>\n"},
      {kRun, TLDefinitionNeed::rewrite, "velstra.def"},
      {"something else\n", TLDefinitionNeed::look, "fault"},
  };
  const TTempDir dir;
  for (const auto& test : cases) {
    TLProjectFile file(dir.write("fan.run", test.text));
    EXPECT_FALSE(file.read(test.need, false)) << test.told;
    EXPECT_TRUE(file.report().hasFault()) << test.told;
    EXPECT_NE(file.report().text().find(test.told), std::string::npos) << file.report().text();
  }
}

TEST(FileKind, IsToldByTheContent) {
  const struct {
    const char* text;
    TLFileKind kind;
  } cases[] = {
      {"\n# c\nTALVEN_PROJECT_FILE VERSION 1\n", TLFileKind::project},
      {"ZYV 1\n", TLFileKind::mesh},
      {"x\nSTART_READING_OPERATION\n", TLFileKind::structuredParameters},
      {"TL_BEGIN units_record\n", TLFileKind::units},
      {"VERSION 1\n  tl_begin BC_PARAMETERS\n", TLFileKind::conditions},
      {"TL_BEGIN tlparameter\n", TLFileKind::unstructuredParameters},
      {"TL_BEGIN subtask\n", TLFileKind::task},
      {"TL_BEGIN TL_steering_parameter\n", TLFileKind::steering},
      {"TL_BEGIN TL_steering_parameter\nTL_END x\nTL_BEGIN TL_steering_parameter_interface\n",
       TLFileKind::steeringDefinitions},
      {"", TLFileKind::unknown},
  };
  for (const auto& test : cases) EXPECT_EQ(kindOfText(test.text), test.kind) << test.text;
}

TEST(Summary, AllBlocksOfATextBecomeJson) {
  const auto json = blocksAsJson(
      "KEY  a  b \r\nTL_BEGIN x\n# comment\nTL_BEGIN solver_parameters\nVELSTRA,L,1,0, 1\n"
      "VICOEF,R,1,2,0\n 1 2\nTL_END y\nk \xff \xc3\xb6\n");
  EXPECT_EQ(json.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace),
            R"({"blocks":[{"blocks":[{"blocks":[],"lines":[["VELSTRA,L,1,0,","1"],)"
            R"(["VICOEF,R,1,2,0","1 2"]],"name":"solver_parameters"}],"lines":[["k",")"
            "\xef\xbf\xbd \xc3\xb6"
            R"("]],)"
            R"("name":"x"}],"lines":[["KEY","a  b"]],"name":""})");
  std::string deep;
  for (int i = 0; i < 100000; ++i) deep += "TL_BEGIN x\n";
  EXPECT_GT(blocksAsJson(deep + "TL_END x\nKEY 1\n").dump().size(), 100000U);
}

TEST(Summary, DefinitionFilesAreRead) {
  TLFileReport report("velstra.uni");
  TLSummary summary;
  EXPECT_TRUE(summarizeDefinition(TLFileKind::units,
                                  "TL_BEGIN units_record\nNUMBER_OF_SYSTEMS 2\n"
                                  "VALUE_UNITS_NAME length\nUNITS_NAME 0 m\nUNITS_NAME 1 mm\n"
                                  "TL_END units_record\n",
                                  report, summary));
  EXPECT_EQ(summary.text(), "units file\n  length  m, mm\n");
  EXPECT_FALSE(summarizeDefinition(TLFileKind::units, "TL_BEGIN units_record\nCONV_FACTOR 1\n",
                                   report, summary));
  EXPECT_TRUE(report.hasFault());
}

}  // namespace
