#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <initializer_list>
#include <span>
#include <string_view>
#include <type_traits>
#include <vector>

#include "textio/TLNumbers.h"
#include "textio/TLTextSink.h"
#include "textio/TLTextSource.h"
#include "textio/TLTokenReader.h"
#include "textio/TLTokens.h"

/// What the read loop does after a key's action.
enum class TLKeyResult {
  next,   ///< goes on with the next line
  done,   ///< ends the block, with success
  failed  ///< ends the reading, with 0
};

/// What a key's action has at hand: the line that matched, the stream behind it, the reader.
struct TLKeyContext {
  TLTextSource& source;             ///< Stands behind the line.
  TLTokenReader& reader;            ///< On the same source.
  std::string_view line;            ///< Without its new line.
  std::string_view blockName = {};  ///< the matching row's second word
};

/// One row of a record's format: the word that a line must hold (any token of it, case ignored),
/// a second word that it must hold as well (a block's name beside "tl_begin"; empty for none), and
/// what to do with the line. A key that is written too has its place among the lines of the block,
/// the literal that stands in front of its value and the writer, which puts out the whole line.
template <class Record>
struct TLKey {
  std::string_view word;        ///< In any case.
  std::string_view secondWord;  ///< Empty: one word is enough.
  /// What is done with the line; may read on.
  TLKeyResult (*action)(Record& record, TLKeyContext& context);
  int place = 0;                  ///< order of writing, from 1; 0: only read
  std::string_view literal = {};  ///< With all blanks up to the value.
  /// Null for a row without a place.
  void (*write)(const Record& record, TLTextSink& sink, std::string_view literal) = nullptr;
};

/// Finds the words of a fixed vocabulary, case ignored, in the tokens of a line.
class TLWordIndex {
 public:
  static constexpr int kNone = -1;  ///< For a word that isn't in the vocabulary.

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
  /// Words entered; their numbers run from 0.
  int size() const { return static_cast<int>(words_.size()); }
  /// By number, as they were entered.
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
  /// `recordName` appears in messages about lines that no row matches. For each of `closingNames` a
  /// row is added behind the others: the line "tl_end" with that name ends the block.
  TLKeyTable(std::string_view recordName, std::vector<TLKey<Record>> rows,
             std::initializer_list<std::string_view> closingNames = {});

  /// The row for `line`, or null.
  const TLKey<Record>* match(std::string_view line) const {
    std::array<int, kMostFound> found;
    int count = 0;
    TLTokens tokens(line);
    for (auto token = tokens.next(); !token.empty(); token = tokens.next()) {
      const int word = words_.find(token);
      if (word == TLWordIndex::kNone || holds(found.data(), count, word)) continue;
      if (count == kMostFound) return matchRowByRow(line);
      found[count++] = word;
    }
    return count == 0 ? nullptr : firstRow(found.data(), count);
  }

  /// Writes the keys that have a place from `first` to `last`, in the order of their places.
  void write(const Record& record, TLTextSink& sink, int first = 1, int last = kLastPlace) const {
    for (const std::size_t i : written_) {
      const auto& row = rows_[i];
      if (row.place >= first && row.place <= last) row.write(record, sink, row.literal);
    }
  }

  /// The block's name in messages.
  std::string_view recordName() const { return recordName_; }
  /// First and second words of all rows, each once.
  std::span<const std::string_view> words() const { return words_.words(); }
  /// In the order of testing, those of the closing names last.
  const std::vector<TLKey<Record>>& rows() const { return rows_; }

 private:
  struct Candidate {
    int row;
    int secondWord;
  };
  static constexpr int kMostFound = 64;
  static constexpr int kLastPlace = 1 << 30;

  // For lines that hold more of the table's words than are kept.
  const TLKey<Record>* matchRowByRow(std::string_view line) const {
    for (const auto& row : rows_) {
      if (TLTokenReader::lineHasToken(line, row.word) &&
          (row.secondWord.empty() || TLTokenReader::lineHasToken(line, row.secondWord))) {
        return &row;
      }
    }
    return nullptr;
  }

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
  std::vector<std::size_t> written_;  // rows that have a place, in its order
  TLWordIndex words_;
  std::vector<std::vector<Candidate>> byWord_;
};

/// The one read loop of all records: takes line after line, and gives each to the row of `table`
/// that matches it. Lines that no row matches are passed over in silence. The end of the text ends
/// a block as its closing line does, with success. Comment lines on the way are dropped, or kept in
/// `comments`.
template <class Record>
int readBlock(Record& record, TLTextSource& source, const TLKeyTable<Record>& table,
              std::vector<RWCString>* comments = nullptr) {
  TLTokenReader reader(source);
  while (true) {
    if (comments == nullptr) {
      reader.skipComments();
    } else {
      reader.readComments(*comments);
    }
    TLKeyContext context{source, reader, source.readLine()};
    if (context.line.empty()) return 1;
    const TLKey<Record>* row = table.match(context.line);
    if (row == nullptr) {
      if (source.observer() != nullptr) {
        source.observer()->passedOver(source, context.line, table.recordName(), table.words());
      }
      continue;
    }
    context.blockName = row->secondWord;
    switch (row->action(record, context)) {
      case TLKeyResult::next:
        break;
      case TLKeyResult::done:
        return 1;
      case TLKeyResult::failed:
        return 0;
    }
  }
}

