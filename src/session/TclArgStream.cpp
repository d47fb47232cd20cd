#include "session/TclArgStream.h"

#include <tcl.h>

#include <array>
#include <charconv>
#include <cstdlib>
#include <cstring>
#include <string_view>

namespace {

constexpr std::size_t kStringBuffer = 10000;

/// True when the whole of `word`, blanks around it apart, is a number of base 10 that fits.
template <class Integer>
bool parseWhole(std::string_view word, Integer& value) {
  const auto isBlank = [](char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; };
  while (!word.empty() && isBlank(word.front())) word.remove_prefix(1);
  while (!word.empty() && isBlank(word.back())) word.remove_suffix(1);
  if (word.size() > 1 && word.front() == '+' && word[1] != '-') word.remove_prefix(1);
  Integer parsed = 0;
  const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), parsed);
  if (error != std::errc() || end != word.data() + word.size()) return false;
  value = parsed;
  return true;
}

}  // namespace

void ArgStream::readString(RWCString& text) {
  std::array<char, kStringBuffer> buffer;
  if (good() == nullptr) return;
  readText(buffer.data(), buffer.size());
  if (good() != nullptr) text = buffer.data();
}

TclArgStream::Frame TclArgStream::makeFrame(std::int32_t count, const char* const* words,
                                            bool ownsWords) {
  Frame frame;
  frame.count = count;
  frame.words = words;
  frame.state = count < 1 ? kAtEnd : 0;
  frame.ownsWords = ownsWords;
  return frame;
}

TclArgStream::TclArgStream(std::int32_t count, const char* const* words)
    : frames_{makeFrame(count, words, false)} {}

TclArgStream::~TclArgStream() {
  while (frames_.size() > 1) leaveList();
}

const char* TclArgStream::nextWord() {
  Frame& frame = top();
  if (frame.state != 0) return nullptr;
  if (frame.next >= frame.count) {
    frame.state |= kAtEnd;
    return nullptr;
  }
  return frame.words[frame.next++];
}

void TclArgStream::enterList() {
  const char* word = nextWord();
  if (word == nullptr) return;
  int count = 0;
  const char** words = nullptr;
  if (Tcl_SplitList(nullptr, word, &count, &words) != TCL_OK) {
    fail();
    return;
  }
  frames_.push_back(makeFrame(count, words, true));
}

void TclArgStream::leaveList() {
  if (frames_.size() < 2) return;
  if (top().ownsWords) Tcl_Free(reinterpret_cast<char*>(const_cast<const char**>(top().words)));
  frames_.pop_back();
}

void TclArgStream::readIntegers(std::vector<std::int32_t>& values) {
  const std::size_t depth = frames_.size();
  enterList();
  if (frames_.size() == depth) return;
  values.clear();
  for (std::int32_t i = 0; i < top().count; ++i) values.push_back(std::atoi(top().words[i]));
  leaveList();
}

void TclArgStream::readInteger64(std::int64_t& value) {
  const char* word = nextWord();
  if (word != nullptr && !parseWhole(word, value)) fail();
}

void TclArgStream::readInteger(std::int32_t& value) {
  const char* word = nextWord();
  if (word != nullptr && !parseWhole(word, value)) fail();
}

void TclArgStream::readLeadingInteger(std::int32_t& value) {
  if (const char* word = nextWord()) value = std::atoi(word);
}

void TclArgStream::readFloat(float& value) {
  if (const char* word = nextWord()) value = static_cast<float>(std::atof(word));
}

void TclArgStream::readDouble(double& value) {
  if (const char* word = nextWord()) value = std::atof(word);
}

void TclArgStream::readCharacter(char& value) {
  const char* word = nextWord();
  if (word == nullptr) return;
  if (std::strlen(word) == 1) {
    value = word[0];
  } else {
    fail();
  }
}

void TclArgStream::readText(char* buffer, std::size_t size) {
  const char* word = nextWord();
  if (word == nullptr) return;
  const std::size_t length = std::strlen(word);
  if (length < size) {
    std::memcpy(buffer, word, length + 1);
  } else {
    fail();
  }
}
