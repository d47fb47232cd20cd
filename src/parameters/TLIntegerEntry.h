#pragma once

#include "parameters/TLEntry.h"

/// A whole number. Its name may have several words.
class TLIntegerEntry : public TLEntry {
 public:
  int readLine(std::string_view line) override;
  int read(TLTextSource& source) override;
  int readBlock(TLTextSource& source) { return read(source); }
  void write(TLTextSink& sink) const override;

  std::int32_t value = 0;
};
