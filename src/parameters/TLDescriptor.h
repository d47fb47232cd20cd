#pragma once

#include <cstdint>
#include <string_view>

#include "textio/RWCString.h"

/// Kind of a parameter's values, "I", "R" or "L" in its descriptor.
enum class TLParameterType { unknown = -1, integer = 0, real = 1, text = 2 };

/// The identity of a parameter in files: one word of five fields, "IROVAR,I,1,1,0": name, type, a
/// field that is carried only, number of values, a field that is carried only.
struct TLDescriptor {
  RWCString name;                                   ///< In capitals; may begin with an underscore.
  TLParameterType type = TLParameterType::unknown;  ///< The second field.
  std::int32_t count = 0;                           ///< values of the parameter; never negative

  /// Takes a descriptor apart from its end. The type is unknown for another letter, a missing or
  /// empty field, and for a number of values that no file can have.
  static TLDescriptor parse(std::string_view text);
  /// The word for a parameter of this name, type and number of values.
  RWCString text() const;

  /// Bound of the number of values, against files that were damaged.
  static constexpr std::int32_t kMostValues = 100000;
};
