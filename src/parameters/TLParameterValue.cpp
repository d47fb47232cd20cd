#include "parameters/TLParameterValue.h"

#include <algorithm>
#include <array>

#include "platform/TLConsole.h"
#include "textio/TLNumbers.h"
#include "textio/TLTokens.h"

namespace {

constexpr std::array<std::string_view, 4> kSpellings = {"INTEGER", "REAL", "STRING", "FLOAT"};

template <class T>
constexpr TLValueType typeOf() {
  if constexpr (std::is_same_v<T, std::int32_t>) return TLValueType::integer;
  if constexpr (std::is_same_v<T, double>) return TLValueType::real;
  if constexpr (std::is_same_v<T, RWCString>) return TLValueType::string;
  return TLValueType::single;
}

bool isWhite(char c) {
  return c == ' ' || (c >= '\t' && c <= '\r');
}

void writeElement(TLTextSink& sink, const RWCString& text) {
  const bool quoted = text.empty() || std::any_of(text.begin(), text.end(), isWhite);
  if (quoted) sink << '\'';
  sink << text;
  if (quoted) sink << '\'';
}

template <class T>
void writeElement(TLTextSink& sink, T value) {
  sink << value;
}

// Words are written bare, but the reader of several texts wants each between quotes. Empty for a
// line with fewer than `count` texts.
RWCString withQuotes(std::string_view line, int count) {
  TLTokens tokens(line);
  RWCString quoted(tokens.next());
  std::string_view rest = tokens.rest();
  for (; count > 0; --count) {
    while (!rest.empty() && isWhite(rest.front())) rest.remove_prefix(1);
    if (rest.empty()) return {};
    if (rest.front() == '\'') {
      const auto end = rest.find('\'', 1);
      if (end == std::string_view::npos) return {};
      quoted.append(" ").append(rest.substr(0, end + 1));
      rest.remove_prefix(end + 1);
    } else {
      const auto end = std::find_if(rest.begin(), rest.end(), isWhite) - rest.begin();
      quoted.append(" '").append(rest.substr(0, static_cast<std::size_t>(end))).append("'");
      rest.remove_prefix(static_cast<std::size_t>(end));
    }
  }
  return quoted;
}

int readElements(TLTokenReader& reader, std::string_view line, int count,
                 std::vector<std::int32_t>& values) {
  return reader.readIntegerArray(line, count, values.data());
}
int readElements(TLTokenReader& reader, std::string_view line, int count,
                 std::vector<double>& values) {
  return reader.readRealArray(line, count, values.data());
}
int readElements(TLTokenReader& reader, std::string_view line, int count,
                 std::vector<float>& values) {
  return reader.readFloatArray(line, count, values.data());
}
int readElements(TLTokenReader& reader, std::string_view line, int count,
                 std::vector<RWCString>& values) {
  values.clear();
  const RWCString quoted = count == 1 ? RWCString() : withQuotes(line, count);
  return reader.readQuotedStrings(values, count, quoted.empty() ? line : quoted);
}

}  // namespace

std::string_view spelling(TLValueType type) {
  return kSpellings[static_cast<std::size_t>(type)];
}

bool valueTypeFrom(std::string_view word, TLValueType& type) {
  for (std::size_t i = 0; i < kSpellings.size(); ++i) {
    if (!equalIgnoringCase(kSpellings[i], word)) continue;
    type = static_cast<TLValueType>(i);
    return true;
  }
  return false;
}

TLParameterValue::TLParameterValue(TLValueType type, std::int32_t rows, std::int32_t columns)
    : rows_(std::max(rows, 0)), columns_(std::max(columns, 0)) {
  const std::size_t count = place(rows_, 0);
  switch (type) {
    case TLValueType::integer:
      elements_ = std::vector<std::int32_t>(count);
      break;
    case TLValueType::real:
      elements_ = std::vector<double>(count);
      break;
    case TLValueType::string:
      elements_ = std::vector<RWCString>(count);
      break;
    case TLValueType::single:
      elements_ = std::vector<float>(count);
      break;
  }
}

