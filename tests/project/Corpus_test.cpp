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

// A faulty line in any record: "blocks one in the other|line|what is said". The blocks stand in a
// computation, with "^" in the project itself.
TEST_F(Corpus, BadLinesAreRefusedWithTheirReason) {
  std::istringstream rows(fileText(TL_PROJECT_CORPUS "/bad/lines.txt"));
  int count = 0;
  for (std::string blocks; std::getline(rows, blocks, '|'); ++count) {
    std::string line;
    std::string said;
    std::getline(std::getline(rows, line, '|'), said);
    const bool outside = blocks.starts_with('^');
    std::string lines = outside ? "TALVEN_PROJECT_FILE VERSION 1210\n" : "";
    std::istringstream words(blocks.substr(outside ? 1 : 0));
    for (std::string block; words >> block;) lines += "TL_BEGIN " + block + '\n';
    for (auto at = line.find("; "); at != line.npos; at = line.find("; "))
      line.replace(at, 2, "\n");
    lines += line + '\n';
    const ReadProject read(outside ? lines : projectText(lines));
    EXPECT_EQ(read.result, 0) << blocks << ": " << line;
    EXPECT_EQ(read.console, said.empty() ? "" : said + '\n') << blocks;
    EXPECT_TRUE(read->computations.empty());
  }
  EXPECT_GE(count, 50);
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
