#include "taskengine/TLProcessArgument.h"

#include "textio/TLKeyTable.h"

namespace {

constexpr std::string_view kUndefined = "undefined";

template <RWCString TLProcessArgument::*Member>
TLKeyResult readWord(TLProcessArgument& argument, TLKeyContext& context) {
  if (context.reader.readStrings(context.line, argument.*Member) == 0) return TLKeyResult::failed;
  if (argument.*Member == kUndefined) (argument.*Member).clear();
  return TLKeyResult::next;
}

TLKeyResult readLocalFile(TLProcessArgument& argument, TLKeyContext& context) {
  if (context.reader.readToggle(context.line, argument.localFile_) == 0) return TLKeyResult::failed;
  argument.hasLocalFile_ = 1;
  return TLKeyResult::next;
}

const TLKeyTable<TLProcessArgument> kKeys("process_argument",
                                          {{"type", "", &readWord<&TLProcessArgument::type_>},
                                           {"value", "", &readWord<&TLProcessArgument::value_>},
                                           {"local_file", "", &readLocalFile},
                                           {"tl_end", "process_argument", &endBlock}});

std::string_view orUndefined(const RWCString& word) {
  return word.empty() ? kUndefined : std::string_view(word);
}

}  // namespace

int TLProcessArgument::read(TLTextSource& stream) {
  return readBlock(*this, stream, kKeys);
}

void TLProcessArgument::write(TLTextSink& stream) const {
  stream << "      TYPE               " << orUndefined(type_) << '\n';
  stream << "      VALUE              " << orUndefined(value_) << '\n';
  if (hasLocalFile_ == 1) {
    stream << "      LOCAL_FILE         " << (localFile_ != 0 ? "yes" : "no") << '\n';
  }
}
