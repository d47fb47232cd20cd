#pragma once

#include "parameters/TLEntry.h"

/// A text. In the value form its name is one word and its value the rest of the line.
class TLStringEntry : public TLEntry {
 public:
  int readLine(std::string_view line) override;
  int read(TLTextSource& source) override;
  /// The block form, under the name that all entries have for it.
  int readBlock(TLTextSource& source) { return read(source); }
  void write(TLTextSink& sink) const override;

  RWCString value;  ///< In the value form its words are one blank apart.
};
