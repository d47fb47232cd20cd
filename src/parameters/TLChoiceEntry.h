#pragma once

#include <vector>

#include "parameters/TLChoice.h"

/// A choice among named possibilities: `value` is the number of the chosen one.
class TLChoiceEntry : public TLEntry {
 public:
  int readLine(std::string_view line) override;
  int read(TLTextSource& source) override;
  /// The block form, under the name that all entries have for it.
  int readBlock(TLTextSource& source) { return read(source); }
  void write(TLTextSink& sink) const override;

  std::int32_t value = 0;                    ///< Need not be the number of one of `subChoices`.
  std::vector<Handle<TLChoice>> subChoices;  ///< In the order of the file; empty: none are told.
  RWCString controlRole = "unknown";  ///< Whether other entries depend on the choice. Carried.
  RWCString controlKey = "unknown";   ///< Key by which they do. Carried.
};
