#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <iostream>
#include <thread>

#include "parameters/TLParametersDataBase.h"
#include "support/Definitions.h"
#include "support/RecordTexts.h"

namespace {

using ::testing::ElementsAre;
using Names = std::vector<std::string>;

Names descriptors(const TLParameters& parameters) {
  Names names;
  for (const auto& item : parameters.items()) names.push_back(item.descriptor);
  return names;
}

TEST(Descriptor, IsTakenApartFromItsEnd) {
  const struct {
    const char* text;
    const char* name;
    TLParameterType type;
    int count;
  } rows[] = {
      {"IROVAR,I,1,1,0", "IROVAR", TLParameterType::integer, 1},
      {"IGAMTE,R,1,9,0", "IGAMTE", TLParameterType::real, 9},
      {"_KPCF,L,x,2,y", "_KPCF", TLParameterType::text, 2},
      {"A,B,I,1,3,0", "A,B", TLParameterType::integer, 3},
      {"A,i,1,3,0", "A", TLParameterType::unknown, 3},
      {"A,I,1,-3,0", "A", TLParameterType::integer, 0},
      {"A,I,1,2000000000,0", "A", TLParameterType::unknown, 2000000000},
      {"A,I,1,,0", "", TLParameterType::unknown, 0},
      {",I,1,1,0", "", TLParameterType::unknown, 0},
      {"A,1,1,0", "", TLParameterType::unknown, 0},
      {"A", "", TLParameterType::unknown, 0},
      {"", "", TLParameterType::unknown, 0},
  };
  for (const auto& row : rows) {
    const auto parsed = TLDescriptor::parse(row.text);
    EXPECT_EQ(parsed.name, row.name) << row.text;
    EXPECT_EQ(parsed.type, row.type) << row.text;
    EXPECT_EQ(parsed.count, row.count) << row.text;
  }
}

// The definition file -------------------------------------------------------------------------

class SolverDefinition : public testing::Test {
 protected:
  bool read(const std::string& body) {
    TLTextSource source("preamble *\n START_READING_OPERATION rest\n" + body);
    return base_.readDefinition(source);
  }
  Names names(const std::string& body) {
    EXPECT_TRUE(read(body));
    Names found = descriptors(base_);
    std::erase(found, "THEFIL,L,1,1,0");
    return found;
  }

  TLParametersDataBase base_;
};

TEST_F(SolverDefinition, KindsOfParameters) {
  // A named one, two generic ones that are put in order, an unwanted one with its value line, a
  // repeated one, a line of text that nobody keeps, one that is known but not kept, an index list.
  EXPECT_THAT(names("* above\nIROVAR,I,1,1,0\n 1 rest\n"
                    "ZED,I,1,2,0\n1\n2\n"
                    "CMIMEX,I,1,1,0\nALPHA,I,1,1,0\n"
                    "ALPHA,R,1,1,0\n0.5\n"
                    "ALPHA,R,1,2,0\n9 9\n"
                    "TITLE,L,1,1,0\nsome text\n"
                    "ICGNS,I,1,1,0\n1\n"
                    "IQUANT,I,1,3,0\n7 8 9\n"
                    "COOLFL,I,1,1,0\n2\n"
                    // The second size of a named one replaces the first.
                    "IWRSOL,I,1,1,0\n5\n"
                    "IWRSOL,I,1,2,0\n6 7\n"),
              ElementsAre("IWRSOL,I,1,2,0", "IROVAR,I,1,1,0", "COOLFL,I,1,1,0", "IQUANT,I,1,3,0",
                          "ZED,I,1,2,0", "ALPHA,R,1,1,0"));
  EXPECT_THAT(base_.integers("ZED"), ElementsAre(1, 2));
  EXPECT_THAT(base_.reals("ALPHA"), ElementsAre(0.5));
  EXPECT_THAT(base_.integers("COOLFL,I,1,1,0"), ElementsAre(2));
  EXPECT_THAT(base_.integers("IWRSOL"), ElementsAre(6, 7));
  EXPECT_FALSE(base_.has("CMIMEX"));
  EXPECT_FALSE(base_.has("TITLE"));
}

TEST_F(SolverDefinition, ObsoleteOnesAreKeptButNotWritten) {
  EXPECT_THAT(names("*OBSOLETE\n* more\nOLD,I,1,1,0\n4\n* not\n*OBSOLETE\nNEW,I,1,1,0\n5\n"
                    "NONE,R,1,0,0\nLAST,R,1,1,0\n1\n"),
              ElementsAre("NEW,I,1,1,0", "LAST,R,1,1,0"));
  EXPECT_THAT(base_.integers("OLD"), ElementsAre(4));
}

TEST_F(SolverDefinition, FixedSettings) {
  const TVariable directory("VELSTRA_DIR", "/solver");
  read("NQUANT,I,1,2,0\n9 9\n");
  EXPECT_THAT(base_.integers("NQUANT"), ElementsAre(4, 1));
  read("ITURB,I,1,1,0\n2\n");
  EXPECT_THAT(base_.integers("NQUANT"), ElementsAre(5, 1));
  EXPECT_EQ(base_.text("THEFIL"), "/solver/THERMO_VARSK");
}

TEST_F(SolverDefinition, EndOfTheTextInTheMiddle) {
  const std::string text = "* c\nIGAMTE,R,1,9,0\n1 2 3 4\nZED,I,1,3,0\n1 2";
  for (std::size_t length = 0; length <= text.size(); ++length) {
    TLParametersDataBase base;
    TLTextSource source("START_READING_OPERATION\n" + text.substr(0, length));
    EXPECT_TRUE(base.readDefinition(source));
  }
}

// A run file's block --------------------------------------------------------------------------

constexpr const char* kDefinition =
    "START_READING_OPERATION\n"
    "ITURB,I,1,1,0\n0\nNQUANT,I,1,2,0\n4 1\nIROVAR,I,1,1,0\n0\nISVEGL,I,1,1,0\n1\n"
    "ALPHA,I,1,1,0\n1\nBETA,I,1,3,0\n1 2 3\n*OBSOLETE\nGAMMA1,I,1,1,0\n1\nRHO,R,1,2,0\n0.5 1.5\n";

// All tests of this class share one database, the process's.
class SolverBlock : public testing::Test {
 protected:
  SolverBlock() {
    definitions_.write("velstra.def", kDefinition);
    base_ = &TLParametersDataBase::instance();
    TLTextSource source(kDefinition);
    *base_ = TLParametersDataBase();
    base_->readDefinition(source);
  }

