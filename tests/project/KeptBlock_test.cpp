#include <gtest/gtest.h>

#include <string>

#include "project/TLAnsys.h"
#include "project/TLInitSol.h"
#include "project/TLInjectionSector.h"
#include "project/TLOutputs.h"
#include "support/RecordTexts.h"

namespace {

// The good run files of this folder hold a block of each kind.
TEST(KeptBlock, KeepsItsBodyByteForByteAndStopsBehindItsEnd) {
  // Comments, blank lines, blocks within, among them one of its own name, and lines that look like
  // keys of other records.
  const std::string body =
      "# a comment with TL_END ansys_properties\n\n\t VALUE 1.23456789012345678  2\n"
      "   TL_BEGIN inner\n  version\n  TL_END inner\n  TL_BEGIN ansys_properties\n    kept 1\n"
      "  TL_END   ansys_properties\n  TL_END something_else\n  name     with   blanks   \r\n";
  TLAnsys record;
  TLTextSource source("   VERSION   0.75 \n" + body + "   tl_end  x Ansys_Properties\nnext line\n");
  EXPECT_EQ(record.read(source), 1);
  EXPECT_EQ(source.readLine(), "next line");
  EXPECT_EQ(record.version(), 0.75);
  EXPECT_EQ(written(record), "   VERSION   1.0 \n" + body);
  EXPECT_EQ(readText(record, "  a 1\n  Version \n  b 2\n").result, 0);
  EXPECT_EQ(written(record), "   VERSION   1.0 \n" + body);
}

TEST(KeptBlock, WhatTheTextLeavesOpenIsClosed) {
  TLAnsys record;
  EXPECT_EQ(readText(record, "  VERSION 1\n  last line").result, 1);
  EXPECT_EQ(written(record), "  VERSION 1\n  last line\n");
  EXPECT_EQ(readText(record, " TL_BEGIN Ansys_Properties\n TL_BEGIN other\n").result, 1);
  EXPECT_EQ(written(record),
            " TL_BEGIN Ansys_Properties\n TL_BEGIN other\nTL_END Ansys_Properties\n");
}

TEST(KeptBlock, ASetterChangesItsValueAndNothingElse) {
  TLInitSol solution;
  ASSERT_EQ(readText(solution,
                     " VERSION 2.0\n\tTYPE   File  # as it was\n TL_BEGIN inner\n  FILE no\n"
                     " TL_END inner\n   FILE      /a b/c.run   \n INITIAL_SOLUTION_INDEX 4\n")
                .result,
            1);
  EXPECT_TRUE(solution.isFile());
  EXPECT_EQ(solution.path(), "/a b/c.run");
  solution.dropIndex();
  solution.setPath("/far away/d.run");
  EXPECT_EQ(written(solution),
            " VERSION 2.0\n\tTYPE   File  # as it was\n TL_BEGIN inner\n  FILE no\n"
            " TL_END inner\n   FILE      /far away/d.run   \n");
  solution.setKind("const");
  EXPECT_NE(written(solution).find("\tTYPE   const  # as it was\n"), std::string::npos);
  EXPECT_EQ(solution.groupName(), "unknown");
  solution.setGroupName("Group_1");
  EXPECT_TRUE(written(solution).ends_with("      GROUP_NAME                     Group_1\n"));
}

TEST(KeptBlock, NamesTheQuantitiesOfTheOutputs) {
  TLOutputs outputs;
  ASSERT_EQ(readText(outputs,
                     " TL_BEGIN tlquantity\n NAME Static Pressure \n TL_BEGIN x\n NAME no\n TL_END "
                     "x\n TL_END tlquantity\n TL_BEGIN tlquantity\n name Mach\n TL_END "
                     "tlquantity\n TL_END output_parameters\n")
                .result,
            1);
  EXPECT_EQ(outputs.quantityNames(), (std::vector<RWCString>{"Static Pressure", "Mach"}));
}

}  // namespace
