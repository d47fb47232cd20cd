#include "tool/TLBalanceCommand.h"

#include <gtest/gtest.h>

#include <iostream>
#include <nlohmann/json.hpp>
#include <sstream>

#include "platform/TTempDir.h"
#include "project/TLGrid.h"
#include "project/TLProject.h"
#include "support/Definitions.h"
#include "support/RunFileGenerator.h"
#include "tool/TLExitCode.h"

namespace {

class Balance : public testing::Test {
 protected:
  Balance() {
    RunFileOptions generated;
    generated.blocks = {4, 3, 1};
    generated.sizeSpread = 6;
    generated.fullNonMatching = 1;
    options.runFile = files_.write("a.run", RunFileGenerator(generated).runFile());
    options.processors = 3;
  }
  std::string output(int expectedCode = TLExitCode::kOk) {
    testing::internal::CaptureStdout();
    EXPECT_EQ(runBalance(options), expectedCode);
    std::cout.flush();
    return testing::internal::GetCapturedStdout();
  }
  // The numbers behind "OWNERS" of the last line.
  static std::vector<int> ownersIn(const std::string& text) {
    const auto at = text.rfind("OWNERS");
    EXPECT_TRUE(at != std::string::npos && (at == 0 || text[at - 1] == '\n')) << text;
    std::istringstream in(text.substr(at + 6));
    std::vector<int> owners;
    for (int owner = 0; in >> owner;) owners.push_back(owner);
    return owners;
  }

  TTempDir files_;
  Definitions definitions_;
  TLBalanceOptions options;
};

TEST_F(Balance, PrintsTheTraceAndTheOwners) {
  options.verify = true;
  const std::string text = output();
  EXPECT_TRUE(text.starts_with("TLPartition::TLPartition \nTLPartition Calculates FNMB 1\n"))
      << text;
  EXPECT_EQ(ownersIn(text).size(), 12U);
  EXPECT_EQ(output(), text);
}

TEST_F(Balance, SaysTheSameInJsonAndInATable) {
  const auto owners = ownersIn(output());
  options.json = true;
  const auto json = nlohmann::json::parse(output());
  EXPECT_EQ(json["version"], 1);
  EXPECT_EQ(json["owners"].get<std::vector<int>>(), owners);
  options.json = false;
  options.summary = true;
  const auto table = output();
  EXPECT_EQ(ownersIn(table), owners);
  EXPECT_NE(table.find("|########################|"), std::string::npos);
}

TEST_F(Balance, StoresTheDistributionInTheRunFile) {
  for (const char* method : {"growth", "metis"}) {
    options.method = method;
    options.write = true;
    const auto owners = ownersIn(output());
    TLProject project;
    project.usesDefinitions = false;
    ASSERT_EQ(project.read(options.runFile), 1);
    ASSERT_EQ(project.currentComputation->grid->blocks.size(), owners.size());
    for (std::size_t i = 0; i < owners.size(); ++i) {
      EXPECT_EQ(project.currentComputation->grid->blocks[i]->processId, owners[i] + 1) << method;
    }
    const auto text = files_.read("a.run");
    EXPECT_NE(text.find("NTASK,I,1,1,0\n3\n"), std::string::npos);
    EXPECT_NE(text.find("ICOMP,I,1,1,0\n2\n"), std::string::npos);
  }
}

TEST_F(Balance, RefusesWhatItCannotDistribute) {
  options.write = true;
  options.processors = 0;
  const auto before = files_.read("a.run");
  EXPECT_EQ(output(TLExitCode::kStepFailed).find("OWNERS"), std::string::npos);
  EXPECT_EQ(files_.read("a.run"), before);
  options.runFile = files_.file("none.run");
  EXPECT_EQ(output(TLExitCode::kStepFailed), "");
}

}  // namespace