  Definitions definitions_;
  TLParametersDataBase* base_;
};

std::string block(const std::vector<std::pair<std::string, std::string>>& items) {
  std::string text = "VELSTRA,L,1,0, " + std::to_string(items.size()) + '\n';
  for (const auto& [descriptor, values] : items) text += descriptor + '\n' + values + '\n';
  return text;
}

TEST_F(SolverBlock, WritesInItsFixedOrder) {
  TLParameters parameters;
  parameters.init();
  parameters.setText("THEFIL,L,1,1,0", "/tables");
  EXPECT_EQ(written(parameters), block({{"ITURB,I,1,1,0", "0"},
                                        {"IROVAR,I,1,1,0", "0"},
                                        {"THEFIL,L,1,1,0", "/tables"},
                                        {"NQUANT,I,1,2,0", "4 1"},
                                        {"IQUANT,I,1,4,0", "1 2 3 4"},
                                        {"ALPHA,I,1,1,0", "1"},
                                        {"BETA,I,1,3,0", "1 2 3"},
                                        {"RHO,R,1,2,0", "0.5 1.5"},
                                        {"ISVEGL,I,1,1,0", "1"}}));
  EXPECT_EQ(rewritten<TLParameters>(written(parameters)), written(parameters));
}

TEST_F(SolverBlock, TakesWhatTheDefinitionKnows) {
  TLParameters parameters;
  EXPECT_EQ(readText(parameters, block({{"IROVAR,I,1,1,0", "7"},
                                        {"IROVAR,I,1,2,0", "8 9"},  // no such named one
                                        {"UNKNOWN,I,1,3,0", "1\n2 3"},
                                        {"TITLE,L,1,1,0", "a b c"},
                                        {"NONSENSE", "word"},
                                        {"OTHER,X,1,3,0", "1 2 3"},  // no such type: skipped
                                        {"THEFIL,L,1,1,0", "  a path  with blanks "},
                                        {"BETA,I,1,2,0", "8 9"},   // smaller: its values only
                                        {"RHO,R,1,3,0", "7 7 7"},  // greater: dropped
                                        {"ALPHA,I,1,1,1", "5"},    // another form: dropped
                                        {"NQUANT,I,1,2,0", "2 1"},
                                        {"IQUANT,I,1,2,0", "11 12"},
                                        {"ISVEGL,I,1,1,0", "3"}}) +
                                     "TL_END solver_parameters\n")
                .result,
            1);
  EXPECT_THAT(parameters.integers("IROVAR"), ElementsAre(7));
  EXPECT_FALSE(parameters.has("UNKNOWN"));
  EXPECT_EQ(parameters.text("THEFIL"), "a path  with blanks ");
  EXPECT_THAT(parameters.integers("BETA"), ElementsAre(8, 9, 3));
  EXPECT_EQ(parameters.descriptorOf("BETA"), "BETA,I,1,3,0");
  EXPECT_THAT(parameters.reals("RHO"), ElementsAre(0.5, 1.5));
  EXPECT_THAT(parameters.integers("ALPHA"), ElementsAre(1));
  EXPECT_THAT(parameters.integers("ISVEGL"), ElementsAre(3));
  EXPECT_NE(written(parameters).find("IQUANT,I,1,2,0\n11 12\n"), std::string::npos);
  EXPECT_THAT(base_->integers("BETA"), ElementsAre(1, 2, 3));
}

TEST_F(SolverBlock, CountsThatLie) {
  TLParameters parameters;
  TLTextSource few("VELSTRA,L,1,0, 1\nIROVAR,I,1,1,0\n7\nISVEGL,I,1,1,0\n9\n");
  EXPECT_EQ(parameters.read(few), 1);
  EXPECT_THAT(parameters.integers("ISVEGL"), ElementsAre(1));
  EXPECT_EQ(few.readLine(), "ISVEGL,I,1,1,0");
  TLTextSource many("VELSTRA,L,1,0, 2000000000\nIROVAR,I,1,1,0\n7\n   TL_END solver_parameters\n");
  EXPECT_EQ(parameters.read(many), 1);
  EXPECT_EQ(many.readLine(), "TL_END solver_parameters");
  for (const char* header : {"", "VELSTRA", "VELSTRA,L,1,0,x", "VELSTRA,L,1,0,-3"}) {
    TLTextSource source(header);
    EXPECT_EQ(parameters.read(source), 1) << header;
  }
}

TEST_F(SolverBlock, SingleValuesAreSet) {
  TLParameters parameters;
  parameters.init();
  parameters.setIntegers("COOLFL,I,1,1,0", {3});
  parameters.setReals("QSAMPY,R,1,1,0", {1.5});  // nobody knows it: a new generic one
  parameters.setIntegers("IMUWAL,I,1,2,0", {4});
  parameters.setIntegers("ALPHA,I,1,1,0", {6});
  parameters.setIntegers("RHO,R,1,2,0", {6});  // of another type: nothing
  EXPECT_THAT(parameters.integers("COOLFL"), ElementsAre(3));
  EXPECT_THAT(parameters.integers("IMUWAL"), ElementsAre(4, 0));
  EXPECT_THAT(parameters.reals("RHO"), ElementsAre(0.5, 1.5));
  EXPECT_THAT(parameters.integers("NOBODY"), ElementsAre());
  const std::string text = written(parameters);
  EXPECT_NE(text.find("QSAMPY,R,1,1,0\n1.5\n"), std::string::npos);
  EXPECT_NE(text.find("ALPHA,I,1,1,0\n6\n"), std::string::npos);
}

// Without the file ----------------------------------------------------------------------------

TEST(SolverDefinitionFile, ProblemNamesFileAndRemedy) {
  const Definitions definitions;
  const std::string path = definitions.directory() + "/velstra.def";
  EXPECT_EQ(TLParametersDataBase::definitionPath(), path);
  EXPECT_EQ(TLParametersDataBase::problem(), "");
  definitions.write("velstra.def", "no marker\n");
  EXPECT_EQ(TLParametersDataBase::problem(),
            path +
                ": holds no line START_READING_OPERATION; put the solver's definition file in "
                "its place");
  const TVariable nowhere("VELSTRA_DIR", "/no/such");
  EXPECT_EQ(TLParametersDataBase::problem(),
            "/no/such/velstra.def: can't be read; set VELSTRA_DIR to the flow solver's directory");
}

// The step stays where it is through a missing file and through a bad one, and goes on with a good
// one.
TEST(SolverDefinitionFile, IsWaitedFor) {
  const TTempDir files;
  const TVariable directory("VELSTRA_DIR", files.path());
  std::ostringstream out;
  const TLConsoleRedirect redirect(out);
  TLParametersDataBase base;
  std::thread writer([&files] {
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    files.write("velstra.def", "nothing yet");
    std::this_thread::sleep_for(std::chrono::milliseconds(1300));
    files.write("next", "START_READING_OPERATION\nALPHA,I,1,1,0\n4\n");
    std::filesystem::rename(files.file("next"), files.file("velstra.def"));
  });
  base.init();
  writer.join();
  EXPECT_THAT(base.integers("ALPHA"), ElementsAre(4));
  EXPECT_EQ(out.str(), "ERROR! ... " + files.file("velstra.def") +
                           "\n The file velstra.def can not be found\n"
                           "      Check the _velstra directory \n"
                           "Waiting for " +
                           files.file("velstra.def") + " with the line START_READING_OPERATION\n");
}

}  // namespace
