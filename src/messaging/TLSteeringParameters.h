#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "messaging/TLSteeringParameter.h"
#include "textio/Handle.h"
#include "textio/RWCString.h"
#include "textio/RefCounted.h"

/// All there is to watch and to steer in one solver run: the content of a steering file and of the
/// binary file beside it.
class TLSteeringParameters : public RefCounted {
 public:
  /// The default set: the parameters that the database makes for the numbers that every solver has.
  /// Empty as long as the database is.
  TLSteeringParameters();

  /// Reads the steering file `path`, then its binary file. `name` becomes the path whatever
  /// happens. True on success; a missing binary file is told on the console.
  bool read(std::string_view path);
  /// Reads the text part. 1, or 0 on a malformed line; the set keeps what it got.
  int readText(TLTextSource& source);
  /// Writes the text part.
  void writeText(TLTextSink& sink) const;
  /// Writes both files to `name` and clears `modified`. Nothing for a set without a file or one
  /// that is never saved (`updateInBatch` 1).
  void save();
  /// Writes both files, or nothing as told for save. A file that can't be written stays as it is:
  /// 0, or the errno.
  int saveAs(std::string_view path) const;
  /// Drops the values of all parameters.
  void clearAllValues();

  /// Bound of the list, against positions from damaged files and messages.
  static constexpr int TL_STEERING_MOST_PARAMETERS = 100000;
  /// The parameter at `position` from 0. Access beyond the end appends new ones up to it; null for
  /// a negative position or one beyond TL_STEERING_MOST_PARAMETERS.
  Handle<TLSteeringParameter> parameter(int position);

  std::int32_t resetMark = 0;  ///< the solver has reset its steering since the last answer upwards
  RWCString name = "unknown";  ///< path of the steering file; "unknown": none
  /// A position in the list is the one of messages.
  std::vector<Handle<TLSteeringParameter>> parameters;
  float version = 0.0F;            ///< As read; 1.0 is what is written.
  std::int32_t updateInBatch = 0;  ///< 1: the set is never saved
  std::int32_t modified = 0;       ///< Not 0: changed since the last save.

 private:
  int writeBinary(std::string_view path) const;
  bool readBinary(std::string_view path);
};
