#include "parameters/TLEntry.h"

#include "parameters/TLEntryKeys.h"

int TLEntry::readLine(std::string_view /*line*/) {
  return 1;
}

int TLEntry::read(TLTextSource& source) {
  using R = TLTokenReader;
  static const TLKeyTable<TLEntry> keys(
      "gui_construction", {
                              valueKey<&TLEntry::condition, &R::readStrings>("condition"),
                              valueKey<&TLEntry::expertMode, &R::readInteger>("expert_mode"),
                              unknownBlockKey<TLEntry>(),
                              {"end_gui_construction", "", &endBlock<TLEntry>},
                          });
  return readBlock(*this, source, keys);
}

void TLEntry::write(TLTextSink& sink) const {
  sink << "                name                                   " << name << '\n';
}

void TLEntry::writeNonDeterministicData(TLTextSink& sink, std::int32_t flag) const {
  if (flag == 0 || !nonDeterministicData) return;
  sink << "                TL_BEGIN NonDeterministicData\n";
  nonDeterministicData->write(sink);
  sink << "                TL_END NonDeterministicData\n";
}
