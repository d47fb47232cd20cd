#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <variant>
#include <vector>

#include "textio/RWCString.h"
#include "textio/TLTextSink.h"
#include "textio/TLTokenReader.h"

/// Kinds of values of a TLParameter.
enum class TLValueType { integer = 0, real = 1, string = 2, single = 3 };

/// The spelling of a kind in files ("INTEGER", "REAL", "STRING", "FLOAT").
std::string_view spelling(TLValueType type);
/// The kind spelled by `word`, in any case; false for another word.
bool valueTypeFrom(std::string_view word, TLValueType& type);

/// A table of values of one kind, row by row.
///
/// Access with the wrong type, or outside of the table, is told on the console; asking then answers
/// 0 or an empty text, setting does nothing.
class TLParameterValue {
 public:
  /// One integer, 0.
  TLParameterValue() : TLParameterValue(TLValueType::integer, 1, 1) {}
  /// `rows` times `columns` zeros or empty texts. Negative numbers count as 0.
  TLParameterValue(TLValueType type, std::int32_t rows, std::int32_t columns);

  /// One kind for all elements.
  TLValueType type() const { return static_cast<TLValueType>(elements_.index()); }
  /// At least 0.
  std::int32_t rows() const { return rows_; }
  /// At least 0.
  std::int32_t columns() const { return columns_; }

  /// Element of a table of integers; row and column from 0, as in all that follow.
  std::int32_t integer(std::int32_t row, std::int32_t column) const;
  /// Element of a table of reals (double precision).
  double real(std::int32_t row, std::int32_t column) const;
  /// Element of a table of texts.
  RWCString string(std::int32_t row, std::int32_t column) const;
  /// Element of a table of reals in single precision.
  float single(std::int32_t row, std::int32_t column) const;
  /// The first element of a table of numbers of any kind; nothing in an empty one or in texts.
  std::optional<double> firstNumber() const;
  /// Replaces an element of a table of integers.
  void setInteger(std::int32_t row, std::int32_t column, std::int32_t value);
  /// Replaces an element of a table of reals.
  void setReal(std::int32_t row, std::int32_t column, double value);
  /// Replaces an element of a table of texts.
  void setString(std::int32_t row, std::int32_t column, RWCString value);
  /// Replaces an element of a table in single precision.
  void setSingle(std::int32_t row, std::int32_t column, float value);

  /// Makes the table anew and fills it from a line "VALUE ...". False, with a complaint on the
  /// console, when the line holds too few values; the table is then as it was.
  bool read(TLTokenReader& reader, std::string_view line, TLValueType type, std::int32_t rows,
            std::int32_t columns);
  /// The values one blank apart, a text with white space in it or an empty one in single quotes.
  void write(TLTextSink& sink) const;

  friend bool operator==(const TLParameterValue&, const TLParameterValue&) = default;

 private:
  template <class T>
  T get(std::int32_t row, std::int32_t column) const;
  template <class T>
  void set(std::int32_t row, std::int32_t column, T value);
  template <class T>
  bool allows(std::int32_t row, std::int32_t column) const;
  std::size_t place(std::int32_t row, std::int32_t column) const {
    return static_cast<std::size_t>(row) * static_cast<std::size_t>(columns_) +
           static_cast<std::size_t>(column);
  }

  std::int32_t rows_;
  std::int32_t columns_;
  std::variant<std::vector<std::int32_t>, std::vector<double>, std::vector<RWCString>,
               std::vector<float>>
      elements_;
};
