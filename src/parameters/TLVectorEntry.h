#pragma once

#include <array>

#include "parameters/TLEntry.h"

/// Three reals. Its name may have several words.
class TLVectorEntry : public TLEntry {
 public:
  int readLine(std::string_view line) override;
  int read(TLTextSource& source) override;
  /// The block form, under the name that all entries have for it.
  int readBlock(TLTextSource& source) { return read(source); }
  void write(TLTextSink& sink) const override;

  std::array<double, 3> value{};  ///< x, y, z.
};
