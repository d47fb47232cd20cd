#pragma once

#include <cstdint>
#include <vector>

#include "parameters/TLChoiceEntry.h"
#include "parameters/TLIntegerEntry.h"
#include "parameters/TLRealEntry.h"
#include "parameters/TLStringEntry.h"
#include "parameters/TLVectorEntry.h"
#include "textio/Handle.h"
#include "textio/RWCString.h"
#include "textio/RefCounted.h"
#include "textio/TLTextSink.h"
#include "textio/TLTextSource.h"

/// Kinds of series; the value of TLSteeringParameter::type.
enum TLSteeringType : std::int32_t {
  TL_STEERING_RESIDUAL = 0,  ///< grows point by point, x being the iteration
  TL_STEERING_CURVE = 1,     ///< replaced as a whole, points in their order
  TL_STEERING_SURFACE = 2    ///< replaced as a whole, loose points
};

/// One thing to watch or to steer in a running flow solver: its settings, as typed entries, and the
/// values reported for it, as a series of points.
class TLSteeringParameter : public RefCounted {
 public:
  /// Reads the record behind its opening line. 1, or 0 on a malformed line. The counts read say how
  /// many points the binary file holds; the points come with readValues.
  int read(TLTextSource& source);
  /// Writes the lines of the record, without opening and closing.
  void write(TLTextSink& sink) const;

  /// @name The series.
  /// @{

  /// Number of points. A set that tells what somebody holds has counts without points.
  std::int32_t valueCount() const { return valueCount_; }
  /// Sets the count alone and lets the points go: for sets that only tell what somebody holds.
  void setValueCount(std::int32_t count);
  /// Abscissas (for a residual, iteration numbers) and ordinates, valueCount of each; null when no
  /// points are held. Valid until the series changes.
  const float* xValues() const { return capacity_ == 0 ? nullptr : x_.data(); }
  /// As xValues(), for the ordinates.
  const float* yValues() const { return capacity_ == 0 ? nullptr : y_.data(); }
  /// Allocated points, in steps of 100; 0 for none.
  std::int32_t capacity() const { return capacity_; }

  /// Stores the type; when it differs from the present one the values are cleared.
  void setType(std::int32_t newType);
  /// Frees the points, if there are any. A count without points stays.
  void clearValues();
  /// Takes over the points of `other`, which is left without any.
  void takeValues(TLSteeringParameter& other);
  /// Takes in `count` reported points, which must not be this parameter's own. Points whose y is
  /// not finite are dropped; for a residual also those whose x is not above the last one kept. The
  /// others are appended for a residual, and replace the series for any other type.
  void mergeValues(std::int32_t count, const float* x, const float* y);
  /// Appends the series to the text of a binary file: all x, then all y, each a big-endian IEEE-754
  /// binary32.
  void writeValues(TLTextSink& sink) const;
  /// Takes as many points as the count says from the front of `bytes` and cuts them off there.
  /// What is missing reads as 0.
  void readValues(std::string_view& bytes);
  /// @}

  /// @name The settings, by position from 0.
  /// Access beyond the end of a list appends defaults up to it; null for a negative position or one
  /// beyond TL_STEERING_MOST_ENTRIES.
  /// @{

  /// Bound of a list, against positions from damaged files and messages.
  static constexpr int TL_STEERING_MOST_ENTRIES = 100000;
  Handle<TLChoiceEntry> choiceEntry(int position);  ///< A choice: its `value` is the setting.
  Handle<TLRealEntry> realEntry(int position);  ///< A real; goes over the wire in single precision.
  Handle<TLVectorEntry> vectorEntry(int position);    ///< Three reals, likewise.
  Handle<TLIntegerEntry> integerEntry(int position);  ///< A whole number.
  Handle<TLStringEntry> stringEntry(int position);    ///< A text.
  /// @}

  double version = 2.0;                      ///< As read; 2.0 is what is written.
  std::int32_t type = TL_STEERING_RESIDUAL;  ///< change it with setType
  RWCString typeName = "UNDEFINED";          ///< The kind in words.
  RWCString userName = "UNDEFINED";          ///< read, never written
  RWCString valueUnitsName = "UNDEFINED";  ///< Name of the quantity whose units the ordinates have.
  RWCString name = "UNDEFINED";            ///< identifies the parameter in all messages
  std::int32_t typeId = 1;                 ///< The kind's id in the database.
  std::int32_t typeOpsel = 1;              ///< The kind's option in the database.
  RWCString condition;                     ///< read, never written
  /// Settings; the lists are sent by kind, each in its order.
  std::vector<Handle<TLChoiceEntry>> choiceEntries;
  std::vector<Handle<TLRealEntry>> realEntries;        ///< Likewise.
  std::vector<Handle<TLVectorEntry>> vectorEntries;    ///< Likewise.
  std::vector<Handle<TLIntegerEntry>> integerEntries;  ///< Likewise.
  std::vector<Handle<TLStringEntry>> stringEntries;    ///< Likewise.
  std::int32_t gridLevelI = 0;  ///< Grid level along I that the values are from.
  std::int32_t gridLevelJ = 0;  ///< The same along J.
  std::int32_t gridLevelK = 0;  ///< The same along K.

 private:
  friend struct TLSteeringParameterKeys;
  void growTo(std::int32_t count);
  void reserve(std::int32_t count);

  std::vector<float> x_;
  std::vector<float> y_;
  std::int32_t valueCount_ = 0;
  std::int32_t capacity_ = 0;
  std::int32_t entriesRead_ = 0;
};
