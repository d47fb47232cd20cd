#pragma once

#include "parameters/TLEntry.h"
#include "textio/TLKeyTable.h"

/// Rows that the block forms of several entries share.

/// The sub-block for the interface, the first key of every block form.
template <class Entry>
constexpr TLKey<Entry> guiKey() {
  return {"begin_gui_construction", "", [](Entry& entry, TLKeyContext& context) {
            return nextIf(entry.TLEntry::read(context.source));
          }};
}

/// The block of the value's distribution.
template <class Entry>
constexpr TLKey<Entry> nonDeterministicKey() {
  return {"tl_begin", "NonDeterministicData", [](Entry& entry, TLKeyContext& context) {
            auto data = makeHandle<TLNonDeterministicData>();
            if (data->read(context.source) == 0) return TLKeyResult::failed;
            entry.nonDeterministicData = data;
            return TLKeyResult::next;
          }};
}

/// Any block that the form doesn't know.
template <class Entry>
constexpr TLKey<Entry> unknownBlockKey() {
  return {"tl_begin", "", &skipBlock<Entry>};
}

/// A new entry from a key's line: its value form, or its block form when the line opens a block.
template <class Entry>
int readEitherForm(Entry& entry, TLKeyContext& context) {
  return TLTokenReader::lineHasToken(context.line, "tl_begin") ? entry.readBlock(context.source)
                                                               : entry.readLine(context.line);
}
