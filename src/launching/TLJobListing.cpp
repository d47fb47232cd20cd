#include "launching/TLJobListing.h"

#include <array>
#include <string_view>

#include "textio/TLNumbers.h"
#include "textio/TLTextSource.h"
#include "textio/TLTokens.h"

namespace {

constexpr std::size_t kWords = 5;
constexpr std::int32_t kPbs = 2;
constexpr std::int32_t kLsf = 3;

/// The first words of a line, empty where there are none.
std::array<std::string_view, kWords> wordsOf(std::string_view line) {
  TLTokens tokens(line);
  std::array<std::string_view, kWords> words;
  for (auto& word : words) word = tokens.next();
  return words;
}

/// Where a listing by rows has what, from 0.
struct Columns {
  std::size_t name;
  std::size_t state;
};

TLListedJob lastNamed(std::string_view name, const Columns& columns, TLTextSource& lines) {
  TLListedJob job;
  std::string_view line;
  while (lines.readRawLine(line)) {
    const auto words = wordsOf(line);
    if (words[0] == "job-ID" || words[0].starts_with('-') || words[columns.name] != name) continue;
    job = {integerFrom(words[0]), RWCString(words[columns.state])};
  }
  return job;
}

TLListedJob firstBelowHeader(TLTextSource& lines) {
  std::string_view line;
  while (lines.readRawLine(line)) {
    if (wordsOf(line)[0] != "JOBID" || !lines.readRawLine(line)) continue;
    const auto words = wordsOf(line);
    return {integerFrom(words[0]), RWCString(words[2])};
  }
  return {};
}

}  // namespace

TLListedJob jobInListing(std::int32_t kind, const RWCString& listing, const RWCString& name) {
  TLTextSource lines(listing);
  if (kind == kLsf) return firstBelowHeader(lines);  // which was asked for this name
  if (name.empty()) return {};  // a row without a name must not pass for a job that has none
  return lastNamed(name, kind == kPbs ? Columns{1, 4} : Columns{2, 4}, lines);
}
