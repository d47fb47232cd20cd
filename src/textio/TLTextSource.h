#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "textio/RWCString.h"
#include "textio/TLReadObserver.h"

/// The input stream of all readers: a whole text in memory, read from front to back. Lines are
/// handed out as views into that text, valid as long as the source; nothing is copied. The text's
/// bytes are taken as they are: a carriage return is an ordinary white-space character.
class TLTextSource {
 public:
  /// A source on `text`, which it takes over.
  explicit TLTextSource(std::string text);

  TLTextSource(TLTextSource&&) = delete;  // views of the text must stay valid
  TLTextSource& operator=(TLTextSource&&) = delete;
  TLTextSource(const TLTextSource&) = delete;
  TLTextSource& operator=(const TLTextSource&) = delete;
  ~TLTextSource() = default;

  /// True when no character is left.
  bool atEnd() const { return position_ >= text_.size(); }

  /// Next character without taking it, or -1 at the end.
  int peek() const { return atEnd() ? -1 : static_cast<unsigned char>(text_[position_]); }

  /// Takes and returns the next character, or returns -1 at the end.
  int get() { return atEnd() ? -1 : static_cast<unsigned char>(text_[position_++]); }

  /// Moves behind blanks, tabs, new lines, carriage returns, vertical tabs and form feeds.
  void skipWhitespace();

  /// Moves behind the next new line, or to the end.
  void skipLine();

  /// Skips white space, then takes the rest of the line without its new line. Empty only at the
  /// end of the text.
  std::string_view readLine();

  /// Skips white space, then takes the characters up to the next white space. Empty only at the end
  /// of the text.
  std::string_view readWord();

  /// Takes the text up to the next new line as it stands, which may be nothing. False at the end.
  bool readRawLine(std::string_view& line);

  /// 1-based number of the line on which `part`, a view handed out by this source, begins.
  /// Counted when asked for, from the place last asked for on: meant for messages. 0 for a foreign
  /// view.
  std::size_t lineNumber(std::string_view part) const;

  /// The whole line, uncut, around `part`; empty for a foreign view.
  std::string_view wholeLine(std::string_view part) const;

  /// Number of bytes taken so far, and in all.
  std::size_t position() const { return position_; }
  /// Bytes of the whole text.
  std::size_t size() const { return text_.size(); }
  /// The whole text, valid as long as the source.
  std::string_view text() const { return text_; }

  /// Not owned; null for none. Must outlive the reading.
  void setObserver(TLReadObserver* observer) { observer_ = observer; }
  /// Null for none.
  TLReadObserver* observer() const { return observer_; }

 private:
  std::string text_;
  std::size_t position_ = 0;
  TLReadObserver* observer_ = nullptr;
  mutable std::size_t countedTo_ = 0;  // new lines up to this place ...
  mutable std::size_t counted_ = 0;    // ... are this many
};
