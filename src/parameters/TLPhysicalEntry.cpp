#include "parameters/TLPhysicalEntry.h"

#include <algorithm>
#include <array>

#include "parameters/TLEntryKeys.h"

namespace {

constexpr char kWrongHeader[] =
    " wrong physical entry header: cannot determine physical entry version";

constexpr std::array<std::string_view, 6> kVariableTypes = {
    "constant", "fct(space-time)", "fct(space)", "fct(time)", "polynom", "default"};

// The block of one law: a new law replaces the one held.
template <auto Law, class Held = typename TLMemberTraits<decltype(Law)>::Type>
constexpr TLKey<TLPhysicalEntry> lawKey(std::string_view blockName, int place) {
  return {"tl_begin",
          blockName,
          [](TLPhysicalEntry& entry, TLKeyContext& context) {
            Held law(new std::remove_reference_t<decltype(*Held())>);
            if (law->read(context.source) == 0) return TLKeyResult::failed;
            entry.*Law = law;
            return TLKeyResult::next;
          },
          place,
          blockName,
          [](const TLPhysicalEntry& entry, TLTextSink& sink, std::string_view name) {
            sink << "                TL_BEGIN " << name << '\n';
            (entry.*Law)->write(sink);
            sink << "                TL_END   " << name << '\n';
          }};
}

// Places up to this one are written for every entry, the others only for one that isn't constant.
constexpr int kLastOfConstant = 5;

const TLKeyTable<TLPhysicalEntry>& physicalKeys() {
  using R = TLTokenReader;
  using E = TLPhysicalEntry;
  static const TLKeyTable<E> keys(
      "physical_entry",
      {
          guiKey<E>(),
          versionKey<&E::version, kWrongHeader>(1, "                VERSION               1.0"),
          valueKey<&E::type, &R::readString>("type", 3, "                TYPE                  "),
          valueKey<&E::variableType, &R::readString>("variabletype", 6,
                                                     "                VARIABLETYPE          "),
          valueKey<&E::name, &R::readStrings, E>("name", 2,
                                                 "                NAME                  "),
          valueKey<&E::value, &R::readReal>("value", 4, "                VALUE                 "),
          valueKey<&E::minValue, &R::readReal>("min_value"),
          valueKey<&E::nonDeterministic, &R::readInteger>(
              "non_deterministic_data", kLastOfConstant,
              "                non_deterministic_data                 "),
          valueKey<&E::valueUnitsName, &R::readStrings, E>("value_units_name"),
          valueKey<&E::condition, &R::readStrings, E>("condition"),
          valueKey<&E::externalProfile, &R::readStrings>("external_profile", 7,
                                                         "                EXTERNAL_PROFILE      "),
          nonDeterministicKey<E>(),
          lawKey<&E::timeProfile>("time_profile_entry", 8),
          lawKey<&E::spaceProfile>("space_profile_entry", 9),
          lawKey<&E::polynom>("polynom_entry", 10),
          lawKey<&E::frequencyProfile>("frequency_profile_entry", 11),
          unknownBlockKey<E>(),
      },
      {"physical_entry", "multy_choice", "chemical_physical_entry", "string_entry",
       "UncertaintyEntry", "lagrangian_physical_entry"});
  return keys;
}

}  // namespace

// Files hold very many entries and most of them no law, so that all share one empty law of each
// kind.
TLPhysicalEntry::TLPhysicalEntry() {
  static const Handle<TLProfile> noProfile = makeHandle<TLProfile>();
  static const Handle<TLPolynom> noPolynom = makeHandle<TLPolynom>();
  timeProfile = noProfile;
  spaceProfile = noProfile;
  polynom = noPolynom;
  frequencyProfile = noProfile;
}

TLPhysicalEntry::TLPhysicalEntry(RWCString entryName) : TLPhysicalEntry() {
  name = std::move(entryName);
}

int TLPhysicalEntry::read(TLTextSource& source) {
  return ::readBlock(*this, source, physicalKeys());
}

void TLPhysicalEntry::write(TLTextSink& sink) const {
  const int precision = sink.setPrecision(14);
  physicalKeys().write(*this, sink, 1, kLastOfConstant);
  writeNonDeterministicData(sink, nonDeterministic);
  if (!isConstant()) physicalKeys().write(*this, sink, kLastOfConstant + 1);
  sink.setPrecision(precision);
}

void TLPhysicalEntry::setCoefficients(const std::vector<double>& coefficients) {
  polynom = makeHandle<TLPolynom>(*polynom);
  polynom->setCoefficients(coefficients);
}

bool TLPhysicalEntry::isConstant() const {
  return equalIgnoringCase(type, "constant");
}

int TLPhysicalEntry::variableTypeCode() const {
  const auto known =
      std::find_if(kVariableTypes.begin(), kVariableTypes.end(),
                   [this](std::string_view text) { return equalIgnoringCase(variableType, text); });
  return known == kVariableTypes.end() ? 0 : static_cast<int>(known - kVariableTypes.begin());
}

void TLPhysicalEntry::setVariableTypeCode(int code) {
  const bool known = code >= 1 && code < static_cast<int>(kVariableTypes.size());
  variableType = kVariableTypes[known ? code : 0];
}
