#pragma once

#include <vector>

#include "parameters/TLChoice.h"

/// A choice among named possibilities: `value` is the number of the chosen one.
class TLChoiceEntry : public TLEntry {
 public:
  int readLine(std::string_view line) override;
  int read(TLTextSource& source) override;
  int readBlock(TLTextSource& source) { return read(source); }
  void write(TLTextSink& sink) const override;

  std::int32_t value = 0;
  std::vector<Handle<TLChoice>> subChoices;
  RWCString controlRole = "unknown";
  RWCString controlKey = "unknown";
};
