#include "project/TLKeptBlock.h"

#include <algorithm>
#include <iterator>

#include "platform/TLConsole.h"
#include "textio/TLNumbers.h"
#include "textio/TLTokenReader.h"
#include "textio/TLTokens.h"

namespace {

/// Blocks within kept blocks whose version line is looked at, with what is printed for a bad one.
struct InnerHeader {
  std::string_view block;
  std::string_view failureText;
};
constexpr InnerHeader kInnerHeaders[] = {
    {"tlquantity", " wrong TLOutput header: cannot determine TLOutput version"},
    {"chemistry_species", " wrong chemistry_species header: cannot determine face version"},
    {"chemistry_reaction", " wrong chemistry_reaction header: cannot determine face version"},
    {"patchgroup", " wrong ANSYS patchgroup header: cannot determine patchgroup version"},
    {"NonDeterministicData",
     " wrong TLNonDeterministicData header: cannot determine TLNonDeterministicData version"},
    {"physical_entry", " wrong physical entry header: cannot determine physical entry version"},
};

bool isWhite(char c) {
  return c == ' ' || (c >= '\t' && c <= '\r');
}

bool isDataLine(std::string_view line) {
  const auto first = std::find_if_not(line.begin(), line.end(), isWhite);
  return first != line.end() && *first != '#' && *first != '!' && *first != '*';
}

/// Follows the lines of one block: which belong to it, which to blocks within it, where it ends.
class BlockWalk {
 public:
  enum class Line { passive, own, inner, closing };

  explicit BlockWalk(const TLKeptForm& form) : form_(form) {}

  Line take(std::string_view line) {
    if (!isDataLine(line)) return Line::passive;
    TLTokens tokens(line);
    const auto first = tokens.next();
    if (equalIgnoringCase(first, "tl_begin")) {
      within_.push_back(tokens.next());
      return Line::passive;
    }
    if (TLTokenReader::lineHasToken(line, "tl_end")) return close(line, tokens.next());
    return within_.empty() ? Line::own : Line::inner;
  }

  /// Names of the blocks within that are still open and that this one's closing line would close
  /// first, from the innermost on.
  std::vector<std::string_view> openOfThisName() const {
    std::vector<std::string_view> open;
    std::copy_if(
        within_.rbegin(), within_.rend(), std::back_inserter(open), [this](std::string_view name) {
          return std::any_of(form_.names.begin(), form_.names.end(),
                             [name](std::string_view own) { return equalIgnoringCase(own, name); });
        });
    return open;
  }

  /// Name of the innermost block within.
  std::string_view innermost() const { return within_.back(); }

 private:
  bool closesThis(std::string_view line) const {
    return std::any_of(form_.names.begin(), form_.names.end(), [&](std::string_view name) {
      return TLTokenReader::lineHasToken(line, name);
    });
  }

  Line close(std::string_view line, std::string_view name) {
    const auto open = std::find_if(within_.rbegin(), within_.rend(), [&](std::string_view other) {
      return equalIgnoringCase(other, name);
    });
    if (open != within_.rend()) {
      within_.erase(open.base() - 1, within_.end());
      return Line::passive;
    }
    if (closesThis(line)) return Line::closing;
    if (!within_.empty()) within_.pop_back();
    return Line::passive;
  }

  const TLKeptForm& form_;
  std::vector<std::string_view> within_;
};

/// Lines of a text with the offset of each.
class Lines {
 public:
  explicit Lines(std::string_view text) : text_(text) {}
  bool next(std::string_view& line) {
    if (end_ >= text_.size()) return false;
    start_ = end_;
    const std::size_t feed = text_.find('\n', start_);
    end_ = feed == std::string_view::npos ? text_.size() : feed + 1;
    line = text_.substr(start_, end_ - start_ - (feed == std::string_view::npos ? 0 : 1));
    return true;
  }
  std::size_t start() const { return start_; }
  std::size_t end() const { return end_; }  ///< behind the line and its new line

 private:
  std::string_view text_;
  std::size_t start_ = 0;
  std::size_t end_ = 0;
};

std::string_view firstToken(std::string_view line) {
  return TLTokens(line).next();
}

bool namesField(std::string_view line, const TLKeptField& field) {
  const auto key = firstToken(line);
  return std::any_of(field.keys.begin(), field.keys.end(),
                     [&](std::string_view known) { return equalIgnoringCase(key, known); });
}

/// All behind the first token, outer white space cut: where a value stands in its line.
std::string_view valueOf(std::string_view line) {
  TLTokens tokens(line);
  tokens.next();
  std::string_view value = tokens.rest();
  while (!value.empty() && isWhite(value.front())) value.remove_prefix(1);
  while (!value.empty() && isWhite(value.back())) value.remove_suffix(1);
  return value;
}

// A line as all records see theirs.
std::string_view withoutIndent(std::string_view line) {
  while (!line.empty() && isWhite(line.front())) line.remove_prefix(1);
  return line;
}

int checkField(TLTextSource& source, std::string_view line, const TLKeptField& field) {
  line = withoutIndent(line);
  TLTokenReader reader(source);
  std::int32_t whole = 0;
  double real = 0.0;
  RWCString word;
  switch (field.kind) {
    case TLKeptValue::integer:
      return reader.readInteger(line, whole);
    case TLKeptValue::real:
      return reader.readReal(line, real);
    case TLKeptValue::word:
      return reader.readString(line, word);
    case TLKeptValue::text:
      return 1;
  }
  return 1;
}

bool isVersionLine(std::string_view line) {
  return equalIgnoringCase(firstToken(line), "version");
}

int refuse(TLTextSource& source, std::string_view line, std::string_view text) {
  console() << text << '\n' << std::flush;
  if (source.observer() != nullptr) {
    source.observer()->badLine(source, withoutIndent(line), "version <number>");
  }
  return 0;
}

std::string_view innerFailure(std::string_view block) {
  for (const auto& header : kInnerHeaders) {
    if (equalIgnoringCase(header.block, block)) return header.failureText;
  }
  return {};
}

}  // namespace

