#pragma once

#include "parameters/TLEntry.h"

/// A real. Its name may have several words.
class TLRealEntry : public TLEntry {
 public:
  int readLine(std::string_view line) override;
  void write(TLTextSink& sink) const override;
  /// Reads the full block form behind its opening line. (`read` takes the interface sub-block.)
  int readBlock(TLTextSource& source);
  /// Writes the lines of a "real_entry_full" block, without opening and closing.
  void writeFull(TLTextSink& sink) const;

  std::int32_t nonDeterministic = 0;  ///< Not 0: `nonDeterministicData` is written.
  double value = 0.0;                 ///< In the units of `valueUnitsName`.
  double minValue = 1000000.0;        ///< Lower bound; 1000000 while untold.
  RWCString controlRole = "unknown";  ///< Whether other entries depend on the value. Carried.
  RWCString controlKey = "unknown";   ///< Key by which they do. Carried.
};
