#include "messaging/TLSteeringParameter.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <limits>

#include "parameters/TLEntryKeys.h"

namespace {

constexpr char kWrongHeader[] =
    "wrong bc parameters header: cannot determine bc parameters version";

constexpr std::array<std::string_view, 3> kTypes = {"residual", "curve", "surface"};

constexpr std::int32_t kGrowth = 100;
constexpr std::size_t kBytesPerPoint = 8;

// Points beyond what a file holds that a count may ask for before it is cut to the file.
constexpr std::size_t kMostMissing = std::size_t{1} << 20;

template <class Entry>
Handle<Entry> entryAt(std::vector<Handle<Entry>>& list, int position) {
  if (position < 0 || position > TLSteeringParameter::TL_STEERING_MOST_ENTRIES) return nullptr;
  while (list.size() <= static_cast<std::size_t>(position)) list.push_back(makeHandle<Entry>());
  return list[static_cast<std::size_t>(position)];
}

void putFloats(TLTextSink& sink, const std::vector<float>& values, std::int32_t count) {
  std::string bytes(static_cast<std::size_t>(count) * 4, '\0');
  for (std::int32_t i = 0; i < count; ++i) {
    const auto bits = std::bit_cast<std::uint32_t>(values[static_cast<std::size_t>(i)]);
    for (int byte = 0; byte < 4; ++byte) {
      bytes[static_cast<std::size_t>(i) * 4 + byte] = static_cast<char>(bits >> (24 - 8 * byte));
    }
  }
  sink << bytes;
}

void takeFloats(std::string_view& bytes, std::vector<float>& values, std::int32_t count) {
  const std::size_t held = std::min<std::size_t>(count, bytes.size() / 4);
  for (std::size_t i = 0; i < held; ++i) {
    std::uint32_t bits = 0;
    for (int byte = 0; byte < 4; ++byte) {
      bits = bits << 8 | static_cast<unsigned char>(bytes[i * 4 + byte]);
    }
    values[i] = std::bit_cast<float>(bits);
  }
  std::fill(values.begin() + static_cast<std::ptrdiff_t>(held), values.begin() + count, 0.0F);
  bytes.remove_prefix(std::min(bytes.size(), static_cast<std::size_t>(count) * 4));
}

}  // namespace

/// The format of the record: one row a key, in the order of test.
struct TLSteeringParameterKeys {
  using P = TLSteeringParameter;
  using R = TLTokenReader;

  static TLKeyResult readType(P& parameter, TLKeyContext& context) {
    TLTokens tokens(context.line);
    tokens.next();
    const auto word = std::find(kTypes.begin(), kTypes.end(), tokens.next());
    if (word != kTypes.end()) {
      parameter.type = static_cast<std::int32_t>(word - kTypes.begin());
    }
    return TLKeyResult::next;
  }

  static void writeType(const P& parameter, TLTextSink& sink, std::string_view literal) {
    const bool known = parameter.type >= 0 && parameter.type < static_cast<int>(kTypes.size());
    sink << literal << (known ? kTypes[parameter.type] : std::string_view()) << '\n';
  }

  // A name that is written in another's stead when it is empty.
  template <auto Member, const char* Otherwise>
  static void writeName(const P& parameter, TLTextSink& sink, std::string_view literal) {
    const RWCString& text = parameter.*Member;
    sink << literal << (text.empty() ? std::string_view(Otherwise) : std::string_view(text))
         << '\n';
  }

  static TLKeyResult readCount(P& parameter, TLKeyContext& context) {
    std::int32_t count = 0;
    if (context.reader.readInteger(context.line, count) == 0) return TLKeyResult::failed;
    parameter.setValueCount(std::max(count, 0));
    return TLKeyResult::next;
  }

  static void writeCount(const P& parameter, TLTextSink& sink, std::string_view literal) {
    sink << literal << parameter.valueCount() << '\n';
  }

