#include "parameters/TLRealEntry.h"

#include "parameters/TLEntryKeys.h"

int TLRealEntry::readLine(std::string_view line) {
  return TLTokenReader().readNameReal(line, name, value);
}

namespace {

const TLKeyTable<TLRealEntry>& fullKeys() {
  using R = TLTokenReader;
  using E = TLRealEntry;
  static const TLKeyTable<E> keys(
      "real_entry",
      {
          guiKey<E>(),
          valueKey<&E::controlRole, &R::readStrings>("control_role"),
          valueKey<&E::controlKey, &R::readStrings>("control_key"),
          valueKey<&E::name, &R::readStrings, E>(
              "name", 1, "                name                                   "),
          valueKey<&E::value, &R::readReal>(
              "value", 2, "                value                                  "),
          valueKey<&E::minValue, &R::readReal>("min_value"),
          valueKey<&E::valueUnitsName, &R::readStrings, E>("value_units_name"),
          valueKey<&E::nonDeterministic, &R::readInteger>(
              "non_deterministic_data", 3,
              "                non_deterministic_data                 "),
          nonDeterministicKey<E>(),
          unknownBlockKey<E>(),
      },
      {"real_entry", "vector_entry", "integer_entry", "physical_entry", "multy_choice",
       "string_entry", "chemical_physical_entry", "lagrangian_physical_entry"});
  return keys;
}

}  // namespace

int TLRealEntry::readBlock(TLTextSource& source) {
  return ::readBlock(*this, source, fullKeys());
}

void TLRealEntry::write(TLTextSink& sink) const {
  sink << "\t\t\t\tREAL_ENTRY\t\t" << name << "\t\t" << value << '\n';
}

void TLRealEntry::writeFull(TLTextSink& sink) const {
  fullKeys().write(*this, sink);
  writeNonDeterministicData(sink, nonDeterministic);
}
