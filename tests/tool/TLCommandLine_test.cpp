// The whole command line, as its own parser knows it: what holds for one command holds for all.
#include "tool/TLCommandLine.h"

#include <gmock/gmock.h>

#include <fstream>
#include <sstream>

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::SizeIs;
using testing::StartsWith;

struct Said {
  std::optional<int> code;  ///< none: the words are right
  std::string out;
  std::string err;
};

Said parse(TLCommandLine& line, const std::vector<std::string>& words) {
  std::vector<const char*> argv{"tlctl"};
  for (const auto& word : words) argv.push_back(word.c_str());
  testing::internal::CaptureStdout();
  testing::internal::CaptureStderr();
  Said said;
  said.code = line.parse(static_cast<int>(argv.size()), argv.data());
  said.out = testing::internal::GetCapturedStdout();
  said.err = testing::internal::GetCapturedStderr();
  return said;
}

std::vector<std::string> wordsOf(std::string_view line) {
  std::istringstream in{std::string(line.substr(0, line.find_first_of("&>|")))};
  std::vector<std::string> words;
  for (std::string word; in >> word;) words.push_back(word);
  words.erase(words.begin());  // "tlctl"
  return words;
}

std::string documentText() {
  std::ifstream file(TL_TLCTL_DOCUMENT);
  std::ostringstream text;
  text << file.rdbuf();
  return text.str();
}

// With the last letter but one left out: near enough to be recognised.
std::string mistyped(std::string word) {
  return word.erase(word.size() - 2, 1);
}

TEST(CommandLine, EveryCommandLeadsWithTwoExamplesThatAreRight) {
  TLCommandLine line;
  const std::string document = documentText();
  for (const auto& command : line.commands()) {
    SCOPED_TRACE(command.name);
    const std::string name(command.name);
    EXPECT_THAT(command.examples, SizeIs(testing::Ge(2U)));
    const Said help = parse(line, {name, "--help"});
    EXPECT_EQ(help.code, 0);
    EXPECT_THAT(help.out, StartsWith("Examples:\n  tlctl " + name));
    for (const auto example : command.examples) {
      EXPECT_EQ(parse(line, wordsOf(example)).code, std::nullopt) << example;
    }
    EXPECT_THAT(document, HasSubstr("\n### " + name + "\n"));
    EXPECT_THAT(parse(line, {mistyped(name)}).err, HasSubstr("was \"" + name + "\" meant?"));
  }
  EXPECT_THAT(parse(line, {"rewrite", "tsak", "a", "b"}).err, HasSubstr("was \"task\" meant by"));
  EXPECT_THAT(parse(line, {"--help"}).out, StartsWith("Examples:\n"));
}

TEST(CommandLine, EveryOptionIsExplainedAndFoundDespiteATypingError) {
  TLCommandLine line;
  for (const auto* sub : line.app().get_subcommands({})) {
    SCOPED_TRACE(sub->get_name());
    EXPECT_NE(sub->get_option_no_throw("--json"), nullptr);
    for (const auto* option : sub->get_options()) {
      SCOPED_TRACE(option->get_name());
      EXPECT_FALSE(option->get_description().empty());
      for (const auto& name : option->get_lnames()) {
        const Said said = parse(line, {sub->get_name(), "--" + mistyped(name)});
        if (!said.code) continue;  // takes any words, and looks at them when it runs
        EXPECT_EQ(said.code, 2);
        EXPECT_EQ(said.out, "");
        EXPECT_THAT(said.err, HasSubstr("tlctl " + sub->get_name() + ": "));
        EXPECT_THAT(said.err, HasSubstr("was \"--" + name + "\" meant by"));
        EXPECT_THAT(said.err, HasSubstr("See \"tlctl " + sub->get_name() + " --help\"."));
      }
    }
  }
}

}  // namespace
