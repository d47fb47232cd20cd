#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

/// One packed item of a message.
using TLWireItem = std::variant<std::int32_t, float, double, std::string>;

/// The contents of a message as PVM's default encoding lays them out: integers and reals
/// big-endian, a string as its length with the terminator, its bytes, its terminator and zeros up
/// to a multiple of four. Grows at the end, is read from the front.
class TLWireBuffer {
 public:
  TLWireBuffer() = default;
  /// Contents of any origin, even such as no packing yields.
  explicit TLWireBuffer(std::vector<std::uint8_t> bytes) : bytes_(std::move(bytes)) {}

  /// @name Building. Each answers the buffer, for chains.
  /// @{
  TLWireBuffer& integer(std::int32_t value);
  TLWireBuffer& real32(float value);
  TLWireBuffer& real64(double value);
  TLWireBuffer& string(std::string_view text);
  /// The pair in which every text travels: its length without a terminator, then the string.
  TLWireBuffer& counted(std::string_view text);
  /// @}

  /// @name Reading. False, with the contents left over as they are, when there is too little.
  /// @{
  bool takeInteger(std::int32_t& value);
  bool takeReal32(float& value);
  bool takeReal64(double& value);
  bool takeString(std::string& text);
  /// @}

  const std::vector<std::uint8_t>& bytes() const { return bytes_; }
  /// The items as they were put in (empty for contents given as bytes).
  const std::vector<TLWireItem>& items() const { return items_; }
  std::size_t left() const { return bytes_.size() - position_; }

 private:
  void put(std::uint64_t value, int size);
  std::uint64_t take(int size);

  std::vector<std::uint8_t> bytes_;
  std::vector<TLWireItem> items_;
  std::size_t position_ = 0;
};
