#pragma once

#include <cstdint>

#include "textio/RWCString.h"

/// Typed writing of a script command's result, in the list syntax of the script.
class ResultStream {
 public:
  virtual ~ResultStream() = default;

  /// True as long as all could be written.
  virtual bool good() const = 0;
  /// Significant digits of a real.
  virtual int precision() const = 0;
  /// Sets them for the reals that follow.
  virtual void setPrecision(int digits) = 0;

  /// The outermost list, when nothing was written before it, takes no braces.
  virtual void beginList() = 0;
  /// Ends the list begun last.
  virtual void endList() = 0;

  /// @name Numbers and characters: behind a blank, unless they come first.
  /// @{
  virtual void write(std::int16_t value) = 0;   ///< A whole number of 16 bits with a sign.
  virtual void write(std::uint16_t value) = 0;  ///< A whole number of 16 bits.
  virtual void write(std::int32_t value) = 0;   ///< A whole number of 32 bits with a sign.
  virtual void write(std::uint32_t value) = 0;  ///< A whole number of 32 bits.
  virtual void write(std::int64_t value) = 0;   ///< A whole number of 64 bits with a sign.
  virtual void write(double value) = 0;         ///< A real, with precision() digits.
  virtual void write(float value) = 0;          ///< A real in single precision, likewise.
  virtual void write(char value) = 0;           ///< One character.
  /// @}
  /// @name Texts: the first of a result stands bare, every other in braces.
  /// @{
  virtual void write(const char* text) = 0;       ///< Braces within it must pair.
  virtual void write(const RWCString& text) = 0;  ///< The same up to a null character.
  /// @}
  /// Adds `text` as it is, with no separator.
  virtual void writeRaw(const RWCString& text) = 0;
  /// Makes `code` the command's result code (16 stands for 1) and adds `text`, unless null, as it
  /// is.
  virtual void setCode(std::int32_t code, const char* text) = 0;
};
