#include "doubles/TLWireBuffer.h"

#include <bit>

namespace {
constexpr std::size_t kUnit = 4;
std::size_t padded(std::size_t size) {
  return (size + kUnit - 1) / kUnit * kUnit;
}
}  // namespace

TLWireBuffer& TLWireBuffer::integer(std::int32_t value) {
  items_.emplace_back(value);
  put(static_cast<std::uint32_t>(value), 4);
  return *this;
}

TLWireBuffer& TLWireBuffer::real32(float value) {
  items_.emplace_back(value);
  put(std::bit_cast<std::uint32_t>(value), 4);
  return *this;
}

TLWireBuffer& TLWireBuffer::real64(double value) {
  items_.emplace_back(value);
  put(std::bit_cast<std::uint64_t>(value), 8);
  return *this;
}

TLWireBuffer& TLWireBuffer::string(std::string_view text) {
  items_.emplace_back(std::string(text));
  put(text.size() + 1, 4);
  bytes_.insert(bytes_.end(), text.begin(), text.end());
  bytes_.resize(bytes_.size() + padded(text.size() + 1) - text.size(), 0);
  return *this;
}

TLWireBuffer& TLWireBuffer::counted(std::string_view text) {
  return integer(static_cast<std::int32_t>(text.size())).string(text);
}

bool TLWireBuffer::takeInteger(std::int32_t& value) {
  if (left() < 4) return false;
  value = static_cast<std::int32_t>(take(4));
  return true;
}

bool TLWireBuffer::takeReal32(float& value) {
  if (left() < 4) return false;
  value = std::bit_cast<float>(static_cast<std::uint32_t>(take(4)));
  return true;
}

bool TLWireBuffer::takeReal64(double& value) {
  if (left() < 8) return false;
  value = std::bit_cast<double>(take(8));
  return true;
}

bool TLWireBuffer::takeString(std::string& text) {
  std::int32_t length = 0;
  if (!takeInteger(length)) return false;
  if (length < 0 || padded(static_cast<std::size_t>(length)) > left()) return false;
  text.assign(reinterpret_cast<const char*>(bytes_.data() + position_), length);
  text.resize(std::min(text.find('\0'), text.size()));
  position_ += padded(static_cast<std::size_t>(length));
  return true;
}

void TLWireBuffer::put(std::uint64_t value, int size) {
  for (int shift = 8 * (size - 1); shift >= 0; shift -= 8) {
    bytes_.push_back(static_cast<std::uint8_t>(value >> shift));
  }
}

std::uint64_t TLWireBuffer::take(int size) {
  std::uint64_t value = 0;
  for (int i = 0; i < size; ++i) value = value << 8 | bytes_[position_++];
  return value;
}
