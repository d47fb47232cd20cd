#include "parameters/TLPolynom.h"

#include "textio/TLTokenReader.h"

namespace {

constexpr std::string_view kNames[] = {"polynom_entry"};
constexpr std::string_view kCoefficientKeys[] = {"coefficients"};
constexpr TLKeptField kFields[] = {
    {kCoefficientKeys, TLKeptValue::text, "                  COEFFICIENTS          "}};
constexpr TLKeptForm kForm{kNames,
                           " wrong profile entry header: cannot determine profile entry version",
                           "", "                  VERSION               1.0\n", kFields};
constexpr std::size_t kCoefficients = 0;
constexpr int kDigits = 15;

}  // namespace

TLPolynom::TLPolynom() : TLKeptBlock(kForm) {}

std::vector<double> TLPolynom::coefficients() const {
  std::vector<double> values;
  TLTokenReader().readCountedReals("key " + text(kCoefficients), values);
  return values;
}

void TLPolynom::setCoefficients(const std::vector<double>& coefficients) {
  TLTextSink line;
  line.setPrecision(kDigits);
  line << coefficients.size();
  for (const double coefficient : coefficients) line << ' ' << coefficient;
  setText(kCoefficients, line.text());
}
