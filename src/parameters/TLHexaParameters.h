#pragma once

#include <string_view>
#include <vector>

#include "parameters/TLParameter.h"
#include "textio/Handle.h"

/// The settings of the unstructured flow solver for one block, in their order.
class TLHexaParameters : public RefCounted {
 public:
  /// Reads the block "hexa_parameters" behind its opening line. 1, or 0 when a setting can't be
  /// read.
  int read(TLTextSource& source);
  /// Writes the lines of the block, without opening and closing.
  void write(TLTextSink& sink) const;

  /// The first setting of this name; null when there is none. Owned by this record.
  TLParameter* find(std::string_view name) const;

  double version = 1.0;  ///< As read; 1.0 is what is written.
  /// In the order of the file, which is that of writing.
  std::vector<Handle<TLParameter>> parameters;
};
