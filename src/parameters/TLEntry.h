#pragma once

#include <cstdint>
#include <string_view>

#include "project/TLNonDeterministicData.h"
#include "textio/Handle.h"
#include "textio/RWCString.h"
#include "textio/RefCounted.h"
#include "textio/TLTextSink.h"
#include "textio/TLTextSource.h"

/// One named, typed value with what an interface needs to show it. It has two text forms: the value
/// form, one line of name and value (`readLine`, `write`), and the block form of the definition
/// files (`read`).
class TLEntry : public RefCounted {
 public:
  /// Takes name and value from a whole line of the value form. 1, or 0 on a malformed line.
  virtual int readLine(std::string_view line);
  /// Reads the block form behind its opening line. For classes without one of their own: the
  /// sub-block between "begin_gui_construction" and "end_gui_construction".
  virtual int read(TLTextSource& source);
  /// Writes the entry.
  virtual void write(TLTextSink& sink) const;

  RWCString name = "unknown";            ///< What the value stands for; "unknown" while untold.
  RWCString condition = "none";          ///< expression under which the interface shows the entry
  std::int32_t expertMode = 0;           ///< 1: the interface shows it to experts only.
  RWCString valueUnitsName = "unknown";  ///< Name of the quantity whose units the value has.
  std::int32_t position = -1;  ///< running number in the record that read it, from 0; -1: none
  Handle<TLNonDeterministicData> nonDeterministicData;  ///< null for none

 protected:
  /// Puts the block "NonDeterministicData" out when `flag` is not 0 and there is one.
  void writeNonDeterministicData(TLTextSink& sink, std::int32_t flag) const;
};