  // A new entry of the list, with the next running number; `DropUnknown` leaves out one whose name
  // stays "unknown".
  template <auto List, bool DropUnknown>
  static TLKeyResult readEntry(P& parameter, TLKeyContext& context) {
    if (R::lineHasToken(context.line, "tl_end")) return TLKeyResult::next;
    auto& list = parameter.*List;
    typename std::remove_reference_t<decltype(list)>::value_type entry(
        new std::remove_reference_t<decltype(*list.front())>);
    entry->position = parameter.entriesRead_++;
    if (readEitherForm(*entry, context) == 0) return TLKeyResult::failed;
    if (!DropUnknown || entry->name != "unknown") list.push_back(entry);
    return TLKeyResult::next;
  }

  static const TLKeyTable<P>& table();
};

namespace {

constexpr char kUnknown[] = "unknown";
constexpr char kUndefined[] = "UNDEFINED";

}  // namespace

const TLKeyTable<TLSteeringParameter>& TLSteeringParameterKeys::table() {
  using K = TLSteeringParameterKeys;
  constexpr auto words = &R::readStrings;
  constexpr auto number = &R::readInteger;
  static const TLKeyTable<P> keys(
      "TL_steering_parameter",
      {
          versionKey<&P::version, kWrongHeader>(1, "              VERSION                 2.0"),
          {"steering_type", "", &K::readType, 9, "              STEERING_TYPE           ",
           &K::writeType},
          valueKey<&P::typeName, words>("type_name", 2, "              TYPE_NAME               "),
          valueKey<&P::userName, words>("user_name"),
          {"value_units_name", "", &readMember<&P::valueUnitsName, words, P>, 4,
           "              VALUE_UNITS_NAME        ", &K::writeName<&P::valueUnitsName, kUndefined>},
          {"name", "", &readMember<&P::name, words, P>, 3, "              NAME                    ",
           &K::writeName<&P::name, kUnknown>},
          valueKey<&P::typeId, number>("type"),
          valueKey<&P::typeId, number>("type_id", 5, "              TYPE_ID                 "),
          valueKey<&P::typeOpsel, number>("type_opsel", 10,
                                          "              TYPE_OPSEL              "),
          valueKey<&P::condition, words>("condition"),
          {"choice_entry", "", &K::readEntry<&P::choiceEntries, true>},
          {"single_choice", "", &K::readEntry<&P::choiceEntries, false>},
          {"multy_choice", "", &K::readEntry<&P::choiceEntries, false>},
          {"real_entry", "", &K::readEntry<&P::realEntries, true>},
          {"vector_entry", "", &K::readEntry<&P::vectorEntries, false>},
          {"integer_entry", "", &K::readEntry<&P::integerEntries, false>},
          {"string_entry", "", &K::readEntry<&P::stringEntries, false>},
          {"number_of_values", "", &K::readCount, 11, "              NUMBER_OF_VALUES        ",
           &K::writeCount},
          valueKey<&P::gridLevelI, number>("grid_level_i", 6,
                                           "              GRID_LEVEL_I              "),
          valueKey<&P::gridLevelJ, number>("grid_level_j", 7,
                                           "              GRID_LEVEL_J              "),
          valueKey<&P::gridLevelK, number>("grid_level_k", 8,
                                           "              GRID_LEVEL_K              "),
          {"tl_begin", "", &skipBlock<P>},
      },
      {"TL_steering_parameter", "TL_steering_parameter_interface"});
  return keys;
}

int TLSteeringParameter::read(TLTextSource& source) {
  choiceEntries.clear();
  realEntries.clear();
  vectorEntries.clear();
  integerEntries.clear();
  stringEntries.clear();
  entriesRead_ = 0;
  return readBlock(*this, source, TLSteeringParameterKeys::table());
}

void TLSteeringParameter::write(TLTextSink& sink) const {
  TLSteeringParameterKeys::table().write(*this, sink);
  for (const auto& entry : realEntries) entry->write(sink);
  for (const auto& entry : vectorEntries) entry->write(sink);
  for (const auto& entry : integerEntries) entry->write(sink);
  for (const auto& entry : choiceEntries) entry->write(sink);
  for (const auto& entry : stringEntries) entry->write(sink);
}

