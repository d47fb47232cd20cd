#include "textio/TLKeyTable.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

#include "platform/TLConsole.h"

namespace {

using ::testing::ElementsAre;

constexpr char kWrongHeader[] = " wrong thing header: cannot determine thing version";

struct Thing {
  double version = 1.0;
  std::int32_t number = 0;
  std::int32_t toggle = 0;
  RWCString text;
  std::array<double, 3> vector{};
  int inner = 0;
};

TLKeyResult readInner(Thing& thing, TLKeyContext& context) {
  Thing child;
  static const TLKeyTable<Thing> keys("inner", {}, {"inner"});
  ++thing.inner;
  EXPECT_EQ(context.blockName, "inner");
  return nextIf(readBlock(child, context.source, keys));
}

const TLKeyTable<Thing>& thingKeys() {
  using R = TLTokenReader;
  static const TLKeyTable<Thing> keys(
      "thing",
      {
          versionKey<&Thing::version, kWrongHeader>(1, "  VERSION  2.0"),
          valueKey<&Thing::number, &R::readInteger>("number", 3, "  NUMBER   "),
          valueKey<&Thing::toggle, &R::readToggle>("toggle", 2, "  TOGGLE   "),
          valueKey<&Thing::text, &R::readStrings>("text"),
          valueKey<&Thing::vector, &readArray3>("vector", 4, "  VECTOR   "),
          {"tl_begin", "inner", &readInner},
          {"tl_begin", "", &skipBlock<Thing>},
      },
      {"thing", "object"});
  return keys;
}

struct Read {
  Thing thing;
  int result;
  RWCString printed;
  RWCString rest;
};

Read read(std::string text) {
  std::ostringstream out;
  const TLConsoleRedirect redirect(out);
  TLTextSource source(std::move(text));
  Read result;
  result.result = readBlock(result.thing, source, thingKeys());
  result.printed = out.str();
  result.rest = source.readLine();
  return result;
}

TEST(ReadBlock, TakesKnownKeysAndPassesOverAllElse) {
  const auto got = read(
      "# comment\n  Version 9999\n unknown 3\nNUMBER 4\n text a b \nvector 1 2 3\n"
      "TL_BEGIN other\n NUMBER 5\n TL_BEGIN inner\n TL_END inner\nTL_END other\n"
      "tl_begin INNER\nNUMBER 6\nTL_END inner\n"
      "TL_END stranger\nTL_END\n tl_end Object\nbehind\n");
  EXPECT_EQ(got.result, 1);
  EXPECT_EQ(got.thing.version, 9999.0);
  EXPECT_EQ(got.thing.number, 4);
  EXPECT_EQ(got.thing.text, "a b");
  EXPECT_THAT(got.thing.vector, ElementsAre(1, 2, 3));
  EXPECT_EQ(got.thing.inner, 1);
  EXPECT_EQ(got.rest, "behind");
  EXPECT_EQ(got.printed, "");
}

TEST(ReadBlock, TheFirstRowWinsWhereverItsWordStands) {
  EXPECT_EQ(read("text number 7\n").thing.number, 0);
  EXPECT_EQ(read("text number 7\n").thing.text, "");
  EXPECT_EQ(read("x toggle version\n").thing.version, 0.0);
}

TEST(ReadBlock, EndOfTheTextIsAGoodEnd) {
  EXPECT_EQ(read("NUMBER 3").result, 1);
  EXPECT_EQ(read("").result, 1);
  EXPECT_EQ(read("TL_BEGIN inner\nNUMBER 3\n").thing.inner, 1);
}

TEST(ReadBlock, AFailedLineEndsTheRead) {
  const auto header = read(" Version\nNUMBER 3\n");
  EXPECT_EQ(header.result, 0);
  EXPECT_EQ(header.printed, RWCString(kWrongHeader) + "\n");
  EXPECT_EQ(header.thing.number, 0);
  const auto value = read("NUMBER 3\nVECTOR 1 2\ntext a\n");
  EXPECT_EQ(value.result, 0);
  EXPECT_EQ(value.printed, "  wrong format for43:VECTOR 1 2\n");
  EXPECT_EQ(value.thing.number, 3);
  EXPECT_EQ(value.rest, "text a");
}

TEST(ReadBlock, KeepsCommentsWhenAsked) {
  TLTextSource source("#one\nNUMBER 1\n !two\nTL_END thing\n# behind\n");
  Thing thing;
  std::vector<RWCString> comments;
  EXPECT_EQ(readBlock(thing, source, thingKeys(), &comments), 1);
  EXPECT_THAT(comments, ElementsAre("one\n", "two\n"));
}

TEST(KeyTable, WritesInTheOrderOfPlaces) {
  Thing thing;
  thing.version = 7.0;
  thing.number = 12;
  thing.toggle = 1;
  thing.vector = {1.5, 0.0, -2.0};
  TLTextSink sink;
  thingKeys().write(thing, sink);
  EXPECT_EQ(sink.text(), "  VERSION  2.0\n  TOGGLE   yes\n  NUMBER   12\n  VECTOR   1.5 0 -2\n");
  TLTextSink part;
  thingKeys().write(thing, part, 2, 3);
  EXPECT_EQ(part.text(), "  TOGGLE   yes\n  NUMBER   12\n");
}

// Lines that repeat known words, or hold very many of them, are matched like any other.
TEST(KeyTable, MatchesLinesFullOfWords) {
  RWCString repeated;
  for (int i = 0; i < 200; ++i) repeated += "text tl_begin ";
  EXPECT_EQ(thingKeys().match(repeated + "version")->word, "version");
  EXPECT_EQ(thingKeys().match(repeated + "inner")->word, "text");
  EXPECT_EQ(thingKeys().match("a b c"), nullptr);

  std::vector<RWCString> names;
  for (int i = 0; i < 100; ++i) names.push_back("k" + std::to_string(i));
  std::vector<TLKey<Thing>> rows;
  for (const auto& name : names) rows.push_back({name, "", &endBlock<Thing>});
  RWCString all;
  for (int i = 99; i >= 0; --i) all += names[i] + ' ';
  const TLKeyTable<Thing> wide("wide", rows);
  EXPECT_EQ(wide.match(all)->word, "k0");
}

}  // namespace
