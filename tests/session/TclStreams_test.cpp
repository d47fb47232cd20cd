#include <gtest/gtest.h>

#include <functional>
#include <sstream>

#include "session/TclArgStream.h"
#include "session/TclResultStream.h"

namespace {

TEST(TclResultStream, formsTheListSyntaxOfTheScript) {
  const std::pair<const char*, std::function<void(ResultStream&)>> cases[] = {
      {"", [](ResultStream&) {}},
      {"yes", [](ResultStream& r) { r.write("yes"); }},
      {"first {second} ", [](ResultStream& r) { r.write("first"), r.write("second"); }},
      {"-1 -1", [](ResultStream& r) { r.write(-1), r.write(std::int32_t{-1}); }},
      {"1 {a}  2", [](ResultStream& r) { r.write(1), r.write("a"), r.write(2); }},
      {"1 2 3",
       [](ResultStream& r) { r.beginList(), r.write(1), r.write(2), r.write(3), r.endList(); }},
      {" {a}  {b} ",
       [](ResultStream& r) { r.beginList(), r.write("a"), r.write("b"), r.endList(); }},
      {"7 { 1 2 }  3",
       [](ResultStream& r) {
         r.write(7), r.beginList(), r.write(1), r.write(2), r.endList(), r.write(3);
       }},
      {" { 1 }  { { 2 }  } ",
       [](ResultStream& r) {
         r.beginList();
         r.beginList(), r.write(1), r.endList();
         r.beginList(), r.beginList(), r.write(2), r.endList(), r.endList();
         r.endList();
       }},
      {"3.14159265358979", [](ResultStream& r) { r.write(3.14159265358979312); }},
      {"x y", [](ResultStream& r) { r.write('x'), r.write('y'); }},
      {"ab", [](ResultStream& r) { r.writeRaw("a"), r.writeRaw("b"); }},
      {"1why", [](ResultStream& r) { r.write(1), r.setCode(3, "why"); }},
  };
  for (const auto& [expected, write] : cases) {
    std::ostringstream out;
    TclResultStream result(&out);
    write(result);
    EXPECT_EQ(out.str(), expected);
  }
  std::ostringstream out;
  TclResultStream result(&out);
  EXPECT_EQ(result.code(), 0);
  result.setCode(16, nullptr);
  EXPECT_EQ(result.code(), 1);
  result.setCode(4, nullptr);
  EXPECT_EQ(result.code(), 4);
  EXPECT_EQ(out.str(), "");
}

TEST(TclArgStream, readsTypedWordsInOrder) {
  const char* words[] = {"12", " -7 ", "9x", "1.5", "c", "{a b}", "1 2 three", ""};
  TclArgStream in(8, words);
  std::int32_t first = 0;
  std::int64_t second = 0;
  std::int32_t leading = 0;
  double real = 0;
  char letter = 0;
  RWCString text;
  std::vector<std::int32_t> list;
  RWCString cleared = "old";
  in.readInteger(first);
  in.readInteger64(second);
  in.readLeadingInteger(leading);
  in.readDouble(real);
  in.readCharacter(letter);
  in.readString(text);
  in.readIntegers(list);
  in.readString(cleared);
  EXPECT_EQ(in.good(), &in);
  EXPECT_EQ(first, 12);
  EXPECT_EQ(second, -7);
  EXPECT_EQ(leading, 9);
  EXPECT_EQ(real, 1.5);
  EXPECT_EQ(letter, 'c');
  EXPECT_EQ(text, "{a b}");
  EXPECT_EQ(list, (std::vector<std::int32_t>{1, 2, 0}));
  EXPECT_EQ(cleared, "");
  in.readInteger(first);
  EXPECT_EQ(first, 12);
  EXPECT_EQ(in.atEnd(), 1);
  EXPECT_EQ(in.failed(), 0);
}

TEST(TclArgStream, failedConversionLeavesDestinationAndStopsReading) {
  const auto fails = [](const char* word, auto&& read) {
    const char* words[] = {word, "5"};
    TclArgStream in(2, words);
    read(in);
    EXPECT_EQ(in.failed(), 6) << word;
    EXPECT_EQ(in.good(), nullptr) << word;
    std::int32_t next = -1;
    in.readInteger(next);
    EXPECT_EQ(next, -1) << word;
  };
  const auto integer = [](TclArgStream& in) {
    std::int32_t value = 77;
    in.readInteger(value);
    EXPECT_EQ(value, 77);
  };
  for (const char* word : {"", "x", "1 2", "2147483648", "1.0"}) fails(word, integer);
  fails("ab", [](TclArgStream& in) {
    char letter = 'q';
    in.readCharacter(letter);
    EXPECT_EQ(letter, 'q');
  });
  fails("{unbalanced", [](TclArgStream& in) { in.enterList(); });
  const std::string tooLong(10000, 'w');
  const char* word = tooLong.c_str() + 1;
  RWCString longest;
  TclArgStream(1, &word).readString(longest);
  EXPECT_EQ(longest.size(), 9999U);
  fails(tooLong.c_str(), [](TclArgStream& in) {
    RWCString text = "kept";
    in.readString(text);
    EXPECT_EQ(text, "kept");
  });
}

TEST(TclArgStream, nestedLists) {
  const char* words[] = {"a {1 {2 3}} b", "last"};
  TclArgStream in(2, words);
  RWCString text;
  std::int32_t number = 0;
  in.enterList();
  EXPECT_EQ(in.count(), 3);
  in.readString(text);
  in.enterList();
  in.readInteger(number);
  EXPECT_EQ(number, 1);
  in.leaveList();
  in.readString(text);
  EXPECT_EQ(text, "b");
  in.readString(text);
  EXPECT_EQ(in.atEnd(), 1);
  in.leaveList();
  EXPECT_EQ(in.atEnd(), 0);
  in.readString(text);
  EXPECT_EQ(text, "last");
  in.rewind();
  in.leaveList();
  in.readString(text);
  EXPECT_EQ(text, "a {1 {2 3}} b");
}

}  // namespace
