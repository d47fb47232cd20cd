// The bodies of the steering sub-messages on the wire.
#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include "messaging/TLCountedString.h"
#include "messaging/TLSubMessageNewSteering.h"
#include "messaging/TLSubMessageSteering.h"
#include "messaging/TLSubMessageSteeringStatus.h"
#include "messaging/TLVirtualMachine.h"

namespace {

bool pack(std::int32_t value) {
  return TL_virtual_machine_pack_int(&value, 1) != 0;
}

template <class... Rest>
bool pack(std::int32_t first, Rest... rest) {
  return pack(first) && pack(rest...);
}

bool pack(const float* values, std::int32_t count) {
  return TL_virtual_machine_pack_float(values, count) != 0;
}

bool packNarrowed(double value) {
  const auto narrow = static_cast<float>(value);
  return pack(&narrow, 1);
}

bool unpack(std::int32_t& value) {
  return TL_virtual_machine_unpack_int(&value) != 0;
}

template <class... Rest>
bool unpack(std::int32_t& first, Rest&... rest) {
  return unpack(first) && unpack(rest...);
}

bool unpackWidened(double& value) {
  float narrow = 0;
  if (TL_virtual_machine_unpack_float(&narrow, 1) == 0) return false;
  value = narrow;
  return true;
}

// An iteration number out of a series, cut towards zero.
std::int32_t truncated(float x) {
  constexpr auto kLimit = 2147483648.0F;  // the first value beyond 32 bits
  if (std::isnan(x)) return 0;
  if (x >= kLimit) return std::numeric_limits<std::int32_t>::max();
  if (x < -kLimit) return std::numeric_limits<std::int32_t>::min();
  return static_cast<std::int32_t>(x);
}

// Points held; a set that only tells what somebody else holds has a count without points.
std::int32_t pointsOf(const TLSteeringParameter& parameter) {
  return parameter.xValues() == nullptr ? 0 : std::max(parameter.valueCount(), 0);
}

std::int32_t lastIteration(const TLSteeringParameter& parameter) {
  const std::int32_t count = pointsOf(parameter);
  return count == 0 ? 0 : truncated(parameter.xValues()[count - 1]);
}

// Position of the first point that a receiver lacks which holds iterations up to `knownLast`.
std::int32_t firstMissing(const TLSteeringParameter& residual, std::int32_t knownLast) {
  const std::int32_t count = pointsOf(residual);
  if (count == 0) return 0;
  const std::int64_t base = std::int64_t{truncated(residual.xValues()[0])} - 1;
  const std::int64_t missing = std::max<std::int64_t>(base, knownLast) - base;
  return static_cast<std::int32_t>(std::min<std::int64_t>(missing, count));
}

bool packSeries(const TLSteeringParameter& parameter, std::int32_t from) {
  const std::int32_t count = pointsOf(parameter) - from;
  if (!packCountedString(parameter.name) ||
      !pack(parameter.type, parameter.gridLevelI, parameter.gridLevelJ, parameter.gridLevelK,
            count)) {
    return false;
  }
  return count == 0 ||
         (pack(parameter.xValues() + from, count) && pack(parameter.yValues() + from, count));
}

// One series as it stands on the wire.
struct Series {
  RWCString name;
  std::int32_t type = 0;
  std::int32_t gridLevelI = 0;
  std::int32_t gridLevelJ = 0;
  std::int32_t gridLevelK = 0;
  std::vector<float> x;
  std::vector<float> y;

