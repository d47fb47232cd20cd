#pragma once

#include "parameters/TLEntry.h"

/// A whole number. Its name may have several words.
class TLIntegerEntry : public TLEntry {
 public:
  int readLine(std::string_view line) override;
  int read(TLTextSource& source) override;
  /// The block form, under the name that all entries have for it.
  int readBlock(TLTextSource& source) { return read(source); }
  void write(TLTextSink& sink) const override;

  std::int32_t value = 0;  ///< 0 for a word that is no number.
};
