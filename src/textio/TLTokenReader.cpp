#include "textio/TLTokenReader.h"

#include <algorithm>
#include <boost/container/small_vector.hpp>

#include "platform/TLConsole.h"
#include "textio/TLNumbers.h"
#include "textio/TLTokens.h"

/// What a refused line is answered with. The wording, its repeated numbers included, is fixed.
struct TLTokenReader::Form {
  const char* label;
  const char* expected;
};

namespace {

bool isWhite(char c) {
  return c == ' ' || (c >= '\t' && c <= '\r');
}

// The tokens of a line; of all but very long ones without taking memory.
using Words = boost::container::small_vector<std::string_view, 32>;

Words split(std::string_view line) {
  Words words;
  TLTokens tokens(line);
  for (auto word = tokens.next(); !word.empty(); word = tokens.next()) words.push_back(word);
  return words;
}

// Words `first` to `last` (not included) joined by one blank each.
RWCString joined(const Words& words, std::size_t first, std::size_t last) {
  RWCString text;
  for (std::size_t i = first; i < last; ++i) {
    if (i > first) text += ' ';
    text += words[i];
  }
  return text;
}

std::string_view trimmed(std::string_view text) {
  const auto first = text.find_first_not_of(" \t");
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

float floatFrom(std::string_view word) {
  return static_cast<float>(realFrom(word));
}

}  // namespace

// Stream operations --------------------------------------------------------------------------

void TLTokenReader::skipWhitespace() {
  if (stream_ != nullptr) stream_->skipWhitespace();
}

int TLTokenReader::isCommentStart() const {
  const int c = stream_ == nullptr ? -1 : stream_->peek();
  return c == '#' || c == '!' || c == '*' ? 1 : 0;
}

void TLTokenReader::skipCommentLine() {
  if (isCommentStart() != 0) stream_->skipLine();
}

void TLTokenReader::skipComments() {
  skipWhitespace();
  while (isCommentStart() != 0) {
    stream_->skipLine();
    skipWhitespace();
  }
}

void TLTokenReader::readComment(RWCString& text) {
  text.clear();
  if (isCommentStart() == 0) return;
  stream_->get();
  const std::size_t before = stream_->position();
  std::string_view line;
  stream_->readRawLine(line);
  text = line;
  if (stream_->position() > before + line.size()) text += '\n';
}

void TLTokenReader::readComments(std::vector<RWCString>& list) {
  skipWhitespace();
  while (isCommentStart() != 0) {
    readComment(list.emplace_back());
    skipWhitespace();
  }
}

int TLTokenReader::skipToBlockEnd(std::string_view line) {
  TLTokens opening(line);
  opening.next();
  const std::string_view target = opening.next();
  if (target.empty()) return 0;
  if (stream_ == nullptr) return 1;
  // A text that doesn't end in a new line ends with its last line, any other one behind it.
  while (!stream_->atEnd() || stream_->text().empty() || stream_->text().back() == '\n') {
    const std::string_view candidate = stream_->readLine();
    if (candidate.empty()) return 0;
    TLTokens tokens(candidate);
    tokens.next();
    if (equalIgnoringCase(tokens.next(), target)) return 1;
  }
  return 1;
}

// Key tests ----------------------------------------------------------------------------------

void TLTokenReader::initFastToken(std::string_view line) {
  fastTokens_.clear();
  for (const auto word : split(line)) fastTokens_.emplace_back(word);
  fastTokensReady_ = true;
}

bool TLTokenReader::isFastToken(std::string_view word) const {
  if (!fastTokensReady_) {
    console() << "Error  'initFastToken' not called\n" << std::flush;
    return false;
  }
  return std::any_of(fastTokens_.begin(), fastTokens_.end(),
                     [&](const RWCString& token) { return equalIgnoringCase(token, word); });
}

bool TLTokenReader::lineHasToken(std::string_view line, std::string_view word) {
  TLTokens tokens(line);
  for (auto token = tokens.next(); !token.empty(); token = tokens.next()) {
    if (equalIgnoringCase(token, word)) return true;
  }
  return false;
}

int TLTokenReader::countTokens(std::string_view line) {
  TLTokens tokens(line);
  int count = 0;
  while (!tokens.next().empty()) ++count;
  return count;
}

bool TLTokenReader::sameTokens(std::string_view lineA, std::string_view lineB) {
  TLTokens a(lineA);
  TLTokens b(lineB);
  while (true) {
    const auto wordA = a.next();
    if (wordA != b.next()) return false;
    if (wordA.empty()) return true;
  }
}

// Failures -----------------------------------------------------------------------------------

void TLTokenReader::recordError(std::string_view line, RWCString expected) {
  errorLine_ = "line" + std::to_string(lineNumber_) + ": wrong format";
  errorRead_ = "read:     " + RWCString(line);
  errorExpected_ = std::move(expected);
  good_ = 0;
  if (stream_ != nullptr && stream_->observer() != nullptr) {
    stream_->observer()->badLine(*stream_, line, errorExpected_);
  }
}

int TLTokenReader::fail(const Form& form, std::string_view line) {
  const RWCString key(TLTokens(line).next());
  if (form.label == nullptr) {
    console() << key << " wrong format\n" << std::flush;
  } else {
    console() << form.label << line << '\n' << std::flush;
  }
  recordError(line, "expected: " + key + form.expected);
  return 0;
}

int TLTokenReader::failQuoted(std::string_view line, const char* what, int number,
                              RWCString expected) {
  console() << "wrong format for '" << line << "': missing " << what << " single quote for value #"
            << number << '\n'
            << std::flush;
  recordError(line, std::move(expected));
  return 0;
}

// Fixed forms --------------------------------------------------------------------------------

template <std::size_t N>
bool TLTokenReader::take(std::string_view line, const Form& form, std::string_view (&values)[N]) {
  TLTokens tokens(line);
  tokens.next();
  for (auto& value : values) value = tokens.next();
  if (!values[N - 1].empty()) return true;
  fail(form, line);
  return false;
}

int TLTokenReader::readToggle(std::string_view line, std::int32_t& value) {
  std::string_view v[1];
  if (!take(line, {nullptr, " togglevalue (yes or no)"}, v)) return 0;
  value = v[0] == "yes" || v[0] == "YES" ? 1 : 0;
  return 1;
}

int TLTokenReader::readInteger(std::string_view line, std::int32_t& value) {
  std::string_view v[1];
  if (!take(line, {"  wrong format for4: ", " <integer value> "}, v)) return 0;
  value = integerFrom(v[0]);
  return 1;
}

int TLTokenReader::readFlag(std::string_view line, bool& value) {
  std::int32_t number = 0;
  if (readInteger(line, number) == 0) return 0;
  value = number != 0;
  return 1;
}

int TLTokenReader::readIntegers2(std::string_view line, std::int32_t& a, std::int32_t& b) {
  std::string_view v[2];
  if (!take(line, {"  wrong format for4: ", " <integer value>  <integer value> "}, v)) return 0;
  a = integerFrom(v[0]);
  b = integerFrom(v[1]);
  return 1;
}

int TLTokenReader::readIntegers3(std::string_view line, std::int32_t& a, std::int32_t& b,
                                 std::int32_t& c) {
  std::string_view v[3];
  if (!take(line, {"  wrong format for8: ", " <integer value> <integer value> <integer value>"},
            v)) {
    return 0;
  }
  a = integerFrom(v[0]);
  b = integerFrom(v[1]);
  c = integerFrom(v[2]);
  return 1;
}

int TLTokenReader::readIntegerPair(std::string_view line, std::int32_t& a, std::int32_t& b) {
  std::string_view v[2];
  if (!take(line, {"  wrong format for9: ", " <integer value> <integer value> <integer value>"},
            v)) {
    return 0;
  }
  a = integerFrom(v[0]);
  b = integerFrom(v[1]);
  return 1;
}

int TLTokenReader::readIntegerReal(std::string_view line, std::int32_t& a, double& b) {
  std::string_view v[2];
  if (!take(line, {"  wrong format for9: ", " <integer value>  <double value> "}, v)) return 0;
  a = integerFrom(v[0]);
  b = realFrom(v[1]);
  return 1;
}

int TLTokenReader::readCountedReals(std::string_view line, std::vector<double>& list) {
  TLTokens tokens(line);
  tokens.next();
  const int count = integerFrom(tokens.next());
  for (int i = 0; i < count; ++i) {
    const auto word = tokens.next();
    if (word.empty()) {
      list.clear();
      return 0;
    }
    list.push_back(realFrom(word));
  }
  return 1;
}

int TLTokenReader::readFloats4(std::string_view line, float& a, float& b, float& c, float& d) {
  std::string_view v[4];
  if (!take(
          line,
          {"  wrong format for13: ", " <float value>  <float value>  <float value> <float value>"},
          v)) {
    return 0;
  }
  a = floatFrom(v[0]);
  b = floatFrom(v[1]);
  c = floatFrom(v[2]);
  d = floatFrom(v[3]);
  return 1;
}

int TLTokenReader::readIntegers2Real(std::string_view line, std::int32_t& a, std::int32_t& b,
                                     double& c) {
  std::string_view v[3];
  if (!take(line, {"  wrong format for14: ", " <integer value>  <integer value> "}, v)) return 0;
  a = integerFrom(v[0]);
  b = integerFrom(v[1]);
  c = realFrom(v[2]);
  return 1;
}

int TLTokenReader::readReal(std::string_view line, double& value) {
  std::string_view v[1];
  if (!take(line, {"  wrong format for36: ", " <float>"}, v)) return 0;
  value = realFrom(v[0]);
  return 1;
}

int TLTokenReader::readFloat(std::string_view line, float& value) {
  double real = 0.0;
  if (readReal(line, real) == 0) return 0;
  value = static_cast<float>(real);
  return 1;
}

int TLTokenReader::readVector3(std::string_view line, double& x, double& y, double& z) {
  std::string_view v[3];
  if (!take(line, {"  wrong format for43:", " <float> <float> <float>"}, v)) return 0;
  x = realFrom(v[0]);
  y = realFrom(v[1]);
  z = realFrom(v[2]);
  return 1;
}

int TLTokenReader::readVector3Pair(std::string_view line, double (&a)[3], double (&b)[3]) {
  std::string_view v[6];
  if (!take(line, {"  wrong format for44:", " <float> <float> <float>"}, v)) return 0;
  for (int i = 0; i < 3; ++i) {
    a[i] = realFrom(v[i]);
    b[i] = realFrom(v[i + 3]);
  }
  return 1;
}

// Strings and names --------------------------------------------------------------------------

int TLTokenReader::readStrings(std::string_view line, RWCString& text) {
  TLTokens tokens(line);
  if (tokens.next().empty()) return fail({"  wrong format for15: ", " <strings> "}, line);
  text = trimmed(tokens.rest());
  return 1;
}

int TLTokenReader::readString(std::string_view line, RWCString& text) {
  std::string_view v[1];
  if (!take(line, {"  wrong format for16: ", " <string> "}, v)) return 0;
  text = v[0];
  return 1;
}

int TLTokenReader::readStringInteger(std::string_view line, RWCString& text, std::int32_t& value) {
  std::string_view v[2];
  if (!take(line, {"  wrong format for19: ", " <string> <integer>"}, v)) return 0;
  text = v[0];
  value = integerFrom(v[1]);
  return 1;
}

int TLTokenReader::readStringPair(std::string_view line, RWCString& a, RWCString& b) {
  std::string_view v[2];
  if (!take(line, {"  wrong format for29: ", " <string> <string>"}, v)) return 0;
  a = v[0];
  b = v[1];
  return 1;
}

int TLTokenReader::readNameInteger(std::string_view line, RWCString& name, std::int32_t& value) {
  const auto words = split(line);
  if (words.size() < 2) return fail({"  wrong format for21: ", " <string> <integer>"}, line);
  name = joined(words, 1, std::max<std::size_t>(2, words.size() - 1));
  value = integerFrom(words.back());
  return 1;
}

int TLTokenReader::readNameReal(std::string_view line, RWCString& name, double& value) {
  const auto words = split(line);
  if (words.size() < 2) return fail({"  wrong format for23: ", " <string> <integer>"}, line);
  name = joined(words, 1, std::max<std::size_t>(2, words.size() - 1));
  value = realFrom(words.back());
  return 1;
}

int TLTokenReader::readIntegerName(std::string_view line, std::int32_t& value, RWCString& name) {
  const auto words = split(line);
  if (words.size() < 2) return fail({"  wrong format for25: ", " <string> <integer>"}, line);
  value = integerFrom(words[1]);
  name = joined(words, 2, words.size());
  return 1;
}

int TLTokenReader::readStringName(std::string_view line, RWCString& text, RWCString& name) {
  const auto words = split(line);
  if (words.size() < 2) return fail({"  wrong format for27: ", " <string> <integer>"}, line);
  text = words[1];
  name = joined(words, 2, words.size());
  return 1;
}

// The numbers are the last three tokens, whatever they are; with three or four tokens that takes
// in the name, or even the key.
int TLTokenReader::readNameVector(std::string_view line, RWCString& name, double& x, double& y,
                                  double& z) {
  const auto words = split(line);
  const std::size_t count = words.size();
  if (count < 3) {
    return fail({"  wrong format for32: ", " <string> <float> <float> <float>"}, line);
  }
  name = joined(words, 1, std::max<std::size_t>(2, count - 3));
  x = realFrom(words[count - 3]);
  y = realFrom(words[count - 2]);
  z = realFrom(words[count - 1]);
  return 1;
}

int TLTokenReader::readNameIndices(std::string_view line, RWCString& name, std::int32_t& i,
                                   std::int32_t& j, std::int32_t& k) {
  const auto words = split(line);
  const std::size_t count = words.size();
  if (count < 3) {
    return fail({"  wrong format for34: ", " <string> <integer> <integer> <integer>"}, line);
  }
  name = joined(words, 1, std::max<std::size_t>(2, count - 3));
  i = integerFrom(words[count - 3]);
  j = integerFrom(words[count - 2]);
  k = integerFrom(words[count - 1]);
  return 1;
}

int TLTokenReader::readQuotedStrings(std::vector<RWCString>& results, int count,
                                     std::string_view line) {
  std::size_t at = 0;
  const auto skip = [&](bool white) {
    while (at < line.size() && isWhite(line[at]) == white) ++at;
  };
  skip(true);
  skip(false);
  skip(true);
  if (count == 1) {
    std::string_view rest = line.substr(at);
    while (!rest.empty() && isWhite(rest.back())) rest.remove_suffix(1);
    const bool quoted = rest.size() >= 2 && rest.front() == '\'' && rest.back() == '\'';
    results.assign(1, RWCString(quoted ? rest.substr(1, rest.size() - 2) : rest));
    return 1;
  }
  for (int number = 1; number <= count; ++number) {
    if (at >= line.size() || line[at] != '\'') {
      return failQuoted(line, "starting", number,
                        "expected: " + RWCString(line.substr(0, at)) + "'....");
    }
    const std::size_t end = line.find('\'', at + 1);
    if (end == std::string_view::npos) {
      return failQuoted(line, "ending", number, "expected: " + RWCString(line) + "' ....");
    }
    if (results.size() < static_cast<std::size_t>(number)) results.resize(number);
    results[number - 1] = line.substr(at + 1, end - at - 1);
    at = end + 1;
    skip(true);
  }
  return 1;
}

// Arrays -------------------------------------------------------------------------------------

template <class T, class Convert>
int TLTokenReader::readArray(std::string_view line, int count, T* values, const Form& form,
                             Convert convert) {
  TLTokens tokens(line);
  const auto key = tokens.next();
  for (int i = 0; i < count; ++i) {
    const auto word = tokens.next();
    if (word.empty()) {
      console() << form.label << line << '\n' << std::flush;
      recordError(line,
                  "expected: " + RWCString(key) + ' ' + std::to_string(count) + form.expected);
      return 0;
    }
    values[i] = convert(word);
  }
  return 1;
}

int TLTokenReader::readIntegerArray(std::string_view line, int count, std::int32_t* values) {
  return readArray(line, count, values, {"  wrong format for37: ", " * <float>"}, integerFrom);
}

int TLTokenReader::readRealArray(std::string_view line, int count, double* values) {
  return readArray(line, count, values, {"  wrong format for39: ", " * <float>"}, realFrom);
}

int TLTokenReader::readFloatArray(std::string_view line, int count, float* values) {
  return readArray(line, count, values, {"  wrong format for40: ", " * <float>"}, floatFrom);
}

void TLTokenReader::writeToggle(TLTextSink& stream, std::int32_t value, std::string_view key) {
  stream << key << (value == 1 ? "yes\n" : "no\n");
}
