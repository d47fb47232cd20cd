#include "textio/TLTextSource.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace {

bool isWhite(char c) {
  return c == ' ' || (c >= '\t' && c <= '\r');
}

}  // namespace

TLTextSource::TLTextSource(std::string text) : text_(std::move(text)) {}

void TLTextSource::skipWhitespace() {
  const char* data = text_.data();
  const std::size_t size = text_.size();
  while (position_ < size && isWhite(data[position_])) ++position_;
}

void TLTextSource::skipLine() {
  std::string_view dropped;
  readRawLine(dropped);
}

std::string_view TLTextSource::readLine() {
  skipWhitespace();
  std::string_view line;
  readRawLine(line);
  return line;
}

std::string_view TLTextSource::readWord() {
  skipWhitespace();
  const std::size_t start = position_;
  while (position_ < text_.size() && !isWhite(text_[position_])) ++position_;
  return std::string_view(text_).substr(start, position_ - start);
}

bool TLTextSource::readRawLine(std::string_view& line) {
  if (atEnd()) {
    line = {};
    return false;
  }
  const char* start = text_.data() + position_;
  const std::size_t left = text_.size() - position_;
  const void* end = std::memchr(start, '\n', left);
  const std::size_t length =
      end == nullptr ? left : static_cast<std::size_t>(static_cast<const char*>(end) - start);
  line = {start, length};
  position_ += length + (end == nullptr ? 0 : 1);
  return true;
}

std::size_t TLTextSource::lineNumber(std::string_view part) const {
  const char* begin = text_.data();
  if (part.data() < begin || part.data() > begin + text_.size()) return 0;
  const auto at = static_cast<std::size_t>(part.data() - begin);
  if (at < countedTo_) countedTo_ = counted_ = 0;
  counted_ += static_cast<std::size_t>(std::count(begin + countedTo_, begin + at, '\n'));
  countedTo_ = at;
  return 1 + counted_;
}

std::string_view TLTextSource::wholeLine(std::string_view part) const {
  const char* begin = text_.data();
  if (part.data() < begin || part.data() > begin + text_.size()) return {};
  const auto at = static_cast<std::size_t>(part.data() - begin);
  const std::size_t before = at == 0 ? std::string::npos : text_.rfind('\n', at - 1);
  const std::size_t start = before == std::string::npos ? 0 : before + 1;
  const std::size_t end = std::min(text_.find('\n', at), text_.size());
  return std::string_view(text_).substr(start, end - start);
}
