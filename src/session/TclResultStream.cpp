#include "session/TclResultStream.h"

namespace {
constexpr int kPrecision = 15;
/// A handler of older days says "error" by 16; the interpreter knows it as 1.
constexpr std::int32_t kForeignError = 16;
constexpr std::int32_t kScriptError = 1;
}  // namespace

TclResultStream::TclResultStream(std::ostream* out) : out_(out) {
  out_->precision(kPrecision);
}

void TclResultStream::beginList() {
  if (itemCount_ > 0 || listDepth_ > 0) {
    *out_ << " {";
    ++openBraces_;
    ++itemCount_;
  }
  ++listDepth_;
}

void TclResultStream::endList() {
  if (openBraces_ > 0) {
    *out_ << " } ";
    --openBraces_;
  }
  --listDepth_;
}

void TclResultStream::write(const char* text) {
  if (itemCount_ == 0 && listDepth_ == 0) {
    *out_ << text;
  } else {
    *out_ << " {" << text << "} ";
  }
  ++itemCount_;
}

void TclResultStream::writeRaw(const RWCString& text) {
  *out_ << text;
  if (!text.empty()) ++itemCount_;
}

void TclResultStream::setCode(std::int32_t code, const char* text) {
  code_ = code == kForeignError ? kScriptError : code;
  if (text != nullptr) *out_ << text;
}
