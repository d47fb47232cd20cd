#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <vector>

#include "project/ProjectText.h"
#include "support/Definitions.h"

namespace {

std::string fileText(const std::filesystem::path& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

std::vector<std::filesystem::path> filesIn(const std::string& folder) {
  std::vector<std::filesystem::path> files;
  for (const auto& entry : std::filesystem::directory_iterator(TL_PROJECT_CORPUS "/" + folder)) {
    if (entry.path().extension() == ".run") files.push_back(entry.path());
  }
  return files;
}

// Whatever a text holds, what is written of it reads back and is written again the same.
void expectSettles(const std::string& text) {
  const ReadProject first(text);
  if (first.result != 1) return;
  const std::string once = first.written();
  const ReadProject second(once);
  ASSERT_EQ(second.result, 1) << second.console << "\nof\n" << text;
  const ReadProject third(second.written());
  ASSERT_EQ(third.result, 1);
  EXPECT_TRUE(third.written() == second.written()) << "of\n" << text;
}

class Corpus : public testing::Test {
 protected:
  Definitions definitions_;
};

TEST_F(Corpus, GoodFilesComeBackByteForByte) {
  const auto files = filesIn("good");
  ASSERT_GE(files.size(), 2U);
  for (const auto& file : files) {
    const std::string text = fileText(file);
    const ReadProject read(text);
    ASSERT_EQ(read.result, 1) << file;
    EXPECT_EQ(read.written(), text) << file;
  }
}

TEST_F(Corpus, BadFilesAreRefusedWithTheirReason) {
  const auto files = filesIn("bad");
  ASSERT_GE(files.size(), 25U);
  for (auto file : files) {
    const ReadProject read(fileText(file));
    EXPECT_EQ(read.result, 0) << file;
    EXPECT_EQ(read.console, fileText(file.replace_extension(".console"))) << file;
  }
}

// A faulty line in any record below the computation ends the read.
TEST_F(Corpus, BadLinesAreRefusedWithTheirReason) {
  const struct {
    std::string blocks;  // opened one in the other
    const char* line;
    const char* console;
  } cases[] = {
      {"", "RUNNING_MODE", " wrong running mode : cannot determine running mode"},
      {"", "POINTER", "  wrong format for36: POINTER"},
      {"", "AXISYMMETRIC", "AXISYMMETRIC wrong format"},
      {"", "NAME", "  wrong format for16: NAME"},
      {"acoustic_data", "VERSION", " wrong TLAcoustic header: cannot determine TLAcoustic version"},
      {"non_deterministic_computation", "VERSION",
       " wrong computation header: cannot determine computation version"},
      {"fluid_parameters", "FLUID_OWNER", "  wrong format for16: FLUID_OWNER"},
      {"fluid_parameters", "baro_law_choice", "  wrong format for4: baro_law_choice"},
      {"fluid_parameters fluid_properties", "PRANDTL", "  wrong format for36: PRANDTL"},
      {"bc_parameters", "LOCAL_MOMENT_CENTER 1", "  wrong format for43:LOCAL_MOMENT_CENTER 1"},
      {"bc_parameters", "REAL_ENTRY", "  wrong format for23: REAL_ENTRY"},
      {"grid_bc", "gridunit", "  wrong format for36: gridunit"},
      {"grid_bc initial_solution_turbo", "version",
       " wrong TLInitSolTurbo entry header: cannot determine TLInitSolTurbo entry version"},
      {"grid_bc fnmb_connection", "version",
       " TLFNMB: wrong bc header: cannot determine bc version"},
      {"grid_bc fnmb_connection", "left_face: a 1 2", "wrong TLFNMBPatches format"},
      {"grid_bc fnmb_connection", "side:", "  wrong format for4: side:"},
      {"grid_bc fnmb_connection", "tolerance:", "  wrong format for36: tolerance:"},
      {"grid_bc blade_definition", "version",
       " wrong face header: cannot determine topological_blade version"},
      {"grid_bc block", "spanwise_direction", " wrong Direction: cannot determine block Direction"},
      {"grid_bc block", "initial_velocity_fitting",
       " wrong VelocityFitting: cannot determine block VelocityFitting"},
      {"grid_bc block", "initial_pressure_field",
       " wrong PressureField: cannot determine block PressureField"},
      {"grid_bc block", "skewness_values 1 2", "  wrong format for43:skewness_values 1 2"},
      {"grid_bc block", "average_toggle", "average_toggle wrong format"},
      {"grid_bc block hexa_partition", "version",
       " wrong block header: cannot determine block version"},
      {"grid_bc block face", "version", " wrong face header: cannot determine face version"},
      {"grid_bc block face", "index", "  wrong format for4: index"},
      {"grid_bc block face boundary_condition", "version",
       " wrong bc header: cannot determine bc version"},
      {"grid_bc block face boundary_condition", "type", "  wrong format for16: type"},
      {"grid_bc block face boundary_condition", "coupling_type",
       "  wrong format for4: coupling_type"},
      {"grid_bc block face boundary_condition bc_parameters", "version",
       " wrong bc parameters header: cannot determine bc parameters version"},
  };
  for (const auto& test : cases) {
    std::string lines;
    std::istringstream blocks(test.blocks);
    for (std::string block; blocks >> block;) lines += "TL_BEGIN " + block + '\n';
    const ReadProject read(projectText(lines + test.line + '\n'));
    EXPECT_EQ(read.result, 0) << test.blocks << ": " << test.line;
    EXPECT_EQ(read.console, std::string(test.console) + '\n') << test.blocks;
    EXPECT_TRUE(read->computations.empty());
  }
}

TEST_F(Corpus, AFileCutBehindAnyLineReadsAndSettles) {
  for (const auto& file : filesIn("good")) {
    const std::string text = fileText(file);
    int line = 0;
    for (auto end = text.find('\n'); end != std::string::npos; end = text.find('\n', end + 1)) {
      const std::string cut = text.substr(0, end + 1);
      const ReadProject read(cut);
      ASSERT_EQ(read.result, 1) << file << " behind line " << line + 1;
      if (++line % 16 == 0) expectSettles(cut);
    }
  }
}

TEST_F(Corpus, FilesWithFlippedBytesNeitherHangNorCrash) {
  std::mt19937 random(7);
  for (const auto& file : filesIn("good")) {
    const std::string text = fileText(file);
    for (int i = 0; i < 60; ++i) {
      std::string broken = text;
      for (int flips = 1 + i % 8; flips > 0; --flips) {
        broken[random() % broken.size()] ^= static_cast<char>(1U << random() % 8);
      }
      expectSettles(broken);
    }
  }
}

}  // namespace
