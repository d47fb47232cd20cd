#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

#include "textio/TLTextSink.h"

/// Takes as many integers as `values` has places from the tokens behind the key of `line`. With
/// fewer on the line it prints `failure` on the console, stores nothing and answers 0.
int readIntegers(std::string_view line, std::span<std::int32_t> values, const char* failure);

/// `literal`, the integers one blank apart, a new line.
void writeIntegers(TLTextSink& sink, std::string_view literal,
                   std::span<const std::int32_t> values);
