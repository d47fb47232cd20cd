#pragma once

#include <cstdint>
#include <string_view>

/// The whole number at the start of `text`, as `atoi` takes it: what follows the digits is ignored,
/// no number gives 0; a number beyond 64 bits sticks at their limit before it is cut to 32.
std::int32_t integerFrom(std::string_view text);

/// The real at the start of `text`, as `atof` takes it; no number gives 0.
double realFrom(std::string_view text);

/// ASCII lower case of one character.
inline char lowerCase(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c;
}

/// True when both hold the same characters, case ignored.
bool equalIgnoringCase(std::string_view a, std::string_view b);
