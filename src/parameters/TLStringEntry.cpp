#include "parameters/TLStringEntry.h"

#include "parameters/TLEntryKeys.h"

int TLStringEntry::readLine(std::string_view line) {
  return TLTokenReader().readStringName(line, name, value);
}

int TLStringEntry::read(TLTextSource& source) {
  using R = TLTokenReader;
  using E = TLStringEntry;
  static const TLKeyTable<E> keys(
      "string_entry",
      {
          guiKey<E>(),
          valueKey<&E::name, &R::readStrings, E>("name"),
          valueKey<&E::value, &R::readStrings>("value"),
          valueKey<&E::condition, &R::readStrings, E>("condition"),
          unknownBlockKey<E>(),
      },
      {"real_entry", "vector_entry", "integer_entry", "physical_entry", "multy_choice",
       "string_entry", "chemical_physical_entry", "lagrangian_physical_entry"});
  return ::readBlock(*this, source, keys);
}

void TLStringEntry::write(TLTextSink& sink) const {
  sink << "\t\t\t\tSTRING_ENTRY\t\t" << name << "\t\t" << value << '\n';
}
