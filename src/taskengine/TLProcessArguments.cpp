#include "taskengine/TLProcessArguments.h"

#include "textio/TLKeyTable.h"

namespace {

bool isOptionWord(const char* word) {
  return word[0] == '-';
}

TLKeyResult readEntry(TLProcessArguments& arguments, TLKeyContext& context) {
  auto argument = makeHandle<TLProcessArgument>();
  if (argument->read(context.source) == 0) return TLKeyResult::failed;
  arguments.append(argument);
  return TLKeyResult::next;
}

const TLKeyTable<TLProcessArguments> kKeys("process_arguments",
                                           {{"tl_begin", "process_argument", &readEntry},
                                            {"tl_begin", "", &skipBlock},
                                            {"tl_end", "process_arguments", &endBlock}});

}  // namespace

TLProcessArguments::TLProcessArguments(int argc, const char* const* argv) {
  for (int i = 0; i < argc; ++i) {
    if (!isOptionWord(argv[i])) {
      append("", argv[i]);
    } else if (i + 1 < argc && !isOptionWord(argv[i + 1])) {
      append(argv[i], argv[i + 1]);
      ++i;
    } else {
      append(argv[i], "");
    }
  }
}

void TLProcessArguments::assign(const TLProcessArguments& other) {
  if (this == &other) return;
  entries_.clear();
  entries_.reserve(other.entries_.size());
  for (const auto& entry : other.entries_) {
    entries_.push_back(makeHandle<TLProcessArgument>(*entry));
  }
}

int TLProcessArguments::find(const RWCString& type, RWCString& value) const {
  for (const auto& entry : entries_) {
    if (entry->type() == type) {
      value = entry->value();
      return 1;
    }
  }
  return 0;
}

int TLProcessArguments::read(TLTextSource& stream) {
  entries_.clear();
  return readBlock(*this, stream, kKeys);
}

void TLProcessArguments::write(TLTextSink& stream) const {
  for (const auto& entry : entries_) {
    stream << "          TL_BEGIN process_argument\n";
    entry->write(stream);
    stream << "          TL_END process_argument  \n";
  }
}
