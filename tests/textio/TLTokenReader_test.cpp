#include "textio/TLTokenReader.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <sstream>

#include "platform/TLConsole.h"

namespace {

using ::testing::ElementsAre;
using R = TLTokenReader;

class TokenReader : public testing::Test {
 protected:
  RWCString printed() { return std::exchange(out_, std::ostringstream()).str(); }

  std::ostringstream out_;
  TLConsoleRedirect redirect_{out_};
  TLTokenReader reader_;
};

// Fixed forms: what is printed and kept when a line is too short ------------------------------

struct Failure {
  std::function<int(R&, std::string_view)> read;
  const char* line;
  const char* printed;
  const char* expected;
};

std::int32_t gInt[8];
double gReal[8];
float gFloat[8];
RWCString gText[2];
std::vector<RWCString> gTexts;
double gPair[2][3];

const Failure kFailures[] = {
    {[](R& r, auto l) { return r.readToggle(l, gInt[0]); }, "KEY", "KEY wrong format\n",
     "expected: KEY togglevalue (yes or no)"},
    {[](R& r, auto l) { return r.readInteger(l, gInt[0]); }, "KEY", "  wrong format for4: KEY\n",
     "expected: KEY <integer value> "},
    {[](R& r, auto l) { return r.readIntegers2(l, gInt[0], gInt[1]); }, "KEY 1",
     "  wrong format for4: KEY 1\n", "expected: KEY <integer value>  <integer value> "},
    {[](R& r, auto l) { return r.readIntegers3(l, gInt[0], gInt[1], gInt[2]); }, "KEY 1 2",
     "  wrong format for8: KEY 1 2\n",
     "expected: KEY <integer value> <integer value> <integer value>"},
    {[](R& r, auto l) { return r.readIntegerPair(l, gInt[0], gInt[1]); }, "KEY 1",
     "  wrong format for9: KEY 1\n",
     "expected: KEY <integer value> <integer value> <integer value>"},
    {[](R& r, auto l) { return r.readIntegerReal(l, gInt[0], gReal[0]); }, "KEY 1",
     "  wrong format for9: KEY 1\n", "expected: KEY <integer value>  <double value> "},
    {[](R& r, auto l) { return r.readFloats4(l, gFloat[0], gFloat[1], gFloat[2], gFloat[3]); },
     "KEY 1 2 3", "  wrong format for13: KEY 1 2 3\n",
     "expected: KEY <float value>  <float value>  <float value> <float value>"},
    {[](R& r, auto l) { return r.readIntegers2Real(l, gInt[0], gInt[1], gReal[0]); }, "KEY 1 2",
     "  wrong format for14: KEY 1 2\n", "expected: KEY <integer value>  <integer value> "},
    {[](R& r, auto l) { return r.readStrings(l, gText[0]); }, " \t", "  wrong format for15:  \t\n",
     "expected:  <strings> "},
    {[](R& r, auto l) { return r.readString(l, gText[0]); }, "KEY", "  wrong format for16: KEY\n",
     "expected: KEY <string> "},
    {[](R& r, auto l) { return r.readStringInteger(l, gText[0], gInt[0]); }, "KEY a",
     "  wrong format for19: KEY a\n", "expected: KEY <string> <integer>"},
    {[](R& r, auto l) { return r.readNameInteger(l, gText[0], gInt[0]); }, "KEY",
     "  wrong format for21: KEY\n", "expected: KEY <string> <integer>"},
    {[](R& r, auto l) { return r.readNameReal(l, gText[0], gReal[0]); }, "KEY",
     "  wrong format for23: KEY\n", "expected: KEY <string> <integer>"},
    {[](R& r, auto l) { return r.readIntegerName(l, gInt[0], gText[0]); }, "KEY",
     "  wrong format for25: KEY\n", "expected: KEY <string> <integer>"},
    {[](R& r, auto l) { return r.readStringName(l, gText[0], gText[1]); }, "KEY",
     "  wrong format for27: KEY\n", "expected: KEY <string> <integer>"},
    {[](R& r, auto l) { return r.readStringPair(l, gText[0], gText[1]); }, "KEY a",
     "  wrong format for29: KEY a\n", "expected: KEY <string> <string>"},
    {[](R& r, auto l) { return r.readNameVector(l, gText[0], gReal[0], gReal[1], gReal[2]); },
     "KEY a", "  wrong format for32: KEY a\n", "expected: KEY <string> <float> <float> <float>"},
    {[](R& r, auto l) { return r.readNameIndices(l, gText[0], gInt[0], gInt[1], gInt[2]); },
     "KEY a", "  wrong format for34: KEY a\n",
     "expected: KEY <string> <integer> <integer> <integer>"},
    {[](R& r, auto l) { return r.readReal(l, gReal[0]); }, "KEY", "  wrong format for36: KEY\n",
     "expected: KEY <float>"},
    {[](R& r, auto l) { return r.readIntegerArray(l, 3, gInt); }, "KEY 7 8",
     "  wrong format for37: KEY 7 8\n", "expected: KEY 3 * <float>"},
    {[](R& r, auto l) { return r.readRealArray(l, 3, gReal); }, "KEY 7 8",
     "  wrong format for39: KEY 7 8\n", "expected: KEY 3 * <float>"},
    {[](R& r, auto l) { return r.readFloatArray(l, 3, gFloat); }, "KEY 7 8",
     "  wrong format for40: KEY 7 8\n", "expected: KEY 3 * <float>"},
    {[](R& r, auto l) { return r.readVector3(l, gReal[0], gReal[1], gReal[2]); }, "KEY 1 2",
     "  wrong format for43:KEY 1 2\n", "expected: KEY <float> <float> <float>"},
    {[](R& r, auto l) { return r.readVector3Pair(l, gPair[0], gPair[1]); }, "KEY 1 2 3 4 5",
     "  wrong format for44:KEY 1 2 3 4 5\n", "expected: KEY <float> <float> <float>"},
    {[](R& r, auto l) { return r.readQuotedStrings(gTexts, 2, l); }, "KEY 'a b' c",
     "wrong format for 'KEY 'a b' c': missing starting single quote for value #2\n",
     "expected: KEY 'a b' '...."},
    {[](R& r, auto l) { return r.readQuotedStrings(gTexts, 2, l); }, "KEY 'a' 'b",
     "wrong format for 'KEY 'a' 'b': missing ending single quote for value #2\n",
     "expected: KEY 'a' 'b' ...."},
};

TEST(TokenReaderFailure, IsToldAndRemembered) {
  for (const Failure& row : kFailures) {
    SCOPED_TRACE(row.printed);
    std::ostringstream out;
    const TLConsoleRedirect redirect(out);
    TLTokenReader reader;
    EXPECT_EQ(row.read(reader, row.line), 0);
    EXPECT_EQ(out.str(), row.printed);
    EXPECT_EQ(reader.errorLine(), "line0: wrong format");
    EXPECT_EQ(reader.errorRead(), RWCString("read:     ") + row.line);
    EXPECT_EQ(reader.errorExpected(), row.expected);
    EXPECT_EQ(reader.good(), 0);
  }
}

// Values -------------------------------------------------------------------------------------

TEST_F(TokenReader, TakesLeadingDigitsAndNothingElse) {
  std::int32_t value = -1;
  EXPECT_EQ(reader_.readInteger("KEY 12abc more", value), 1);
  EXPECT_EQ(value, 12);
  EXPECT_EQ(reader_.readInteger("KEY\tabc", value), 1);
  EXPECT_EQ(value, 0);
  double real = -1.0;
  EXPECT_EQ(reader_.readReal("  KEY -1.5e2x", real), 1);
  EXPECT_EQ(real, -150.0);
  EXPECT_EQ(printed(), "");
}

TEST_F(TokenReader, ToggleIsTrueForTwoSpellingsOnly) {
  for (const auto& [word, expected] :
       {std::pair{"yes", 1}, {"YES", 1}, {"Yes", 0}, {"no", 0}, {"1", 0}}) {
    std::int32_t value = -1;
    EXPECT_EQ(reader_.readToggle(RWCString("KEY ") + word, value), 1);
    EXPECT_EQ(value, expected) << word;
  }
  TLTextSink sink;
  for (const int value : {1, 2, 0}) TLTokenReader::writeToggle(sink, value, "  KEY  ");
  EXPECT_EQ(sink.text(), "  KEY  yes\n  KEY  no\n  KEY  no\n");
}

TEST_F(TokenReader, StringsKeepTheirInnerBlanks) {
  RWCString text = "kept";
  EXPECT_EQ(reader_.readStrings("KEY \t two  words \t ", text), 1);
  EXPECT_EQ(text, "two  words");
  EXPECT_EQ(reader_.readStrings("KEY", text), 1);
  EXPECT_EQ(text, "");
  EXPECT_EQ(reader_.readString("KEY first second", text), 1);
  EXPECT_EQ(text, "first");
}

// The usual lines of these forms are read by the entries of the records.
TEST_F(TokenReader, NamesOfSeveralWords) {
  RWCString name;
  RWCString text;
  std::int32_t i = 0;
  std::array<std::int32_t, 3> indices{};
  std::array<double, 3> x{};
  EXPECT_EQ(reader_.readNameInteger("KEY a  b\tc 7", name, i), 1);
  EXPECT_EQ(name, "a b c");
  EXPECT_EQ(reader_.readNameInteger("KEY 5", name, i), 1);
  EXPECT_EQ(name, "5");
  EXPECT_EQ(i, 5);
  EXPECT_EQ(reader_.readIntegerName("KEY 3 a  b", i, name), 1);
  EXPECT_EQ(i, 3);
  EXPECT_EQ(name, "a b");
  EXPECT_EQ(reader_.readStringName("KEY word", text, name), 1);
  EXPECT_EQ(text, "word");
  EXPECT_EQ(name, "");
  // Too few numbers: the last three tokens are taken, whatever they are.
  EXPECT_EQ(reader_.readNameVector("KEY a 2", name, x[0], x[1], x[2]), 1);
  EXPECT_EQ(name, "a");
  EXPECT_THAT(x, ElementsAre(0, 0, 2));
  RWCString longLine = "KEY";
  for (int word = 1; word < 99; ++word) longLine += " " + std::to_string(word);
  EXPECT_EQ(reader_.readNameIndices(longLine, name, indices[0], indices[1], indices[2]), 1);
  EXPECT_THAT(indices, ElementsAre(96, 97, 98));
}

TEST_F(TokenReader, QuotedStrings) {
  std::vector<RWCString> texts;
  EXPECT_EQ(reader_.readQuotedStrings(texts, 1, "  KEY  'a b'  "), 1);
  EXPECT_THAT(texts, ElementsAre("a b"));
  EXPECT_EQ(reader_.readQuotedStrings(texts, 1, "KEY bare  words "), 1);
  EXPECT_THAT(texts, ElementsAre("bare  words"));
  EXPECT_EQ(reader_.readQuotedStrings(texts, 1, "KEY '"), 1);
  EXPECT_THAT(texts, ElementsAre("'"));
  EXPECT_EQ(reader_.readQuotedStrings(texts, 2, "KEY 'a''' rest"), 1);
  EXPECT_THAT(texts, ElementsAre("a", ""));
  EXPECT_EQ(reader_.readQuotedStrings(texts, 0, "KEY"), 1);
  texts.clear();
  EXPECT_EQ(reader_.readQuotedStrings(texts, 2, "KEY 'kept' bare"), 0);
  EXPECT_THAT(texts, ElementsAre("kept"));
}

TEST_F(TokenReader, ArraysKeepWhatWasReadBeforeAFailure) {
  std::int32_t values[3] = {-1, -1, -1};
  EXPECT_EQ(reader_.readIntegerArray("KEY 7 8", 3, values), 0);
  EXPECT_THAT(values, ElementsAre(7, 8, -1));
  EXPECT_EQ(reader_.readIntegerArray("", 0, values), 1);
  EXPECT_EQ(reader_.readIntegers2("KEY 1", values[2], values[1]), 0);  // all or none
  EXPECT_EQ(values[2], -1);
}

TEST_F(TokenReader, CountedRealsAppendOrEmpty) {
  std::vector<double> list = {9.0};
  EXPECT_EQ(reader_.readCountedReals("KEY 2 1 2 3", list), 1);
  EXPECT_THAT(list, ElementsAre(9, 1, 2));
  EXPECT_EQ(reader_.readCountedReals("KEY", list), 1);
  EXPECT_EQ(list.size(), 3U);
  EXPECT_EQ(reader_.readCountedReals("KEY 3 1 2", list), 0);
  EXPECT_TRUE(list.empty());
  EXPECT_EQ(printed(), "");
  EXPECT_EQ(reader_.good(), 1);
}

// Key tests ----------------------------------------------------------------------------------

TEST_F(TokenReader, KeysStandAnywhereInAnyCase) {
  EXPECT_TRUE(R::lineHasToken("  one\tTWO", "two"));
  EXPECT_FALSE(R::lineHasToken("one two", "on"));
  EXPECT_FALSE(R::lineHasToken("one\rtwo", "one"));
  EXPECT_EQ(R::countTokens(" a\t\tb c\n"), 3);
  EXPECT_TRUE(R::sameTokens("a  b", "\ta b "));
  EXPECT_FALSE(R::sameTokens("a B", "a b"));
  EXPECT_FALSE(R::sameTokens("a b", "a b c"));
}

TEST_F(TokenReader, FastTokensNeedTheirLine) {
  EXPECT_FALSE(reader_.isFastToken("a"));
  EXPECT_EQ(printed(), "Error  'initFastToken' not called\n");
  reader_.initFastToken("KEY other");
  EXPECT_TRUE(reader_.isFastToken("key"));
  reader_.initFastToken("next");
  EXPECT_FALSE(reader_.isFastToken("key"));
  EXPECT_EQ(printed(), "");
}

// The stream ---------------------------------------------------------------------------------

TEST_F(TokenReader, SkipsCommentsAndKeepsThemWhenAsked) {
  TLTextSource source(" \n# one\n  !two\n\n*three\n  data # no comment\n#last");
  TLTokenReader reader(source);
  std::vector<RWCString> comments;
  reader.readComments(comments);
  EXPECT_THAT(comments, ElementsAre(" one\n", "two\n", "three\n"));
  EXPECT_EQ(source.readLine(), "data # no comment");
  RWCString comment = "old";
  reader.readComment(comment);
  EXPECT_EQ(comment, "last");
  EXPECT_TRUE(source.atEnd());
  reader.skipComments();
  EXPECT_EQ(reader.isCommentStart(), 0);
}

TEST_F(TokenReader, ABlockEndsAtAnyLineWithItsNameInSecondPlace) {
  TLTextSource source(
      "tl_begin inner\n x\n tl_end inner\nVALUE FOO\n between\nTL_END foo\nbehind\n");
  TLTokenReader reader(source);
  EXPECT_EQ(reader.skipToBlockEnd("TL_BEGIN foo"), 1);
  EXPECT_EQ(source.readLine(), "between");
  EXPECT_EQ(reader.skipToBlockEnd("TL_BEGIN foo"), 1);
  EXPECT_EQ(source.readLine(), "behind");
  EXPECT_EQ(reader.skipToBlockEnd("TL_BEGIN"), 0);
  const std::pair<const char*, int> ends[] = {{"one line\n  \n", 0},
                                              {"one line\n", 0},
                                              {"", 0},
                                              {"one line", 1},
                                              {"a line\nTL_END FOO", 1}};
  for (const auto& [text, result] : ends) {
    TLTextSource open(text);
    EXPECT_EQ(TLTokenReader(open).skipToBlockEnd("TL_BEGIN foo"), result) << text;
  }
}

}  // namespace
