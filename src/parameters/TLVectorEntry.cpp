#include "parameters/TLVectorEntry.h"

#include "parameters/TLEntryKeys.h"

int TLVectorEntry::readLine(std::string_view line) {
  return TLTokenReader().readNameVector(line, name, value[0], value[1], value[2]);
}

int TLVectorEntry::read(TLTextSource& source) {
  using R = TLTokenReader;
  using E = TLVectorEntry;
  static const TLKeyTable<E> keys(
      "vector_entry",
      {
          guiKey<E>(),
          valueKey<&E::name, &R::readStrings, E>("name"),
          valueKey<&E::value, &readArray3>("value"),
          valueKey<&E::valueUnitsName, &R::readStrings, E>("value_units_name"),
          unknownBlockKey<E>(),
      },
      {"real_entry", "vector_entry", "integer_entry", "physical_entry", "multy_choice",
       "string_entry", "chemical_physical_entry", "lagrangian_physical_entry"});
  return ::readBlock(*this, source, keys);
}

void TLVectorEntry::write(TLTextSink& sink) const {
  sink << "\t\t\t\tVECTOR_ENTRY\t\t" << name << "\t\t";
  writeValue(sink, value);
  sink << '\n';
}