  bool unpack();
  void giveTo(TLSteeringParameter& parameter) const;
};

bool Series::unpack() {
  constexpr std::int32_t kPointSize = 8;
  std::int32_t count = 0;
  if (!unpackCountedString(name) || !::unpack(type, gridLevelI, gridLevelJ, gridLevelK, count) ||
      count < 0 || count > TL_virtual_machine_message_size() / kPointSize) {
    return false;
  }
  x.resize(count);
  y.resize(count);
  return count == 0 || (TL_virtual_machine_unpack_float(x.data(), count) != 0 &&
                        TL_virtual_machine_unpack_float(y.data(), count) != 0);
}

void Series::giveTo(TLSteeringParameter& parameter) const {
  parameter.setType(type);
  parameter.gridLevelI = gridLevelI;
  parameter.gridLevelJ = gridLevelJ;
  parameter.gridLevelK = gridLevelK;
  if (!x.empty()) {
    parameter.mergeValues(static_cast<std::int32_t>(x.size()), x.data(), y.data());
  }
}

Handle<TLSteeringParameter> findParameter(const TLSteeringParameters& set, const RWCString& name) {
  for (const auto& parameter : set.parameters) {
    if (parameter->name == name) return parameter;
  }
  return nullptr;
}

// Drops what a new set has by default beyond the announced count; it grows as parameters come.
void cutTo(TLSteeringParameters& set, std::int32_t announced) {
  const auto most = static_cast<std::size_t>(std::max(announced, 0));
  if (set.parameters.size() > most) set.parameters.resize(most);
}

// A list of entries, each packed or unpacked by `value`.
template <class Entries, class Value>
bool packEntries(const Entries& entries, Value value) {
  return pack(static_cast<std::int32_t>(entries.size())) &&
         std::all_of(entries.begin(), entries.end(),
                     [&](const auto& entry) { return value(*entry); });
}

template <class Entry, class Value>
bool unpackEntries(TLSteeringParameter& parameter, Handle<Entry> (TLSteeringParameter::*at)(int),
                   Value value) {
  std::int32_t count = 0;
  if (!unpack(count)) return false;
  for (std::int32_t i = 0; i < count; ++i) {
    const Handle<Entry> entry = (parameter.*at)(i);
    if (!entry || !value(*entry)) return false;
  }
  return true;
}

bool packSettings(const TLSteeringParameter& p) {
  return packCountedString(p.name) && packCountedString(p.userName) &&
         packCountedString(p.typeName) && pack(p.typeId, p.typeOpsel, p.type) &&
         packEntries(p.choiceEntries, [](const auto& entry) { return pack(entry.value); }) &&
         packEntries(p.realEntries, [](const auto& entry) { return packNarrowed(entry.value); }) &&
         packEntries(p.integerEntries, [](const auto& entry) { return pack(entry.value); }) &&
         packEntries(p.vectorEntries,
                     [](const auto& entry) {
                       return std::all_of(entry.value.begin(), entry.value.end(), packNarrowed);
                     }) &&
         packEntries(p.stringEntries,
                     [](const auto& entry) { return packCountedString(entry.value); });
}

bool unpackSettings(TLSteeringParameter& p) {
  std::int32_t type = 0;
  if (!unpackCountedString(p.name) || !unpackCountedString(p.userName) ||
      !unpackCountedString(p.typeName) || !unpack(p.typeId, p.typeOpsel, type)) {
    return false;
  }
  p.setType(type);
  return unpackEntries(p, &TLSteeringParameter::choiceEntry,
                       [](auto& entry) { return unpack(entry.value); }) &&
         unpackEntries(p, &TLSteeringParameter::realEntry,
                       [](auto& entry) { return unpackWidened(entry.value); }) &&
         unpackEntries(p, &TLSteeringParameter::integerEntry,
                       [](auto& entry) { return unpack(entry.value); }) &&
         unpackEntries(p, &TLSteeringParameter::vectorEntry,
                       [](auto& entry) {
                         return std::all_of(entry.value.begin(), entry.value.end(), unpackWidened);
                       }) &&
         unpackEntries(p, &TLSteeringParameter::stringEntry,
                       [](auto& entry) { return unpackCountedString(entry.value); });
}

}  // namespace

