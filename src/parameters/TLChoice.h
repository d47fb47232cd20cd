#pragma once

#include "parameters/TLEntry.h"

/// One of the things to choose from: a name of one or more words and its number.
class TLChoice : public TLEntry {
 public:
  int readLine(std::string_view line) override;
  void write(TLTextSink& sink) const override;

  std::int32_t value = 0;  ///< The number by which the possibility is chosen.
};
