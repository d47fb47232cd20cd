#pragma once

#include <concepts>
#include <cstdint>
#include <string>
#include <string_view>

/// The output stream of all writers: text that grows in memory and goes to its file in one step
/// (see TLHostForm::replaceFile). Reals are formatted byte for byte as a C++ stream formats them by
/// default: "%.*g" with the current precision.
class TLTextSink {
 public:
  /// Appends the bytes as they are.
  TLTextSink& operator<<(std::string_view text) {
    if (text_.capacity() - text_.size() < text.size()) grow(text.size());
    text_.append(text);
    return *this;
  }
  /// Appends a text up to its null character.
  TLTextSink& operator<<(const char* text) { return *this << std::string_view(text); }
  /// Appends a text.
  TLTextSink& operator<<(const std::string& text) { return *this << std::string_view(text); }
  /// Appends one character.
  TLTextSink& operator<<(char c) {
    text_.push_back(c);
    return *this;
  }
  /// A whole number in decimal digits.
  template <std::integral T>
  requires(!std::same_as<T, char> && !std::same_as<T, bool>) TLTextSink& operator<<(T value) {
    return std::signed_integral<T> ? putSigned(static_cast<std::int64_t>(value))
                                   : putUnsigned(static_cast<std::uint64_t>(value));
  }
  /// 1 or 0.
  TLTextSink& operator<<(bool value) { return *this << (value ? '1' : '0'); }
  /// A real by the current precision; "inf" and "nan" as a stream has them.
  TLTextSink& operator<<(double value);
  /// As a real of double precision.
  TLTextSink& operator<<(float value) { return *this << static_cast<double>(value); }

  /// Significant digits of a real; 6 at first.
  int precision() const { return precision_; }
  /// Sets the digits and returns the former number.
  int setPrecision(int digits);

  /// All that was put out so far; valid until more comes.
  const std::string& text() const { return text_; }
  /// The text itself; the sink is not to be used afterwards.
  std::string take() { return std::move(text_); }
  /// Makes room for a text of that size in all.
  void reserve(std::size_t bytes) { text_.reserve(bytes); }

 private:
  void grow(std::size_t bytes);
  TLTextSink& putSigned(std::int64_t value);
  TLTextSink& putUnsigned(std::uint64_t value);

  std::string text_;
  int precision_ = 6;
};
