#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "parameters/TLParameterValue.h"
#include "textio/RefCounted.h"

/// One setting of the unstructured flow solver.
class TLParameter : public RefCounted {
 public:
  /// Reads the block "tlparameter" behind its opening line. 1, or 0 on a malformed line, an unknown
  /// type, or too few values.
  int read(TLTextSource& source);
  /// Writes the lines of the block, without opening and closing.
  void write(TLTextSink& sink) const;

  std::int32_t global = 0;     ///< 1: holds for all blocks.
  std::int32_t expert = 0;     ///< 1: for experts only.
  double version = 1.0;        ///< As read; 1.0 is what is written.
  RWCString name = "unknown";  ///< By which the solver knows it; "unknown" while untold.
  RWCString varName;           ///< Of the variable in the solver. Never written.
  RWCString quorel;            ///< second name for the marine solver; empty: none
  std::int32_t obsolete = 0;   ///< 1: of no use any more, kept for old files.
  TLParameterValue value;      ///< Its type and size are the parameter's.
  std::vector<TLParameterValue> oldValues;  ///< values that stand for the default of older versions
  std::vector<RWCString> comments;          ///< comment lines within the block, never written

 private:
  friend struct TLParameterKeys;
  int build(TLTextSource& source);

  // What the lines said, until the closing line. The views are of the source that is read.
  struct Told {
    TLValueType type = TLValueType::integer;
    std::int32_t rows = 1;
    std::int32_t columns = 1;
    std::string_view value;
    std::vector<std::string_view> oldValues;
  };
  Told told_;
};
