#pragma once

#include <cstdint>

/// A fixed font of five by seven pixels for the printable characters of ASCII.
struct TLPixelFont {
  /// Width of a character in pixels, without the gap to the next.
  static constexpr int kColumns = 5;
  static constexpr int kRows = 7;  ///< Height of a character in pixels.
  /// The columns of a character, bit 0 being the uppermost pixel; a question mark's for any other
  /// character.
  static const std::uint8_t* columnsOf(char character);
};