// The series ---------------------------------------------------------------------------------

void TLSteeringParameter::setValueCount(std::int32_t count) {
  clearValues();
  valueCount_ = count;
}

void TLSteeringParameter::setType(std::int32_t newType) {
  if (newType == type) return;
  clearValues();
  type = newType;
}

void TLSteeringParameter::clearValues() {
  if (capacity_ == 0) return;
  x_ = {};
  y_ = {};
  capacity_ = 0;
  valueCount_ = 0;
}

void TLSteeringParameter::takeValues(TLSteeringParameter& other) {
  if (&other == this) return;
  clearValues();
  const bool points = other.capacity_ != 0;
  x_ = std::move(other.x_);
  y_ = std::move(other.y_);
  valueCount_ = other.valueCount_;
  capacity_ = points ? valueCount_ : 0;
  other.x_ = {};
  other.y_ = {};
  other.valueCount_ = 0;
  other.capacity_ = 0;
}

// The capacity told grows in steps of 100; the lists themselves grow by doubling, so that a long
// history isn't copied over and over.
void TLSteeringParameter::growTo(std::int32_t count) {
  if (capacity_ < count) capacity_ += (count - capacity_ + kGrowth - 1) / kGrowth * kGrowth;
}

void TLSteeringParameter::reserve(std::int32_t count) {
  const auto size = static_cast<std::size_t>(count);
  if (x_.size() < size) x_.resize(size);
  if (y_.size() < size) y_.resize(size);
}

void TLSteeringParameter::mergeValues(std::int32_t count, const float* x, const float* y) {
  if (count <= 0) return;
  const bool residual = type == TL_STEERING_RESIDUAL;
  const std::int32_t held = capacity_ == 0 ? 0 : valueCount_;
  const std::int32_t first = residual ? held : 0;
  if (count > std::numeric_limits<std::int32_t>::max() - kGrowth - first) return;
  float lastX = held == 0 ? -1.0F : x_[static_cast<std::size_t>(held) - 1];
  reserve(first + count);
  std::int32_t kept = first;
  for (std::int32_t i = 0; i < count; ++i) {
    if (!std::isfinite(y[i]) || (residual && !(lastX < x[i]))) continue;
    lastX = x[i];
    x_[static_cast<std::size_t>(kept)] = x[i];
    y_[static_cast<std::size_t>(kept)] = y[i];
    ++kept;
  }
  valueCount_ = kept;
  growTo(kept);
}

void TLSteeringParameter::writeValues(TLTextSink& sink) const {
  if (capacity_ == 0 || valueCount_ <= 0) return;
  putFloats(sink, x_, valueCount_);
  putFloats(sink, y_, valueCount_);
}

void TLSteeringParameter::readValues(std::string_view& bytes) {
  if (valueCount_ <= 0) return;
  const std::size_t inFile = bytes.size() / kBytesPerPoint;
  if (static_cast<std::size_t>(valueCount_) > inFile + kMostMissing) {
    valueCount_ = static_cast<std::int32_t>(inFile);
  }
  capacity_ = 0;
  x_.clear();
  y_.clear();
  reserve(valueCount_);
  growTo(valueCount_);
  takeFloats(bytes, x_, valueCount_);
  takeFloats(bytes, y_, valueCount_);
}

// The settings -------------------------------------------------------------------------------

Handle<TLChoiceEntry> TLSteeringParameter::choiceEntry(int position) {
  return entryAt(choiceEntries, position);
}

Handle<TLRealEntry> TLSteeringParameter::realEntry(int position) {
  return entryAt(realEntries, position);
}

Handle<TLVectorEntry> TLSteeringParameter::vectorEntry(int position) {
  return entryAt(vectorEntries, position);
}

Handle<TLIntegerEntry> TLSteeringParameter::integerEntry(int position) {
  return entryAt(integerEntries, position);
}

Handle<TLStringEntry> TLSteeringParameter::stringEntry(int position) {
  return entryAt(stringEntries, position);
}
