#include "project/TLIntegerLine.h"

#include <algorithm>
#include <array>

#include "platform/TLConsole.h"
#include "textio/TLNumbers.h"
#include "textio/TLTokens.h"

int readIntegers(std::string_view line, std::span<std::int32_t> values, const char* failure) {
  std::array<std::int32_t, 8> read{};
  TLTokens tokens(line);
  tokens.next();
  for (std::size_t i = 0; i < values.size(); ++i) {
    const std::string_view token = tokens.next();
    if (token.empty()) {
      console() << failure << '\n' << std::flush;
      return 0;
    }
    read[i] = integerFrom(token);
  }
  std::copy_n(read.begin(), values.size(), values.begin());
  return 1;
}

void writeIntegers(TLTextSink& sink, std::string_view literal,
                   std::span<const std::int32_t> values) {
  sink << literal;
  std::string_view between;
  for (const std::int32_t value : values) {
    sink << between << value;
    between = " ";
  }
  sink << '\n';
}
