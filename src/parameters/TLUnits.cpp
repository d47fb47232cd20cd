#include "parameters/TLUnits.h"

#include <algorithm>

#include "textio/TLKeyTable.h"

namespace {

// Systems a file may tell of; the matrix has the square of it.
constexpr std::int32_t kMostSystems = 1000;

bool holds(const TLUnits& units, std::int32_t system) {
  return system >= 0 && system < units.size;
}

std::size_t place(const TLUnits& units, std::int32_t from, std::int32_t to) {
  return static_cast<std::size_t>(from) * static_cast<std::size_t>(units.size) +
         static_cast<std::size_t>(to);
}

TLKeyResult readSystems(TLUnits& units, TLKeyContext& context) {
  std::int32_t count = 0;
  if (context.reader.readInteger(context.line, count) == 0 || count > kMostSystems) {
    return TLKeyResult::failed;
  }
  units.size = count < 0 ? 0 : count + 1;
  units.factors.assign(static_cast<std::size_t>(units.size) * static_cast<std::size_t>(units.size),
                       0.0);
  return TLKeyResult::next;
}

TLKeyResult readUnitsName(TLUnits& units, TLKeyContext& context) {
  std::int32_t index = 0;
  RWCString name;
  if (context.reader.readIntegerName(context.line, index, name) == 0) return TLKeyResult::failed;
  const std::int32_t system = std::clamp(index, 0, kMostSystems);
  units.firstSystem = units.unitsNames.empty() ? system : std::min(units.firstSystem, system);
  units.unitsNames.push_back(name);
  return TLKeyResult::next;
}

TLKeyResult readFactor(TLUnits& units, TLKeyContext& context) {
  std::int32_t from = 0;
  std::int32_t to = 0;
  double factor = 0.0;
  if (context.reader.readIntegers2Real(context.line, from, to, factor) == 0) {
    return TLKeyResult::failed;
  }
  if (holds(units, from) && holds(units, to)) units.factors[place(units, from, to)] = factor;
  return TLKeyResult::next;
}

}  // namespace

int TLUnits::read(TLTextSource& source) {
  static const TLKeyTable<TLUnits> keys(
      "units_record",
      {
          {"number_of_systems", "", &readSystems},
          valueKey<&TLUnits::valueUnitsName, &TLTokenReader::readString>("value_units_name"),
          {"units_name", "", &readUnitsName},
          {"conv_factor", "", &readFactor},
          {"tl_begin", "", &skipBlock<TLUnits>},
      },
      {"units_record"});
  unitsNames.clear();
  firstSystem = 0;
  return readBlock(*this, source, keys);
}

double TLUnits::factor(std::int32_t from, std::int32_t to) const {
  if (from < 0 || to < 0 || from > size || to > size) return 0.0;
  if (from == to) return 1.0;
  return holds(*this, from) && holds(*this, to) ? factors[place(*this, from, to)] : 0.0;
}

RWCString TLUnits::unitsName(std::int32_t index) const {
  const bool known = index >= 0 && static_cast<std::size_t>(index) < unitsNames.size();
  return known ? unitsNames[static_cast<std::size_t>(index)] : RWCString();
}
