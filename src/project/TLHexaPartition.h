#pragma once

#include <cstdint>

#include "textio/RWCString.h"
#include "textio/RefCounted.h"
#include "textio/TLTextSink.h"
#include "textio/TLTextSource.h"

/// One partition of an unstructured mesh, as the mesh tool left it in a block ("hexa_partition").
class TLHexaPartition : public RefCounted {
 public:
  /// Reads the block's lines behind its opening line. 0 with a complaint on the console on failure.
  int read(TLTextSource& source);
  /// The lines of the block, without its opening and closing one.
  void write(TLTextSink& sink) const;

  double version = 1.0;          ///< written as it was read
  RWCString partitionName;       ///< Blanks are kept; empty: none.
  std::int32_t partitionId = 0;  ///< Number that the mesh tool gave. Not used for the balance.
  std::int32_t nbCells = 0;      ///< Cells of this partition alone.
  std::int32_t nbVertices = 0;   ///< Vertices, those on its borders included.
};