/// A field's line in the body: from `start` to `end` (its new line included), its value within.
struct TLKeptBlock::Place {
  bool found = false;
  std::size_t start = 0;
  std::size_t end = 0;
  std::string_view line;
  std::string_view value;
};

TLKeptBlock::TLKeptBlock(const TLKeptForm& form)
    : form_(&form), version_(realFrom(form.writtenVersion)), body_(form.newBody) {}

int TLKeptBlock::read(TLTextSource& source) {
  const std::size_t begin = source.position();
  std::size_t end = begin;
  BlockWalk walk(*form_);
  double version = realFrom(form_->writtenVersion);
  bool versionSeen = false;
  std::string_view line;
  for (bool closed = false; !closed && source.readRawLine(line);) {
    switch (walk.take(line)) {
      case BlockWalk::Line::passive:
        break;
      case BlockWalk::Line::closing:
        closed = true;
        continue;
      case BlockWalk::Line::inner: {
        if (!isVersionLine(line) || !valueOf(line).empty()) break;
        const auto text = innerFailure(walk.innermost());
        if (!text.empty()) return refuse(source, line, text);
        break;
      }
      case BlockWalk::Line::own: {
        if (!versionSeen && isVersionLine(line)) {
          const auto value = valueOf(line);
          if (value.empty()) return refuse(source, line, form_->failureText);
          version = realFrom(value);
          versionSeen = true;
          break;
        }
        for (const auto& field : form_->fields) {
          if (namesField(line, field) && checkField(source, line, field) == 0) return 0;
        }
        break;
      }
    }
    end = source.position();
  }
  version_ = version;
  body_.assign(source.text().substr(begin, end - begin));
  if (!body_.empty() && body_.back() != '\n') body_ += '\n';
  // Where the text has ended, the line that will be written behind the body must close this block.
  for (const auto name : walk.openOfThisName()) body_.append("TL_END ").append(name) += '\n';
  putVersion();
  return 1;
}

void TLKeptBlock::putVersion() {
  if (form_->writtenVersion.empty() || version_ == realFrom(form_->writtenVersion)) return;
  BlockWalk walk(*form_);
  Lines lines(body_);
  std::string_view line;
  while (lines.next(line)) {
    if (walk.take(line) != BlockWalk::Line::own || !isVersionLine(line)) continue;
    TLTokens value(valueOf(line));
    const auto number = value.next();
    body_.replace(static_cast<std::size_t>(number.data() - body_.data()), number.size(),
                  form_->writtenVersion);
    return;
  }
}

TLKeptBlock::Place TLKeptBlock::find(std::size_t field) const {
  BlockWalk walk(*form_);
  Lines lines(body_);
  std::string_view line;
  while (lines.next(line)) {
    if (walk.take(line) != BlockWalk::Line::own) continue;
    if (namesField(line, form_->fields[field])) {
      return {true, lines.start(), lines.end(), line, valueOf(line)};
    }
  }
  return {};
}

bool TLKeptBlock::hasField(std::size_t field) const {
  return find(field).found;
}

RWCString TLKeptBlock::text(std::size_t field) const {
  const auto place = find(field);
  if (form_->fields[field].kind == TLKeptValue::word) {
    return RWCString(firstToken(place.value));
  }
  return RWCString(place.value);
}

std::int32_t TLKeptBlock::integer(std::size_t field, std::int32_t absent) const {
  const auto place = find(field);
  return place.found ? integerFrom(place.value) : absent;
}

void TLKeptBlock::setText(std::size_t field, std::string_view value) {
  const auto place = find(field);
  if (!place.found) {
    body_.append(form_->fields[field].literal).append(value) += '\n';
    return;
  }
  std::string_view old = place.value;
  if (form_->fields[field].kind != TLKeptValue::text) old = firstToken(old);
  if (old == value) return;
  if (old.empty()) {
    body_.insert(place.start + place.line.size(), " " + std::string(value));
    return;
  }
  body_.replace(static_cast<std::size_t>(old.data() - body_.data()), old.size(), value);
}

void TLKeptBlock::dropField(std::size_t field) {
  const auto place = find(field);
  if (place.found) body_.erase(place.start, place.end - place.start);
}

std::vector<RWCString> TLKeptBlock::innerValues(std::string_view block,
                                                std::string_view key) const {
  std::vector<RWCString> values;
  BlockWalk walk(*form_);
  Lines lines(body_);
  std::string_view line;
  while (lines.next(line)) {
    if (walk.take(line) != BlockWalk::Line::inner) continue;
    if (equalIgnoringCase(walk.innermost(), block) && equalIgnoringCase(firstToken(line), key)) {
      values.emplace_back(valueOf(line));
    }
  }
  return values;
}
