#pragma once

#include <cstdint>

#include "textio/RWCString.h"

/// Typed writing of a script command's result, in the list syntax of the script.
class ResultStream {
 public:
  virtual ~ResultStream() = default;

  virtual bool good() const = 0;
  virtual int precision() const = 0;
  virtual void setPrecision(int digits) = 0;

  /// The outermost list, when nothing was written before it, takes no braces.
  virtual void beginList() = 0;
  virtual void endList() = 0;

  /// @name Numbers and characters: behind a blank, unless they come first.
  /// @{
  virtual void write(std::int16_t value) = 0;
  virtual void write(std::uint16_t value) = 0;
  virtual void write(std::int32_t value) = 0;
  virtual void write(std::uint32_t value) = 0;
  virtual void write(std::int64_t value) = 0;
  virtual void write(double value) = 0;
  virtual void write(float value) = 0;
  virtual void write(char value) = 0;
  /// @}
  /// @name Texts: the first of a result stands bare, every other in braces.
  /// @{
  virtual void write(const char* text) = 0;
  virtual void write(const RWCString& text) = 0;
  /// @}
  /// Adds `text` as it is, with no separator.
  virtual void writeRaw(const RWCString& text) = 0;
  /// Makes `code` the command's result code (16 stands for 1) and adds `text`, unless null, as it
  /// is.
  virtual void setCode(std::int32_t code, const char* text) = 0;
};
