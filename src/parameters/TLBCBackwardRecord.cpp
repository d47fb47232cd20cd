#include "parameters/TLBCBackwardRecord.h"

#include "platform/TLConsole.h"
#include "textio/TLKeyTable.h"

namespace {

using B = TLBCBackwardRecord;

template <auto List>
TLKeyResult readPair(B& record, TLKeyContext& context) {
  TLTokens tokens(context.line);
  tokens.next();
  const auto first = tokens.next();
  const auto second = tokens.next();
  if (second.empty()) {
    console() << "TLBCBackwardRecord : not a correct line " << context.line << '\n' << std::flush;
  } else {
    (record.*List).emplace_back(integerFrom(first), integerFrom(second));
  }
  return TLKeyResult::next;
}

TLKeyResult readNewValue(B& record, TLKeyContext& context) {
  RWCString name;
  std::int32_t value = 0;
  if (context.reader.readNameInteger(context.line, name, value) == 0) return TLKeyResult::failed;
  record.newValues.emplace_back(name, value);
  return TLKeyResult::next;
}

}  // namespace

int TLBCBackwardRecord::read(TLTextSource& source) {
  constexpr auto number = &TLTokenReader::readInteger;
  static const TLKeyTable<B> keys("backward_compatibility",
                                  {
                                      valueKey<&B::version, number>("version"),
                                      valueKey<&B::versionOld, number>("version_old"),
                                      valueKey<&B::typeNew, number>("type_new"),
                                      valueKey<&B::opselNew, number>("opsel_new"),
                                      valueKey<&B::typeOld, number>("type_old"),
                                      valueKey<&B::opselOld, number>("opsel_old"),
                                      {"physical_entries", "", &readPair<&B::physicalEntries>},
                                      {"real_entries", "", &readPair<&B::realEntries>},
                                      {"choice_entries", "", &readPair<&B::choiceEntries>},
                                      {"vector_entries", "", &readPair<&B::vectorEntries>},
                                      {"integer_entries", "", &readPair<&B::integerEntries>},
                                      {"new_value", "", &readNewValue},
                                      {"tl_begin", "", &skipBlock<B>},
                                      {"end_backward_compatibility", "", &endBlock<B>},
                                  });
  return readBlock(*this, source, keys);
}
