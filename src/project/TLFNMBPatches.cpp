#include "project/TLFNMBPatches.h"

#include <cstddef>
#include <vector>

#include "project/TLProjectType.h"
#include "textio/TLNumbers.h"
#include "textio/TLTokens.h"

namespace {

// Two's complement in both directions: whatever the file says, nothing overflows.
std::int32_t plus(std::int32_t value, std::uint32_t step) {
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(value) + step);
}
constexpr std::uint32_t kUp = 1;
constexpr std::uint32_t kDown = ~std::uint32_t{0};

}  // namespace

int TLFNMBPatches::readLine(std::string_view line) {
  TLTokens tokens(line);
  tokens.next();
  std::array<std::string_view, 4> words;  // the name and the integers
  for (auto& word : words) word = tokens.next();
  const bool unstructured = TLProjectType::isUnstructured(projectType);
  if (words[3].empty()) {
    if (!unstructured || words[2].empty()) return 0;
    words = {std::string_view(), words[0], words[1], words[2]};  // a side without a name
  }
  for (std::size_t i = 0; i < indices.size(); ++i) indices[i] = integerFrom(words[i + 1]);
  if (!unstructured) {
    name = words[0];
    return 1;
  }
  groupName = words[0];
  name.clear();
  indices = {plus(indices[0], kUp), 1, plus(indices[2], kUp)};
  return 1;
}

void TLFNMBPatches::write(TLTextSink& sink) const {
  const bool unstructured = TLProjectType::isUnstructured(projectType);
  const std::uint32_t step = unstructured ? kDown : 0;
  sink << "            " << (unstructured ? groupName : name) << ' ' << plus(indices[0], step)
       << "  " << indices[1] << "  " << plus(indices[2], step) << '\n';
}
