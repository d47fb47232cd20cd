#pragma once

#include <cstdint>
#include <utility>
#include <vector>

#include "textio/RWCString.h"
#include "textio/RefCounted.h"
#include "textio/TLTextSource.h"

/// How a kind of boundary condition of older definitions maps to one of today.
class TLBCBackwardRecord : public RefCounted {
 public:
  /// Places of one value in the lists of the new and of the old kind, from 0.
  using IndexPairs = std::vector<std::pair<std::int32_t, std::int32_t>>;

  /// Reads the lines between "begin_backward_compatibility" and "end_backward_compatibility". 1, or
  /// 0 on a malformed line. A line of index pairs that lacks one is told and passed over.
  int read(TLTextSource& source);

  std::int32_t version = 0;     ///< Of the definitions that the new kind is from. Carried.
  std::int32_t versionOld = 0;  ///< Of the definitions that had the old kind. Carried.
  std::int32_t typeNew = 0;     ///< Id of the new kind in the database.
  std::int32_t opselNew = 0;    ///< Option of the new kind.
  std::int32_t typeOld = 0;     ///< Id under which the old kind stands in projects.
  std::int32_t opselOld = 0;    ///< Likewise.
  IndexPairs physicalEntries;   ///< Lists as those of TLBCParameters.
  IndexPairs realEntries;       ///< Likewise.
  IndexPairs choiceEntries;     ///< Likewise.
  IndexPairs vectorEntries;     ///< Likewise.
  IndexPairs integerEntries;    ///< Likewise.
  std::vector<std::pair<RWCString, std::int32_t>> newValues;  ///< by name of the new entry
};