bool TLSubMessageSteering::pack() const {
  if (!parameters) return false;
  const auto& list = parameters->parameters;
  if (!::pack(static_cast<std::int32_t>(list.size()))) return false;
  const bool anyKnown = known && !known->parameters.empty();
  for (std::size_t i = 0; i < list.size(); ++i) {
    const TLSteeringParameter& parameter = *list[i];
    if (parameter.type == TL_STEERING_CURVE || parameter.type == TL_STEERING_SURFACE) {
      if (!packSeries(parameter, 0)) return false;
    } else if (parameter.type == TL_STEERING_RESIDUAL) {
      std::int32_t knownLast = 0;
      if (anyKnown) {
        const auto held = known->parameter(static_cast<int>(i));
        if (held && held->name == parameter.name) knownLast = held->valueCount();
      }
      if (!packSeries(parameter, firstMissing(parameter, knownLast))) return false;
    }
  }
  return true;
}

bool TLSubMessageSteering::unpack() {
  std::int32_t count = 0;
  if (!::unpack(count)) return false;
  const bool byName = static_cast<bool>(parameters);
  if (!byName) {
    parameters = makeHandle<TLSteeringParameters>();
    cutTo(*parameters, count);
  }
  for (std::int32_t i = 0; i < count; ++i) {
    Series series;
    if (!series.unpack()) return false;
    Handle<TLSteeringParameter> parameter =
        byName ? findParameter(*parameters, series.name) : parameters->parameter(i);
    if (parameter) {
      parameter->name = series.name;
      series.giveTo(*parameter);
    } else if (!byName) {
      return false;  // more than a set can hold
    }
  }
  return true;
}

TLSubMessageNewSteering::TLSubMessageNewSteering(const Handle<TLSteeringParameters>& set)
    : parameters(set) {
  if (!set) return;
  const auto output = findParameter(*set, "output iteration");
  if (!output) return;
  const std::int32_t count = pointsOf(*output);
  if (count == 0) return;
  const float* y = output->yValues();
  const auto first = std::find_if(y, y + count, [](float value) { return value > 0; }) - y;
  if (first < count) firstOutputIteration = truncated(output->xValues()[first]);
  lastOutputIteration = truncated(output->xValues()[count - 1]);
}

bool TLSubMessageNewSteering::pack() const {
  if (!parameters) return false;
  const auto& list = parameters->parameters;
  return packCountedString(parameters->name) && ::pack(static_cast<std::int32_t>(list.size())) &&
         std::all_of(list.begin(), list.end(),
                     [](const auto& parameter) { return packSettings(*parameter); }) &&
         ::pack(firstOutputIteration, lastOutputIteration);
}

bool TLSubMessageNewSteering::unpack() {
  std::int32_t count = 0;
  parameters = makeHandle<TLSteeringParameters>();
  if (!unpackCountedString(parameters->name) || !::unpack(count)) return false;
  cutTo(*parameters, count);
  for (std::int32_t i = 0; i < count; ++i) {
    const auto parameter = parameters->parameter(i);
    if (!parameter || !unpackSettings(*parameter)) return false;
  }
  return ::unpack(firstOutputIteration, lastOutputIteration);
}

bool TLSubMessageSteeringStatus::pack() const {
  if (!parameters) return false;
  const auto& list = parameters->parameters;
  return ::pack(static_cast<std::int32_t>(list.size())) &&
         std::all_of(list.begin(), list.end(), [](const auto& parameter) {
           return packCountedString(parameter->name) && ::pack(lastIteration(*parameter));
         });
}

bool TLSubMessageSteeringStatus::unpack() {
  if (parameters) return true;
  std::int32_t count = 0;
  if (!::unpack(count)) return false;
  parameters = makeHandle<TLSteeringParameters>();
  for (std::int32_t i = 0; i < count; ++i) {
    RWCString name;
    std::int32_t last = 0;
    if (!unpackCountedString(name) || !::unpack(last)) return false;
    const auto parameter = parameters->parameter(i);
    if (!parameter) return false;
    parameter->name = name;
    parameter->setValueCount(last);
  }
  return true;
}
