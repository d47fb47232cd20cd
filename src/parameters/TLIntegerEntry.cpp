#include "parameters/TLIntegerEntry.h"

#include "parameters/TLEntryKeys.h"

int TLIntegerEntry::readLine(std::string_view line) {
  return TLTokenReader().readNameInteger(line, name, value);
}

int TLIntegerEntry::read(TLTextSource& source) {
  using R = TLTokenReader;
  using E = TLIntegerEntry;
  static const TLKeyTable<E> keys(
      "integer_entry",
      {
          guiKey<E>(),
          valueKey<&E::name, &R::readStrings, E>("name"),
          valueKey<&E::value, &R::readInteger>("value"),
          unknownBlockKey<E>(),
      },
      {"integer_entry", "vector_entry", "real_entry", "physical_entry", "multy_choice",
       "string_entry", "chemical_physical_entry", "lagrangian_physical_entry"});
  return ::readBlock(*this, source, keys);
}

void TLIntegerEntry::write(TLTextSink& sink) const {
  sink << "\t\t\t\tINTEGER_ENTRY\t\t" << name << "\t\t" << value << '\n';
}
