#include "session/TLToolVariables.h"

#include <functional>
#include <map>
#include <utility>

namespace {
std::map<std::string, RWCString, std::less<>>& values() {
  static std::map<std::string, RWCString, std::less<>> kept;
  return kept;
}
}  // namespace

void setToolVariable(std::string_view name, RWCString value) {
  values().insert_or_assign(std::string(name), std::move(value));
}

RWCString toolVariable(std::string_view name) {
  const auto found = values().find(name);
  return found == values().end() ? RWCString() : found->second;
}
