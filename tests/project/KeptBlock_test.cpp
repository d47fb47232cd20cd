#include <gtest/gtest.h>

#include <string>

#include "project/TLAcoustic.h"
#include "project/TLAnsys.h"
#include "project/TLB2BParameters.h"
#include "project/TLBlockDependent.h"
#include "project/TLChemistryParameters.h"
#include "project/TLHarmonicData.h"
#include "project/TLInitSol.h"
#include "project/TLInitSolTurbo.h"
#include "project/TLInjectionSector.h"
#include "project/TLModal.h"
#include "project/TLMultiSpecies.h"
#include "project/TLNonDeterministicComputationManager.h"
#include "project/TLNonDeterministicData.h"
#include "project/TLOutputs.h"
#include "project/TLPerformanceCurve.h"
#include "project/TLProfile.h"
#include "project/TLThroughflowBlock.h"
#include "project/TLVolumicHeatSource.h"
#include "support/RecordTexts.h"
#include "textio/Handle.h"

namespace {

template <class Record>
Handle<TLKeptBlock> make() {
  return makeHandle<Record>();
}

struct Kind {
  const char* block;
  Handle<TLKeptBlock> (*make)();
  const char* failure;
  const char* writtenVersion;  // null: what was read
};

const Kind kKinds[] = {
    {"performance_curve", &make<TLPerformanceCurve>,
     " wrong performance header: cannot determine block version", "1.0"},
    {"TLNonDeterministicComputationManager", &make<TLNonDeterministicComputationManager>,
     " wrong TLNonDeterministicComputationManager header: cannot determine "
     "TLNonDeterministicComputationManager version",
     "1.0"},
    {"output_parameters", &make<TLOutputs>,
     " wrong TLOutputs header: cannot determine TLOutputs version", "1.0"},
    {"hexa_outputs", &make<TLOutputs>,
     " wrong TLOutputs header: cannot determine TLOutputs version", "1.0"},
    {"block_dependent", &make<TLBlockDependent>,
     " wrong block dependent parameters header: cannot determine block dependent version", "1.0"},
    {"injection_sector", &make<TLInjectionSector>,
     " wrong TLInjectionSector header: cannot determine TLInjectionSector version", "5.0"},
    {"acoustic_data", &make<TLAcoustic>,
     " wrong TLAcoustic header: cannot determine TLAcoustic version", "5.0"},
    {"chemistry_parameters", &make<TLChemistryParameters>,
     " wrong ChemistryParameters header: cannot determine TLChemistryParameters version", "1.0"},
    {"initial_solution_turbo", &make<TLInitSolTurbo>,
     " wrong TLInitSolTurbo entry header: cannot determine TLInitSolTurbo entry version", "1.0"},
    {"ansys_properties", &make<TLAnsys>, " wrong ANSYS header: cannot determine version", "1.0"},
    {"initial_solution", &make<TLInitSol>,
     " wrong TLInitSol entry header: cannot determine TLInitSol entry version.", nullptr},
    {"modal_properties", &make<TLModal>, " wrong Modal header: cannot determine version", nullptr},
    {"time_profile_entry", &make<TLProfile>,
     " wrong profile entry header: cannot determine profile entry version", nullptr},
    {"frequency_profile_entry", &make<TLProfile>,
     " wrong profile entry header: cannot determine profile entry version", nullptr},
    {"throughflow_parameters", &make<TLThroughflowBlock>,
     " wrong physical entry header: cannot determine throughflow entry version", nullptr},
    {"NonDeterministicData", &make<TLNonDeterministicData>,
     " wrong TLNonDeterministicData header: cannot determine TLNonDeterministicData version",
     nullptr},
    {"solver_B2B_parameters", &make<TLB2BParameters>, " wrong header: cannot determine version.",
     nullptr},
    {"multispecies_properties", &make<TLMultiSpecies>, " wrong header: cannot determine version.",
     nullptr},
    {"harmonic_disturber", &make<TLHarmonicData>, " wrong header: cannot determine version.",
     nullptr},
    {"brick_heat_source", &make<TLVolumicHeatSource>, " wrong header: cannot determine version.",
     nullptr},
};

// A body with what a block may hold: comments, blank lines, blocks within, among them one of its
// own name, and lines that look like keys of other records.
std::string body(const std::string& block, const std::string& version) {
  return "   VERSION   " + version +
         " \n"
         "# a comment with TL_END " +
         block +
         "\n\n\t VALUE 1.23456789012345678  2\n   TL_BEGIN inner\n  version\n  TL_END inner\n" +
         "  TL_BEGIN " + block + "\n    kept 1\n  TL_END   " + block +
         "\n  TL_END something_else\n  name     with   blanks   \r\n";
}

TEST(KeptBlock, KeepsItsBodyByteForByteAndStopsBehindItsEnd) {
  for (const auto& kind : kKinds) {
    SCOPED_TRACE(kind.block);
    auto record = kind.make();
    TLTextSource source(body(kind.block, "0.75") + "   tl_end  x " + kind.block + "\nnext line\n");
    EXPECT_EQ(record->read(source), 1);
    EXPECT_EQ(source.readLine(), "next line");
    EXPECT_EQ(record->version(), 0.75);
    // Some put the current version in the place of the one that they read.
    const char* version = kind.writtenVersion == nullptr ? "0.75" : kind.writtenVersion;
    EXPECT_EQ(written(*record), body(kind.block, version));
    const auto reading = readText(*record, "  a 1\n  Version \n  b 2\n");
    EXPECT_EQ(reading.result, 0);
    EXPECT_EQ(reading.console, std::string(kind.failure) + "\n");
    EXPECT_EQ(written(*record), body(kind.block, version));
  }
}

TEST(KeptBlock, RefusesAVersionLineWithoutANumberInBlocksWithin) {
  const struct {
    const char* block;
    const char* failure;
  } cases[] = {
      {"tlquantity", " wrong TLOutput header: cannot determine TLOutput version"},
      {"chemistry_species", " wrong chemistry_species header: cannot determine face version"},
      {"chemistry_reaction", " wrong chemistry_reaction header: cannot determine face version"},
      {"patchgroup", " wrong ANSYS patchgroup header: cannot determine patchgroup version"},
  };
  for (const auto& test : cases) {
    TLOutputs record;
    const auto reading =
        readText(record, std::string(" TL_BEGIN ") + test.block + "\n VERSION\n TL_END x\n");
    EXPECT_EQ(reading.result, 0) << test.block;
    EXPECT_EQ(reading.console, std::string(test.failure) + "\n");
  }
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
