#include "textio/TLKeyTable.h"

#include <gtest/gtest.h>

namespace {

// What a table reads and writes is seen on each of the records. Here: lines that repeat known words
// or hold very many of them are matched like any other.
TEST(KeyTable, MatchesLinesFullOfWords) {
  struct Thing {};
  const TLKeyTable<Thing> few("few", {{"text", "", &endBlock<Thing>},
                                      {"version", "", &endBlock<Thing>},
                                      {"tl_begin", "inner", &endBlock<Thing>},
                                      {"tl_begin", "", &endBlock<Thing>}});
  RWCString repeated;
  for (int i = 0; i < 200; ++i) repeated += "tl_begin ";
  EXPECT_EQ(few.match(repeated + "version")->word, "version");
  EXPECT_EQ(few.match(repeated + "version text")->word, "text");
  EXPECT_EQ(few.match(repeated + "INNER")->secondWord, "inner");
  EXPECT_EQ(few.match(repeated + "other")->secondWord, "");
  EXPECT_EQ(few.match("a b c"), nullptr);

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
