#include "platform/TLMemorySettings.h"

namespace {

std::string lowered(std::string_view text) {
  std::string result(text);
  for (char& c : result) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c + 32);
  }
  return result;
}

}  // namespace

void TLMemorySettings::addKey(std::string_view key) {
  keys_[lowered(key)];
}

void TLMemorySettings::set(std::string_view key, std::string_view name, std::string_view value) {
  keys_[lowered(key)][lowered(name)] = std::string(value);
}

bool TLMemorySettings::hasKey(std::string_view key) const {
  return keys_.contains(lowered(key));
}

std::optional<std::string> TLMemorySettings::value(std::string_view key,
                                                   std::string_view name) const {
  const auto section = keys_.find(lowered(key));
  if (section == keys_.end()) return std::nullopt;
  const auto entry = section->second.find(lowered(name));
  if (entry == section->second.end()) return std::nullopt;
  return entry->second;
}
