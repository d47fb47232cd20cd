#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "project/ProjectText.h"
#include "support/Definitions.h"

namespace {

std::string squeezed(const std::string& line) {
  std::istringstream in(line);
  std::string all;
  for (std::string word; in >> word;) all += (all.empty() ? "" : " ") + word;
  return all;
}

std::vector<std::string> linesOf(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream in(text);
  for (std::string line; std::getline(in, line);) lines.push_back(squeezed(line));
  return lines;
}

/// Plays the files of cases/: the lines of a computation, or from its header on of a whole project,
/// that are read, and what is then written. "; " parts lines, too; "= title TYPE" begins a case of
/// this type of project. Behind the lines of a case:
///     > line    stands in what is written, behind the one before (blanks don't count)
///     < line    the same, looked for from the beginning
///     ! text    is in no line of it
///     ? line    is said on the console; without a line: nothing is
///     ~ a|b     puts b in the place of the line a, for what follows
/// "$" is the directory of the definition files.
class Case {
 public:
  explicit Case(std::string type) : type_(std::move(type)) {}

  void take(const std::string& line, const std::string& directory) {
    std::string text = line;
    for (auto at = text.find('$'); at != std::string::npos; at = text.find('$')) {
      text.replace(at, 1, directory);
    }
    if (std::string("><!?~").find(text.front()) == std::string::npos) {
      input_ += text + '\n';
    } else if (text.front() == '~') {
      const auto bar = text.find('|');
      const std::string from = text.substr(2, bar - 2) + '\n';
      ASSERT_NE(input_.find(from), std::string::npos) << text;
      input_.replace(input_.find(from), from.size(), text.substr(bar + 1) + '\n');
      read_ = false;
    } else {
      if (!read_) read();
      check(text.front(), squeezed(text.substr(1)), text);
    }
  }

 private:
  void read() {
    std::string lines = input_;
    for (auto at = lines.find("; "); at != std::string::npos; at = lines.find("; ")) {
      lines.replace(at, 2, "\n");
    }
    const bool whole = lines.starts_with("TALVEN_PROJECT_FILE");
    const ReadProject project(whole ? lines : projectText(lines, type_));
    EXPECT_EQ(project.result, 1) << input_ << project.console;
    std::ostringstream heard;
    const TLConsoleRedirect redirect(heard);
    TLTextSink sink;
    project->write(sink);
    written_ = linesOf(sink.take());
    console_ = linesOf(project.console + heard.str());
    at_ = 0;
    read_ = true;
  }
  void check(char mark, const std::string& wanted, const std::string& line) {
    if (mark == '?') {
      const auto found = std::find(console_.begin(), console_.end(), wanted);
      EXPECT_TRUE(wanted.empty() ? console_.empty() : found != console_.end()) << line;
    } else if (mark == '!') {
      for (const auto& one : written_) EXPECT_EQ(one.find(wanted), std::string::npos) << line;
    } else {
      if (mark == '<') at_ = 0;
      const auto found = std::find(written_.begin() + at_, written_.end(), wanted);
      EXPECT_TRUE(found != written_.end()) << line << "\nof\n" << input_;
      if (found != written_.end()) at_ = found - written_.begin() + 1;
    }
  }

  std::string type_;
  std::string input_;
  bool read_ = false;
  std::vector<std::string> written_;
  std::vector<std::string> console_;
  long at_ = 0;
};

TEST(ProjectCases, BecomeWhatTheyShould) {
  const Definitions definitions;
  int count = 0;
  for (const auto& file : std::filesystem::directory_iterator(TL_PROJECT_CORPUS "/cases")) {
    std::ifstream in(file.path());
    Case current("");
    std::string title;
    for (std::string line; std::getline(in, line);) {
      if (line.starts_with("= ")) {
        const auto type = line.find_last_of(' ') + 1;
        current = Case(line.substr(type));
        title = line;
        ++count;
      } else if (!line.empty()) {
        SCOPED_TRACE(title);
        current.take(line, definitions.directory());
      }
    }
  }
  EXPECT_GE(count, 40);
}

}  // namespace
