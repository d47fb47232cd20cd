#pragma once

#include <ostream>

#include "session/ResultStream.h"

/// The result of a script command, growing as text in a stream.
class TclResultStream : public ResultStream {
 public:
  /// `out` must outlive this object; its precision becomes 15.
  explicit TclResultStream(std::ostream* out);

  bool good() const override { return out_->good(); }
  int precision() const override { return static_cast<int>(out_->precision()); }
  void setPrecision(int digits) override { out_->precision(digits); }
  void beginList() override;
  void endList() override;
  void write(std::int16_t value) override { writeItem(value); }
  void write(std::uint16_t value) override { writeItem(value); }
  void write(std::int32_t value) override { writeItem(value); }
  void write(std::uint32_t value) override { writeItem(value); }
  void write(std::int64_t value) override { writeItem(value); }
  void write(double value) override { writeItem(value); }
  void write(float value) override { writeItem(value); }
  void write(char value) override { writeItem(value); }
  void write(const char* text) override;
  void write(const RWCString& text) override { write(text.c_str()); }
  void writeRaw(const RWCString& text) override;
  void setCode(std::int32_t code, const char* text) override;

  /// The command's result code, 0 unless set.
  std::int32_t code() const { return code_; }

 private:
  template <class Value>
  void writeItem(Value value) {
    if (itemCount_ > 0) *out_ << ' ';
    *out_ << value;
    ++itemCount_;
  }

  std::ostream* out_;
  std::int32_t code_ = 0;
  std::int32_t itemCount_ = 0;  ///< items written so far
  std::int32_t listDepth_ = 0;
  std::int32_t openBraces_ = 0;  ///< braces written and not closed
};
