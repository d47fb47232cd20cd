#include "textio/TLTextSink.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

namespace {

// Whole numbers of fewer digits than the precision print as integers under "%g": the shortest
// and most frequent case, and much quicker than the general one.
bool isSmallWhole(double value, int precision) {
  constexpr double kLimit = 100000.0;
  return precision >= 6 && value > -kLimit && value < kLimit &&
         value == static_cast<double>(static_cast<std::int32_t>(value)) &&
         !(value == 0.0 && std::signbit(value));
}

}  // namespace

// Small texts grow as strings do. Large ones grow in wide steps: memory that isn't yet written to
// costs nothing, while each step copies all of the text into fresh pages.
void TLTextSink::grow(std::size_t bytes) {
  constexpr std::size_t kLarge = std::size_t{1} << 20;
  constexpr std::size_t kStep = 4;
  const std::size_t capacity = text_.capacity();
  if (capacity >= kLarge) text_.reserve(std::max(capacity * kStep, text_.size() + bytes));
}

TLTextSink& TLTextSink::operator<<(double value) {
  if (isSmallWhole(value, precision_)) return putSigned(static_cast<std::int32_t>(value));
  std::array<char, 64> buffer;
  const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value,
                                 std::chars_format::general, precision_);
  text_.append(buffer.data(), end.ptr);
  return *this;
}

int TLTextSink::setPrecision(int digits) {
  const int former = precision_;
  precision_ = digits;
  return former;
}

TLTextSink& TLTextSink::putSigned(std::int64_t value) {
  std::array<char, 24> buffer;
  const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value);
  text_.append(buffer.data(), end.ptr);
  return *this;
}

TLTextSink& TLTextSink::putUnsigned(std::uint64_t value) {
  std::array<char, 24> buffer;
  const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value);
  text_.append(buffer.data(), end.ptr);
  return *this;
}
