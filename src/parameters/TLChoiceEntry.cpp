#include "parameters/TLChoiceEntry.h"

#include "parameters/TLEntryKeys.h"

namespace {

TLKeyResult readSubChoice(TLChoiceEntry& entry, TLKeyContext& context) {
  auto choice = makeHandle<TLChoice>();
  if (choice->readLine(context.line) == 0) return TLKeyResult::failed;
  entry.subChoices.push_back(choice);
  return TLKeyResult::next;
}

TLKeyResult passOver(TLChoiceEntry& /*entry*/, TLKeyContext& /*context*/) {
  return TLKeyResult::next;
}

}  // namespace

int TLChoiceEntry::readLine(std::string_view line) {
  return TLTokenReader().readNameInteger(line, name, value);
}

int TLChoiceEntry::read(TLTextSource& source) {
  using R = TLTokenReader;
  using E = TLChoiceEntry;
  static const TLKeyTable<E> keys(
      "choice_entry",
      {
          guiKey<E>(),
          {"version", "", &passOver},
          valueKey<&E::name, &R::readStrings, E>("name"),
          valueKey<&E::condition, &R::readStrings, E>("condition"),
          valueKey<&E::controlRole, &R::readStrings>("control_role"),
          valueKey<&E::controlKey, &R::readStrings>("control_key"),
          {"sub_choice", "", &readSubChoice},
          valueKey<&E::value, &R::readInteger>("value"),
          unknownBlockKey<E>(),
      },
      {"integer_entry", "vector_entry", "real_entry", "choice_entry", "physical_entry",
       "multy_choice", "chemical_physical_entry", "lagrangian_physical_entry"});
  subChoices.clear();
  return ::readBlock(*this, source, keys);
}

void TLChoiceEntry::write(TLTextSink& sink) const {
  sink << "                CHOICE_ENTRY          " << name << ' ' << value << '\n';
}