/// The version operation of all blocks: the second token of `line` as a number. When it is missing,
/// prints `failure` on a line and answers 0.
int readVersion(std::string_view line, std::string_view failure, double& version);

/// The result of an action that has read with `good` as its answer (1 or 0).
inline TLKeyResult nextIf(int good) {
  return good != 0 ? TLKeyResult::next : TLKeyResult::failed;
}

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

/// The class and the type of a data member, from a pointer to it.
template <class>
struct TLMemberTraits;
/// For data members.
template <class Owner, class Value>
struct TLMemberTraits<Value Owner::*> {
  using Class = Owner;  ///< Whose member it is.
  using Type = Value;   ///< What it holds.
};

/// The value of a key's line: reals and words by the sink's own formatting, three reals one blank
/// apart.
template <class Value>
void writeValue(TLTextSink& sink, const Value& value) {
  sink << value;
}
/// Three reals, one blank apart.
inline void writeValue(TLTextSink& sink, const std::array<double, 3>& value) {
  sink << value[0] << ' ' << value[1] << ' ' << value[2];
}

/// Reads three reals into one member.
inline int readArray3(TLTokenReader& reader, std::string_view line, std::array<double, 3>& value) {
  return reader.readVector3(line, value[0], value[1], value[2]);
}

/// A compile-time value as a type.
template <auto Value>
struct TLValue {};

/// True when the reader's operation is the one for toggles, which are written as words.
/// (Compared as types: with the sanitizers on, comparing the pointers is no constant expression.)
template <auto Operation>
constexpr bool isToggleOperation() {
  return std::is_same_v<TLValue<Operation>, TLValue<&TLTokenReader::readToggle>>;
}

/// Row of a plain value: its word, the operation and the member it goes to, and where it is
/// written and how (no place: only read).
///   valueKey<&TLUnits::name_, &TLTokenReader::readString>("value_units_name", 2, "  NAME  ")
template <auto Member, auto Operation,
          class Record = typename TLMemberTraits<decltype(Member)>::Class>
constexpr TLKey<Record> valueKey(std::string_view word, int place = 0,
                                 std::string_view literal = {}) {
  return {word,
          "",
          [](Record& record, TLKeyContext& context) {
            if constexpr (std::is_member_function_pointer_v<decltype(Operation)>) {
              return nextIf((context.reader.*Operation)(context.line, record.*Member));
            } else {
              return nextIf(Operation(context.reader, context.line, record.*Member));
            }
          },
          place,
          literal,
          [](const Record& record, TLTextSink& sink, std::string_view text) {
            if constexpr (isToggleOperation<Operation>()) {
              TLTokenReader::writeToggle(sink, record.*Member, text);
            } else {
              sink << text;
              writeValue(sink, record.*Member);
              sink << '\n';
            }
          }};
}

/// Row of the version line: the version operation of a record whose member `Member` holds the
/// number. `Failure`, a character array, is what is printed when the number is missing; the line
/// written is `literal`, which has the number in it.
template <auto Member, const char* Failure,
          class Record = typename TLMemberTraits<decltype(Member)>::Class>
constexpr TLKey<Record> versionKey(int place = 0, std::string_view literal = {}) {
  return {"version",
          "",
          [](Record& record, TLKeyContext& context) {
            return nextIf(readVersion(context.line, Failure, record.*Member));
          },
          place,
          literal,
          [](const Record& /*record*/, TLTextSink& sink, std::string_view text) {
            sink << text << '\n';
          }};
}

template <class Record>
TLKeyTable<Record>::TLKeyTable(std::string_view recordName, std::vector<TLKey<Record>> rows,
                               std::initializer_list<std::string_view> closingNames)
    : recordName_(recordName), rows_(std::move(rows)) {
  for (const auto name : closingNames) rows_.push_back({"tl_end", name, &endBlock<Record>});
  for (std::size_t i = 0; i < rows_.size(); ++i) {
    const auto& row = rows_[i];
    const int first = words_.add(row.word);
    const int second = row.secondWord.empty() ? TLWordIndex::kNone : words_.add(row.secondWord);
    byWord_.resize(words_.size());
    byWord_[first].push_back({static_cast<int>(i), second});
    if (row.place > 0) written_.push_back(i);
  }
  byWord_.resize(words_.size());
  std::stable_sort(written_.begin(), written_.end(), [this](std::size_t a, std::size_t b) {
    return rows_[a].place < rows_[b].place;
  });
}
