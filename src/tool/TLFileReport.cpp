#include "tool/TLFileReport.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

#include "textio/TLNumbers.h"
#include "textio/TLTextSource.h"
#include "textio/TLTokens.h"

namespace {

// How many letters have to be put in, left out, changed, or swapped with their neighbour; case
// ignored.
std::size_t distance(std::string_view a, std::string_view b) {
  const auto same = [&](std::size_t i, std::size_t j) {
    return lowerCase(a[i - 1]) == lowerCase(b[j - 1]);
  };
  std::vector<std::size_t> before;
  std::vector<std::size_t> last;
  std::vector<std::size_t> row(b.size() + 1);
  for (std::size_t j = 0; j <= b.size(); ++j) row[j] = j;
  for (std::size_t i = 1; i <= a.size(); ++i) {
    before = std::exchange(last, row);
    row[0] = i;
    for (std::size_t j = 1; j <= b.size(); ++j) {
      row[j] = std::min({last[j] + 1, row[j - 1] + 1, last[j - 1] + (same(i, j) ? 0 : 1)});
      if (i > 1 && j > 1 && same(i, j - 1) && same(i - 1, j)) {
        row[j] = std::min(row[j], before[j - 2] + 1);
      }
    }
  }
  return row[b.size()];
}

/// What tells a line from others of its record, in small letters: its first word, and the name
/// behind it where it opens or closes a block.
std::string keyOf(std::string_view line) {
  TLTokens tokens(line);
  std::string text(tokens.next());
  if (equalIgnoringCase(text, "tl_begin") || equalIgnoringCase(text, "tl_end")) {
    text.append(" ").append(tokens.next());
  }
  std::ranges::transform(text, text.begin(), [](char c) { return lowerCase(c); });
  return text;
}

}  // namespace

std::string_view nearestWord(std::string_view word, std::span<const std::string_view> known) {
  std::string_view best;
  std::size_t bestDistance = std::max<std::size_t>(1, word.size() / 3) + 1;
  for (const auto candidate : known) {
    const std::size_t d = distance(word, candidate);
    if (d < bestDistance) {
      bestDistance = d;
      best = candidate;
    }
  }
  return best;
}

TLFileReport::TLFileReport(std::string fileName) : fileName_(std::move(fileName)) {}

void TLFileReport::addAt(const TLTextSource& source, std::string_view part, bool isFault,
                         std::string message) {
  const std::string_view whole = source.wholeLine(part);
  TLFileRemark remark;
  remark.isFault = isFault;
  remark.line = source.lineNumber(part);
  remark.column = whole.empty() ? 1 : static_cast<std::size_t>(part.data() - whole.data()) + 1;
  remark.text = whole;
  remark.message = std::move(message);
  remarks_.push_back(std::move(remark));
}

void TLFileReport::passedOver(const TLTextSource& source, std::string_view line,
                              std::string_view record, std::span<const std::string_view> words) {
  TLTokens tokens(line);
  const std::string_view key = tokens.next();
  // The line that opens a task file, which its reader needn't see.
  if (record == "task" && equalIgnoringCase(key, "tl_begin") &&
      equalIgnoringCase(tokens.next(), record)) {
    return;
  }
  if (allowed_.contains(keyOf(line))) return;
  // A stray closing line belongs to a block that another program of the suite knows.
  std::string message = fmt::format("no key of {} on this line: it is passed over", record);
  const std::string_view meant = nearestWord(key, words);
  if (!meant.empty()) message += fmt::format(" (was \"{}\" meant?)", meant);
  addAt(source, key, false, std::move(message));
}

void TLFileReport::allowWritten(std::string_view written) {
  while (!written.empty()) {
    const std::string_view line = written.substr(0, written.find('\n'));
    written.remove_prefix(std::min(line.size() + 1, written.size()));
    allowed_.insert(keyOf(line));
  }
}

void TLFileReport::skippedBlock(const TLTextSource& source, std::string_view line,
                                std::string_view record) {
  const std::string place = record.empty() ? std::string() : fmt::format(" in {}", record);
  addAt(source, line, false, fmt::format("unknown block{}: it is skipped", place));
}

void TLFileReport::badLine(const TLTextSource& source, std::string_view line,
                           std::string_view expected) {
  addAt(source, line, true, std::string(expected));
}

void TLFileReport::stoppedAt(const TLTextSource& source, std::string_view console) {
  const auto lastLine = [](std::string_view text) {
    while (!text.empty() && (text.back() == '\n' || text.back() == ' ')) text.remove_suffix(1);
    text.remove_prefix(text.rfind('\n') + 1);
    text.remove_prefix(std::min(text.find_first_not_of(" \t\r"), text.size()));
    return text;
  };
  const std::string_view reason = lastLine(console);
  addAt(source, lastLine(source.text().substr(0, source.position())), true,
        reason.empty() ? "this is not understood" : std::string(reason));
}

void TLFileReport::add(bool isFault, std::string message) {
  TLFileRemark remark;
  remark.isFault = isFault;
  remark.message = std::move(message);
  remarks_.push_back(std::move(remark));
}

bool TLFileReport::hasFault() const {
  return std::any_of(remarks_.begin(), remarks_.end(),
                     [](const TLFileRemark& remark) { return remark.isFault; });
}

std::string TLFileReport::text() const {
  std::string text;
  for (const auto& remark : remarks_) {
    const char* kind = remark.isFault ? "fault" : "warning";
    if (remark.line == 0) {
      text += fmt::format("{}: {}: {}\n", fileName_, kind, remark.message);
      continue;
    }
    std::string indent = remark.text.substr(0, remark.column - 1);
    std::replace_if(
        indent.begin(), indent.end(), [](char c) { return c != '\t'; }, ' ');
    text += fmt::format("{}:{}:{}: {}: {}\n  {}\n  {}^\n", fileName_, remark.line, remark.column,
                        kind, remark.message, remark.text, indent);
  }
  return text;
}
