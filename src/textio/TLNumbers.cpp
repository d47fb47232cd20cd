#include "textio/TLNumbers.h"

#include <charconv>
#include <cstdlib>
#include <cstring>
#include <string>
#include <system_error>

namespace {

bool isDigit(char c) {
  return c >= '0' && c <= '9';
}

// What from_chars cannot do as atof does: a plus sign, leading white space, hexadecimal digits,
// and numbers beyond the range of a double.
double slowReal(std::string_view text) {
  return std::atof(std::string(text).c_str());
}

}  // namespace

std::int32_t integerFrom(std::string_view text) {
  std::size_t at = 0;
  while (at < text.size() && (text[at] == ' ' || (text[at] >= '\t' && text[at] <= '\r'))) ++at;
  const bool negative = at < text.size() && text[at] == '-';
  if (negative || (at < text.size() && text[at] == '+')) ++at;
  constexpr std::uint64_t kLimit = std::uint64_t{1} << 63;
  std::uint64_t value = 0;
  for (; at < text.size() && isDigit(text[at]); ++at) {
    const auto digit = static_cast<std::uint64_t>(text[at] - '0');
    value = value > (kLimit - digit) / 10 ? kLimit : value * 10 + digit;
  }
  if (!negative && value == kLimit) --value;
  const std::uint64_t bits = negative ? ~value + 1 : value;
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(bits));
}

double realFrom(std::string_view text) {
  double value = 0.0;
  const char* end = text.data() + text.size();
  const auto result = std::from_chars(text.data(), end, value);
  const bool hexadecimal =
      result.ptr != end && (*result.ptr == 'x' || *result.ptr == 'X') && value == 0.0;
  if (result.ec == std::errc() && !hexadecimal) return value;
  return slowReal(text);
}

namespace {

// Eight characters at a time: each "A" to "Z" among them in lower case.
std::uint64_t lowerCase8(const char* text) {
  constexpr std::uint64_t kOnes = 0x0101010101010101U;
  std::uint64_t bytes = 0;
  std::memcpy(&bytes, text, sizeof bytes);
  const std::uint64_t low = bytes & (0x7f * kOnes);
  const std::uint64_t fromA = low + (0x80 - 'A') * kOnes;
  const std::uint64_t behindZ = low + (0x7f - 'Z') * kOnes;
  const std::uint64_t isUpper = (fromA ^ behindZ) & ~bytes & (0x80 * kOnes);
  return bytes | (isUpper >> 2);
}

}  // namespace

bool equalIgnoringCase(std::string_view a, std::string_view b) {
  if (a.size() != b.size()) return false;
  std::size_t i = 0;
  for (; i + 8 <= a.size(); i += 8) {
    if (lowerCase8(a.data() + i) != lowerCase8(b.data() + i)) return false;
  }
  for (; i < a.size(); ++i) {
    if (lowerCase(a[i]) != lowerCase(b[i])) return false;
  }
  return true;
}
