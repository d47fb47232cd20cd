#pragma once

#include <cstdint>
#include <utility>

#include "textio/RWCString.h"
#include "textio/RefCounted.h"
#include "textio/TLTextSink.h"
#include "textio/TLTextSource.h"

/// One option of a command line as a pair of words: the option word itself ("-task") and what
/// belongs to it. `type` is "none" for a word that is no option, and empty for a word of a parsed
/// command line that stands alone; `value` is empty when there is none.
class TLProcessArgument : public RefCounted {
 public:
  TLProcessArgument() = default;
  /// An option with its value; nothing is said of a local file.
  TLProcessArgument(RWCString type, RWCString value)
      : type_(std::move(type)), value_(std::move(value)) {}

  /// Copies all fields of `other`.
  void assign(const TLProcessArgument& other) { *this = other; }

  /// The option word, "none" or empty.
  const RWCString& type() const { return type_; }
  /// What belongs to it; may be empty.
  const RWCString& value() const { return value_; }
  /// Replaces the option word.
  void setType(const RWCString& type) { type_ = type; }
  /// Replaces what belongs to it.
  void setValue(const RWCString& value) { value_ = value; }

  /// 1 when the task file said something of localFile.
  std::int32_t hasLocalFile() const { return hasLocalFile_; }
  /// 1 when the value names a local file, which has to go along to a remote host.
  std::int32_t localFile() const { return localFile_; }
  /// Says 1 or 0 of localFile(), and that it was said.
  void setLocalFile(std::int32_t localFile) {
    hasLocalFile_ = 1;
    localFile_ = localFile;
  }

  /// False for a positional word of the tool only: type "none" and a value that doesn't begin with
  /// "-".
  bool isOption() const { return type_ != "none" || value_.empty() || value_.front() == '-'; }

  /// Reads the lines behind "TL_BEGIN process_argument", its end included. 1 or 0.
  int read(TLTextSource& stream);
  /// Writes the lines between the block's begin and end.
  void write(TLTextSink& stream) const;

  RWCString type_;                 ///< See type().
  RWCString value_;                ///< See value().
  std::int32_t hasLocalFile_ = 0;  ///< See hasLocalFile().
  std::int32_t localFile_ = 0;     ///< See localFile().
};
