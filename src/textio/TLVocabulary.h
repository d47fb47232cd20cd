#pragma once

#include <array>
#include <cstddef>
#include <string_view>

#include "platform/TLConsole.h"
#include "textio/TLKeyTable.h"
#include "textio/TLNumbers.h"
#include "textio/TLTextSink.h"
#include "textio/TLTokens.h"

/// One word of a closed set: how it is read (lower case), how it is written, what it means.
template <class Code>
struct TLWord {
  std::string_view word;     ///< In lower case.
  std::string_view literal;  ///< As it is written.
  Code code;                 ///< What it means for the record.
};

/// The closed set of words that one kind of key may have as its value. The line's second token
/// counts, case ignored; a word outside the set leaves the value as it was. `failure` is printed
/// when there is no second token.
template <class Code, std::size_t N>
struct TLVocabulary {
  const char* failure;                ///< Complaint, without a new line.
  std::array<TLWord<Code>, N> words;  ///< A code without a word is written as the first one.

  /// 0 when the word is missing, with its complaint on the console, else 1.
  int read(std::string_view line, Code& value) const {
    TLTokens tokens(line);
    tokens.next();
    const std::string_view token = tokens.next();
    if (token.empty()) {
      console() << failure << '\n' << std::flush;
      return 0;
    }
    for (const auto& row : words) {
      if (equalIgnoringCase(row.word, token)) value = row.code;
    }
    return 1;
  }

  /// The word for `value` as it is written.
  std::string_view literal(Code value) const {
    for (const auto& row : words) {
      if (row.code == value) return row.literal;
    }
    return words.front().literal;
  }
};

/// Row of a key whose value is one of the words of `Words`.
template <auto Member, const auto& Words,
          class Record = typename TLMemberTraits<decltype(Member)>::Class>
constexpr TLKey<Record> wordKey(std::string_view word, int place = 0,
                                std::string_view literal = {}) {
  return {word,
          "",
          [](Record& record, TLKeyContext& context) {
            return nextIf(Words.read(context.line, record.*Member));
          },
          place,
          literal,
          [](const Record& record, TLTextSink& sink, std::string_view text) {
            sink << text << Words.literal(record.*Member) << '\n';
          }};
}
