#include "parameters/TLDescriptor.h"

#include <algorithm>

#include "textio/TLNumbers.h"

namespace {

constexpr std::string_view kTypes = "IRL";

// What stands behind the last comma of `text`, which loses both. Empty when there is no comma.
std::string_view splitAtLastComma(std::string_view& text) {
  const auto comma = text.rfind(',');
  if (comma == std::string_view::npos) return {};
  const auto last = text.substr(comma + 1);
  text = text.substr(0, comma);
  return last;
}

}  // namespace

TLDescriptor TLDescriptor::parse(std::string_view text) {
  std::string_view rest = text;
  const auto lastField = splitAtLastComma(rest);
  const auto values = splitAtLastComma(rest);
  const auto carried = splitAtLastComma(rest);
  const auto letter = splitAtLastComma(rest);
  TLDescriptor descriptor;
  if (lastField.empty() || values.empty() || carried.empty() || letter.empty() || rest.empty()) {
    return descriptor;
  }
  descriptor.name = rest;
  descriptor.count = std::max(0, integerFrom(values));
  const auto type = letter.size() == 1 ? kTypes.find(letter.front()) : std::string_view::npos;
  if (type != std::string_view::npos && descriptor.count <= kMostValues) {
    descriptor.type = static_cast<TLParameterType>(type);
  }
  return descriptor;
}

RWCString TLDescriptor::text() const {
  const char letter = type == TLParameterType::unknown ? '?' : kTypes[static_cast<int>(type)];
  return name + ',' + letter + ",1," + std::to_string(count) + ",0";
}