bool TLParameterValue::read(TLTokenReader& reader, std::string_view line, TLValueType type,
                            std::int32_t rows, std::int32_t columns) {
  // A line of n characters has fewer than n values: what asks for more fails before any space is
  // taken for it.
  const std::int64_t wanted = static_cast<std::int64_t>(std::max(rows, 0)) *
                              static_cast<std::int64_t>(std::max(columns, 0));
  const auto most = static_cast<std::int64_t>(line.size()) + 1;
  TLParameterValue made(type, wanted > most ? static_cast<std::int32_t>(most) : rows,
                        wanted > most ? 1 : columns);
  const int count = made.rows_ * made.columns_;
  const bool good = std::visit(
      [&](auto& values) { return readElements(reader, line, count, values) != 0; }, made.elements_);
  if (!good || wanted > most) return false;
  *this = std::move(made);
  return true;
}

void TLParameterValue::write(TLTextSink& sink) const {
  std::visit(
      [&sink](const auto& values) {
        for (std::size_t i = 0; i < values.size(); ++i) {
          if (i > 0) sink << ' ';
          writeElement(sink, values[i]);
        }
      },
      elements_);
}

// Access -------------------------------------------------------------------------------------

template <class T>
bool TLParameterValue::allows(std::int32_t row, std::int32_t column) const {
  constexpr std::string_view kError = "Error accessing parameter value! ";
  const auto range = [&](std::string_view what, std::int32_t index, std::int32_t bound) {
    if (index >= 0 && index < bound) return true;
    console() << kError << what << " index " << index << " is out of range [0.." << bound << "). \n"
              << std::flush;
    return false;
  };
  if (type() != typeOf<T>()) {
    console() << kError << "Wrong type " << spelling(type()) << " instead of "
              << spelling(typeOf<T>()) << ". \n"
              << std::flush;
    return false;
  }
  return range("Row", row, rows_) && range("Column", column, columns_);
}

template <class T>
T TLParameterValue::get(std::int32_t row, std::int32_t column) const {
  return allows<T>(row, column) ? std::get<std::vector<T>>(elements_)[place(row, column)] : T();
}

template <class T>
void TLParameterValue::set(std::int32_t row, std::int32_t column, T value) {
  if (allows<T>(row, column)) {
    std::get<std::vector<T>>(elements_)[place(row, column)] = std::move(value);
  }
}

std::int32_t TLParameterValue::integer(std::int32_t row, std::int32_t column) const {
  return get<std::int32_t>(row, column);
}
double TLParameterValue::real(std::int32_t row, std::int32_t column) const {
  return get<double>(row, column);
}
RWCString TLParameterValue::string(std::int32_t row, std::int32_t column) const {
  return get<RWCString>(row, column);
}
float TLParameterValue::single(std::int32_t row, std::int32_t column) const {
  return get<float>(row, column);
}

std::optional<double> TLParameterValue::firstNumber() const {
  if (rows_ < 1 || columns_ < 1) return std::nullopt;
  switch (type()) {
    case TLValueType::integer:
      return integer(0, 0);
    case TLValueType::real:
      return real(0, 0);
    case TLValueType::single:
      return single(0, 0);
    case TLValueType::string:
      break;
  }
  return std::nullopt;
}

void TLParameterValue::setInteger(std::int32_t row, std::int32_t column, std::int32_t value) {
  set<std::int32_t>(row, column, value);
}
void TLParameterValue::setReal(std::int32_t row, std::int32_t column, double value) {
  set<double>(row, column, value);
}
void TLParameterValue::setString(std::int32_t row, std::int32_t column, RWCString value) {
  set<RWCString>(row, column, std::move(value));
}
void TLParameterValue::setSingle(std::int32_t row, std::int32_t column, float value) {
  set<float>(row, column, value);
}
