#include "textio/TLTextSource.h"

#include <gtest/gtest.h>

namespace {

TEST(TextSource, HandsOutLinesAndWords) {
  TLTextSource source("\r\n  one \r\n\ntwo words\nlast");
  EXPECT_EQ(source.readLine(), "one \r");
  EXPECT_EQ(source.readWord(), "two");
  std::string_view rest;
  EXPECT_TRUE(source.readRawLine(rest));
  EXPECT_EQ(rest, " words");
  EXPECT_EQ(source.readLine(), "last");
  EXPECT_TRUE(source.atEnd());
  EXPECT_EQ(source.readLine(), "");
  EXPECT_EQ(source.readWord(), "");
  EXPECT_FALSE(source.readRawLine(rest));
  EXPECT_EQ(source.get(), -1);
}

TEST(TextSource, KnowsWhereAPartStands) {
  TLTextSource source("first\n  second part\nthird\n");
  source.readLine();
  const std::string_view second = source.readLine();
  const std::string_view word = second.substr(7);
  EXPECT_EQ(source.lineNumber(word), 2U);
  EXPECT_EQ(source.wholeLine(word), "  second part");
  EXPECT_EQ(source.lineNumber(source.readLine()), 3U);
  const std::string foreign = "second part";
  EXPECT_EQ(source.lineNumber(foreign), 0U);
  EXPECT_EQ(source.wholeLine(foreign), "");
}

}  // namespace
