#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "textio/RWCString.h"
#include "textio/RefCounted.h"
#include "textio/TLTextSource.h"

/// The unit systems of one kind of quantity and the factors between them.
class TLUnits : public RefCounted {
 public:
  /// Reads the block "units_record" behind its opening line. 1, or 0 on a malformed line or a
  /// number of systems that no file can have.
  int read(TLTextSource& source);

  /// What multiplies a value in system `from` to give system `to`: 0 when either is negative or
  /// above `size`, 1 when they are the same, else what the file says (0 where it says nothing).
  double factor(std::int32_t from, std::int32_t to) const;
  /// Name of the unit at a place of the list, from 0; empty beyond it.
  RWCString unitsName(std::int32_t index) const;

  RWCString valueUnitsName = "UNDEFINED";  ///< the quantity, such as "length"
  std::int32_t size = 0;                   ///< number of systems plus one; 0 until told
  std::vector<double> factors;             ///< `size` rows of `size` columns: [from][to]
  std::vector<RWCString> unitsNames;       ///< in the order of the file
  /// Lowest number that the file gives a unit: that of the first name. Factors go by these numbers.
  std::int32_t firstSystem = 0;
};
