#pragma once

#include <cstddef>
#include <string_view>

/// Walks the tokens of one line: maximal runs of characters other than blank, tab and new line.
/// A view over the caller's line; nothing is copied.
class TLTokens {
 public:
  /// `line` must outlive this object.
  explicit TLTokens(std::string_view line) : line_(line) {}

  /// The next token, empty when there is none left.
  std::string_view next() {
    const std::size_t start = skip(position_, true);
    position_ = skip(start, false);
    return line_.substr(start, position_ - start);
  }

  /// What follows the tokens taken so far, blanks included.
  std::string_view rest() const { return line_.substr(position_); }

  /// True for blank, tab and new line; a carriage return belongs to its token.
  static bool isDelimiter(char c) { return c == ' ' || c == '\t' || c == '\n'; }

 private:
  std::size_t skip(std::size_t from, bool delimiters) const {
    while (from < line_.size() && isDelimiter(line_[from]) == delimiters) ++from;
    return from;
  }

  std::string_view line_;
  std::size_t position_ = 0;
};
