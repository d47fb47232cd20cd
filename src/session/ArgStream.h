#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "textio/RWCString.h"

/// Typed reading of a script command's words, in order. A read at a state other than 0 does
/// nothing, so that a handler can read all its arguments without testing in between; a destination
/// that nothing was read into keeps its value.
class ArgStream {
 public:
  /// @name Bits of the state.
  /// @{
  static constexpr std::int32_t kAtEnd = 1;       ///< a word was asked for, and none was left
  static constexpr std::int32_t kFailed = 2 | 4;  ///< a word wasn't what was asked for
  /// @}

  virtual ~ArgStream() = default;

  /// Takes the next word and goes into it as a list; the reads then go through that list.
  virtual void enterList() = 0;
  /// Leaves the list entered last, with its state; does nothing outside any list.
  virtual void leaveList() = 0;
  /// Number of words of the list being read, or of the command.
  virtual std::int32_t count() const = 0;
  /// The stream itself, null when its state isn't 0.
  virtual ArgStream* good() = 0;

  /// One word that is a list of integers.
  virtual void readIntegers(std::vector<std::int32_t>& values) = 0;
  /// A whole number in base 10; other text and numbers that don't fit fail.
  virtual void readInteger64(std::int64_t& value) = 0;
  /// As readInteger64, within 32 bits.
  virtual void readInteger(std::int32_t& value) = 0;
  /// The number that the word begins with, 0 for other text; never fails.
  virtual void readLeadingInteger(std::int32_t& value) = 0;
  /// As readDouble, rounded to single precision.
  virtual void readFloat(float& value) = 0;
  /// The real that the word begins with, 0 for other text; never fails.
  virtual void readDouble(double& value) = 0;
  /// A word of exactly one character.
  virtual void readCharacter(char& value) = 0;
  /// A word shorter than `size`, with its terminating zero, into `buffer`.
  virtual void readText(char* buffer, std::size_t size) = 0;

  /// The failure bits of the state.
  virtual std::int32_t failed() const = 0;
  /// The end bit of the state.
  virtual std::int32_t atEnd() const = 0;
  /// The next read takes the first word again; the state stays.
  virtual void rewind() = 0;

  /// A word of less than 10000 bytes; an empty word clears the string.
  void readString(RWCString& text);
};
