#pragma once

#include <array>
#include <cstdint>
#include <string_view>

#include "textio/RefCounted.h"
#include "textio/TLTextSink.h"

/// One patch of the meridional view: a line of the grid with seven indices.
class TLMeridionnalPatch : public RefCounted {
 public:
  /// Takes the seven indices behind the key of `line`; what follows them isn't looked at. 0, with
  /// a complaint on the console, when one is missing.
  int readLine(std::string_view line);
  /// The whole line: its key, then the indices one blank apart.
  void write(TLTextSink& sink) const;

  /// In the order of the line, whose meaning is the interface's.
  std::array<std::int32_t, 7> indices{};
};
