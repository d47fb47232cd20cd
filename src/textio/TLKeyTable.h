#pragma once

#include <array>
#include <cstdint>
#include <initializer_list>
#include <span>
#include <string_view>
#include <type_traits>
#include <vector>

#include "textio/TLNumbers.h"
#include "textio/TLTextSource.h"
#include "textio/TLTokenReader.h"
#include "textio/TLTokens.h"

/// What the read loop does after a key's action.
enum class TLKeyResult { next, done, failed };

/// What a key's action has at hand: the line that matched, the stream behind it, the reader.
struct TLKeyContext {
  TLTextSource& source;
  TLTokenReader& reader;
  std::string_view line;
};

/// One row of a record's format: the word that a line must hold (any token of it, case ignored),
/// a second word that it must hold as well (a block's name beside "tl_begin"; empty for none), and
/// what to do with the line.
template <class Record>
struct TLKey {
  std::string_view word;
  std::string_view secondWord;
  TLKeyResult (*action)(Record& record, TLKeyContext& context);
};

/// Finds the words of a fixed vocabulary, case ignored, in the tokens of a line.
class TLWordIndex {
 public:
  static constexpr int kNone = -1;

  /// Number of `word`, which is entered when it is new.
  int add(std::string_view word);
  /// Number of `word`, or kNone.
  int find(std::string_view word) const {
    if (word.size() >= kLongest || !lengths_[word.size()] ||
        !firstLetters_[static_cast<unsigned char>(word.front())]) {
      return kNone;
    }
    return lookUp(word);
  }
  int size() const { return static_cast<int>(words_.size()); }
  std::span<const std::string_view> words() const { return words_; }

 private:
  static constexpr std::size_t kLongest = 128;
  static std::uint32_t hash(std::string_view word);
  int lookUp(std::string_view word) const;
  void rebuild();

  std::vector<std::string_view> words_;
  std::vector<int> slots_;  // hash table of word numbers, a power of two in size
  std::array<bool, kLongest> lengths_{};
  std::array<bool, 256> firstLetters_{};
};

/// The keys of a record's block, in the order in which they are tested: the first row whose words
/// are all on the line wins. Words must outlive the table (literals). Looking a line up costs one
/// pass over its tokens, whatever the number of rows.
template <class Record>
class TLKeyTable {
 public:
  /// `recordName` appears in messages about lines that no row matches.
  TLKeyTable(std::string_view recordName, std::initializer_list<TLKey<Record>> rows)
      : recordName_(recordName), rows_(rows) {
    for (std::size_t i = 0; i < rows_.size(); ++i) {
      const auto& row = rows_[i];
      const int first = words_.add(row.word);
      const int second = row.secondWord.empty() ? TLWordIndex::kNone : words_.add(row.secondWord);
      byWord_.resize(words_.size());
      byWord_[first].push_back({static_cast<int>(i), second});
    }
    byWord_.resize(words_.size());
  }

  /// The row for `line`, or null.
  const TLKey<Record>* match(std::string_view line) const {
    std::array<int, kMostFound> found;
    int count = 0;
    TLTokens tokens(line);
    for (auto token = tokens.next(); !token.empty() && count < kMostFound; token = tokens.next()) {
      const int word = words_.find(token);
      if (word != TLWordIndex::kNone) found[count++] = word;
    }
    return count == 0 ? nullptr : firstRow(found.data(), count);
  }

  std::string_view recordName() const { return recordName_; }
  std::span<const std::string_view> words() const { return words_.words(); }
  const std::vector<TLKey<Record>>& rows() const { return rows_; }

 private:
  struct Candidate {
    int row;
    int secondWord;
  };
  static constexpr int kMostFound = 64;

  const TLKey<Record>* firstRow(const int* found, int count) const {
    int best = static_cast<int>(rows_.size());
    for (int i = 0; i < count; ++i) {
      for (const auto& candidate : byWord_[found[i]]) {
        if (candidate.row >= best) break;
        if (candidate.secondWord == TLWordIndex::kNone ||
            holds(found, count, candidate.secondWord)) {
          best = candidate.row;
          break;
        }
      }
    }
    return best == static_cast<int>(rows_.size()) ? nullptr : &rows_[best];
  }

  static bool holds(const int* found, int count, int word) {
    for (int i = 0; i < count; ++i) {
      if (found[i] == word) return true;
    }
    return false;
  }

  std::string_view recordName_;
  std::vector<TLKey<Record>> rows_;
  TLWordIndex words_;
  std::vector<std::vector<Candidate>> byWord_;
};

/// The one read loop of all records: takes line after line, and gives each to the row of `table`
/// that matches it. Lines that no row matches are passed over in silence. The end of the text ends
/// a block as its closing line does, with success.
template <class Record>
int readBlock(Record& record, TLTextSource& source, const TLKeyTable<Record>& table) {
  TLTokenReader reader(source);
  while (true) {
    reader.skipComments();
    TLKeyContext context{source, reader, source.readLine()};
    if (context.line.empty()) return 1;
    const TLKey<Record>* row = table.match(context.line);
    if (row == nullptr) {
      if (source.observer() != nullptr) {
        source.observer()->passedOver(source, context.line, table.recordName(), table.words());
      }
      continue;
    }
    switch (row->action(record, context)) {
      case TLKeyResult::next: break;
      case TLKeyResult::done: return 1;
      case TLKeyResult::failed: return 0;
    }
  }
}

inline TLKeyResult nextIf(int good) { return good != 0 ? TLKeyResult::next : TLKeyResult::failed; }

/// Action of a value row: one typed operation of the reader into one member.
///   {"status", "", &readMember<&TLSubTask::status_, &TLTokenReader::readInteger>}
template <auto Member, auto Operation, class Record>
TLKeyResult readMember(Record& record, TLKeyContext& context) {
  return nextIf((context.reader.*Operation)(context.line, record.*Member));
}

/// Action of the closing line.
template <class Record>
TLKeyResult endBlock(Record& /*record*/, TLKeyContext& /*context*/) {
  return TLKeyResult::done;
}

/// Action for the opening line of a block that the record doesn't know: skips it.
template <class Record>
TLKeyResult skipBlock(Record& /*record*/, TLKeyContext& context) {
  if (context.source.observer() != nullptr) {
    context.source.observer()->skippedBlock(context.source, context.line, "");
  }
  context.reader.skipToBlockEnd(context.line);
  return TLKeyResult::next;
}
