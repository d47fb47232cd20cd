#include "parameters/TLParameter.h"

#include <algorithm>
#include <utility>

#include "textio/TLKeyTable.h"

namespace {

constexpr char kWrongHeader[] = " wrong TLParameter header: cannot determine TLParameter version";

// Parameters whose number of columns is told although it is 1.
constexpr std::string_view kTwoNumbers[] = {"sns_alpha_", "sns_beta_", "out_ctrlPts_"};

}  // namespace

/// The format of the record: one row a key, in the order of test.
struct TLParameterKeys {
  using P = TLParameter;
  using R = TLTokenReader;

  static TLKeyResult readType(P& parameter, TLKeyContext& context) {
    RWCString word;
    if (context.reader.readString(context.line, word) == 0) return TLKeyResult::failed;
    if (valueTypeFrom(word, parameter.told_.type)) return TLKeyResult::next;
    if (context.source.observer() != nullptr) {
      context.source.observer()->badLine(context.source, context.line,
                                         "one of integer, real, string, float");
    }
    return TLKeyResult::failed;
  }

  static TLKeyResult readNumber(P& parameter, TLKeyContext& context) {
    auto& told = parameter.told_;
    if (R::countTokens(context.line) > 2) {
      return nextIf(context.reader.readIntegers2(context.line, told.rows, told.columns));
    }
    told.columns = 1;
    return nextIf(context.reader.readInteger(context.line, told.rows));
  }

  static TLKeyResult keepValue(P& parameter, TLKeyContext& context) {
    parameter.told_.value = context.line;
    return TLKeyResult::next;
  }

  static TLKeyResult keepOldValue(P& parameter, TLKeyContext& context) {
    parameter.told_.oldValues.emplace_back(context.line);
    return TLKeyResult::next;
  }

  static void writeVersion(const P& /*parameter*/, TLTextSink& sink, std::string_view literal) {
    sink << literal << "\n\n";
  }

  static void writeQuorel(const P& parameter, TLTextSink& sink, std::string_view literal) {
    if (!parameter.quorel.empty()) sink << literal << parameter.quorel << '\n';
  }

  static void writeType(const P& parameter, TLTextSink& sink, std::string_view literal) {
    sink << literal << spelling(parameter.value.type()) << '\n';
  }

  static void writeNumber(const P& parameter, TLTextSink& sink, std::string_view literal) {
    const bool two = parameter.value.columns() != 1 ||
                     std::ranges::find(kTwoNumbers, parameter.name) != std::end(kTwoNumbers);
    sink << literal << parameter.value.rows();
    if (two) sink << ' ' << parameter.value.columns();
    sink << '\n';
  }

  static void writeValues(const P& parameter, TLTextSink& sink, std::string_view literal) {
    sink << literal;
    parameter.value.write(sink);
    sink << '\n';
  }

  static const TLKeyTable<P>& table() {
    using K = TLParameterKeys;
    constexpr auto words = &R::readStrings;
    constexpr auto toggle = &R::readToggle;
    static const TLKeyTable<P> keys(
        "tlparameter",
        {
            {"version", "", &readHeader, 1, "          VERSION                     1.0",
             &K::writeVersion},
            {"quorel", "", &readMember<&P::quorel, words, P>, 3,
             "          QUOREL                      ", &K::writeQuorel},
            valueKey<&P::varName, words>("var_name"),
            valueKey<&P::obsolete, toggle>("obsolete"),
            valueKey<&P::name, words>("name", 2, "          NAME                        "),
            valueKey<&P::global, toggle>("global", 4, "          GLOBAL                      "),
            {"type", "", &K::readType, 5, "          TYPE                        ", &K::writeType},
            valueKey<&P::expert, toggle>("expert", 6, "          EXPERT                      "),
            {"number", "", &K::readNumber, 7, "          NUMBER                      ",
             &K::writeNumber},
            {"value", "", &K::keepValue, 8, "          VALUE                       ",
             &K::writeValues},
            {"old_value", "", &K::keepOldValue},
            {"tl_begin", "", &skipBlock<P>},
        },
        {"tlparameter"});
    return keys;
  }

  static TLKeyResult readHeader(P& parameter, TLKeyContext& context) {
    return nextIf(readVersion(context.line, kWrongHeader, parameter.version));
  }
};

int TLParameter::read(TLTextSource& source) {
  told_ = Told();
  oldValues.clear();
  comments.clear();
  if (readBlock(*this, source, TLParameterKeys::table(), &comments) == 0) return 0;
  return build(source);
}

int TLParameter::build(TLTextSource& source) {
  const Told told = std::exchange(told_, Told());
  TLTokenReader reader(source);
  if (told.value.empty()) {
    constexpr std::int64_t kMostElements = 1 << 20;
    const auto wanted = static_cast<std::int64_t>(told.rows) * told.columns;
    if (wanted > kMostElements) return 0;
    value = TLParameterValue(told.type, told.rows, told.columns);
  } else if (!value.read(reader, told.value, told.type, told.rows, told.columns)) {
    return 0;
  }
  for (const auto line : told.oldValues) {
    if (!oldValues.emplace_back().read(reader, line, told.type, told.rows, told.columns)) return 0;
  }
  return 1;
}

void TLParameter::write(TLTextSink& sink) const {
  TLParameterKeys::table().write(*this, sink);
}
