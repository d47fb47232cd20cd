#include "textio/TLKeyTable.h"

#include <algorithm>
#include <bit>

#include "platform/TLConsole.h"

// The length and five letters spread over the word: enough to keep a fixed vocabulary apart, and
// quick on each token of a large file.
std::uint32_t TLWordIndex::hash(std::string_view word) {
  const std::size_t last = word.size() - 1;
  std::uint32_t value = static_cast<std::uint32_t>(word.size());
  for (const std::size_t at : {std::size_t{0}, last / 4, last / 2, last - last / 4, last}) {
    value = value * 31 + static_cast<unsigned char>(lowerCase(word[at]));
  }
  value *= 2654435769U;
  return value >> 12;
}

int TLWordIndex::add(std::string_view word) {
  const auto known = std::find_if(words_.begin(), words_.end(), [&](std::string_view other) {
    return equalIgnoringCase(word, other);
  });
  if (known != words_.end()) return static_cast<int>(known - words_.begin());
  words_.push_back(word);
  rebuild();
  return size() - 1;
}

int TLWordIndex::lookUp(std::string_view word) const {
  const std::size_t mask = slots_.size() - 1;
  for (std::size_t slot = hash(word) & mask; slots_[slot] != kNone; slot = (slot + 1) & mask) {
    if (equalIgnoringCase(words_[slots_[slot]], word)) return slots_[slot];
  }
  return kNone;
}

void TLWordIndex::rebuild() {
  slots_.assign(std::bit_ceil(words_.size() * 4), kNone);
  const std::size_t mask = slots_.size() - 1;
  for (std::size_t i = 0; i < words_.size(); ++i) {
    const std::string_view word = words_[i];
    std::size_t slot = hash(word) & mask;
    while (slots_[slot] != kNone) slot = (slot + 1) & mask;
    slots_[slot] = static_cast<int>(i);
    lengths_[std::min(word.size(), kLongest - 1)] = true;
    const char lower = lowerCase(word.front());
    firstLetters_[static_cast<unsigned char>(lower)] = true;
    if (lower >= 'a' && lower <= 'z') firstLetters_[static_cast<unsigned char>(lower - 32)] = true;
  }
}

int readVersion(std::string_view line, std::string_view failure, double& version) {
  TLTokens tokens(line);
  tokens.next();
  const auto number = tokens.next();
  if (number.empty()) {
    console() << failure << '\n' << std::flush;
    return 0;
  }
  version = realFrom(number);
  return 1;
}
