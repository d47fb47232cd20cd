#pragma once

#include <span>
#include <string_view>

class TLTextSource;

/// Whoever wants to know more of a reading than its result (a checker of files) hangs one of these
/// on the source. The readers' behaviour and console output stay the same with and without it.
/// `line` is a view into the source's text; TLTextSource::lineNumber tells where it stands.
class TLReadObserver {
 public:
  virtual ~TLReadObserver() = default;

  /// No key of the record `record` is on this line: the reader goes on behind it. `words` is the
  /// record's vocabulary, for a guess at what was meant.
  virtual void passedOver(const TLTextSource& source, std::string_view line,
                          std::string_view record, std::span<const std::string_view> words) = 0;

  /// A block that `record` doesn't know was skipped; `line` is its opening line.
  virtual void skippedBlock(const TLTextSource& source, std::string_view line,
                            std::string_view record) = 0;

  /// A value was missing or refused; `expected` says what the line should have held.
  virtual void badLine(const TLTextSource& source, std::string_view line,
                       std::string_view expected) = 0;
};
