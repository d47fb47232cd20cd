#include "textio/TLNumbers.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <random>
#include <sstream>
#include <string>

#include "textio/TLTextSink.h"

namespace {

bool sameBits(double a, double b) {
  return std::memcmp(&a, &b, sizeof a) == 0;
}

TEST(Numbers, ConvertAsTheRuntimeDoes) {
  for (const char* text :
       {"", "0", "-0", "+7", " 12", "\t-3x", "12abc", "abc", "-", "+-1", "2147483647", "2147483648",
        "-2147483649", "4294967296", "99999999999999999999", "-99999999999999999999", "1e3"}) {
    EXPECT_EQ(integerFrom(text), std::atoi(text)) << text;
  }
  for (const char* text :
       {"",      "-0",    "+1.5",   " 2",       "1e",    "1e+",   ".5",      "5.",
        ".",     "1e400", "-1e400", "1e-400",   "0x1p3", "-0x10", "0x",      "1d5",
        "12abc", "inf",   "-INF",   "infinity", "1,5",   "1.5.2", "4.9e-324"}) {
    EXPECT_TRUE(sameBits(realFrom(text), std::atof(text))) << text;
  }
  EXPECT_TRUE(std::isnan(realFrom("nan")));
  const std::string_view text = "123456";
  EXPECT_EQ(integerFrom(text.substr(0, 2)), 12);
  EXPECT_EQ(realFrom(text.substr(0, 2)), 12.0);
}

TEST(TextSink, FormatsRealsAsAStream) {
  std::mt19937_64 random(1);
  for (const int digits : {6, 14, 15, 0, 1}) {
    const auto check = [digits](double value) {
      std::ostringstream stream;
      stream.precision(digits);
      stream << value;
      TLTextSink sink;
      sink.setPrecision(digits);
      sink << value;
      EXPECT_EQ(sink.text(), stream.str());
    };
    for (const double value :
         {0.0, -0.0, 1.0, -1.0, 99999.0, 100000.0, 999999.0, 1e6, 1234567.0, 0.1, 1e-5, 1e-4,
          123456.5, 1e300, std::nan(""), std::numeric_limits<double>::infinity(),
          -std::numeric_limits<double>::infinity(), 4.9e-324}) {
      check(value);
    }
    for (int i = 0; i < 20000; ++i) {
      double value = 0;
      const auto bits = random();
      std::memcpy(&value, &bits, sizeof value);
      if (!std::isnan(value)) check(value);
    }
  }
}

// Every pair of bytes, in a word that is longer than what is compared at once.
TEST(Numbers, EqualIgnoringCaseFoldsLettersOnly) {
  for (int a = 0; a < 256; ++a) {
    for (int b = 0; b < 256; ++b) {
      const bool same = lowerCase(static_cast<char>(a)) == lowerCase(static_cast<char>(b));
      for (const std::size_t at : {std::size_t{3}, std::size_t{9}}) {
        std::string left = "ABCDefghIJ";
        std::string right = "abcdEFGHij";
        left[at] = static_cast<char>(a);
        right[at] = static_cast<char>(b);
        ASSERT_EQ(equalIgnoringCase(left, right), same) << a << ' ' << b << ' ' << at;
      }
    }
  }
  EXPECT_FALSE(equalIgnoringCase("abcdefgh", "abcdefghi"));
  EXPECT_TRUE(equalIgnoringCase("", ""));
}

}  // namespace
