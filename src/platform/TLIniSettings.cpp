#include "platform/TLIniSettings.h"

#include <fstream>
#include <iterator>
#include <utility>

namespace {

constexpr std::string_view kBlanks = " \t\r";

std::string_view trimmed(std::string_view text) {
  const auto first = text.find_first_not_of(kBlanks);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

/// Takes the text before the next new line off the front of `rest`.
std::string_view nextLine(std::string_view& rest) {
  const auto end = rest.find('\n');
  const auto line = rest.substr(0, end);
  rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
  return line;
}

}  // namespace

TLIniSettings::TLIniSettings(std::function<std::string()> locate) : locate_(std::move(locate)) {}

TLMemorySettings TLIniSettings::parse(std::string_view text) {
  constexpr std::string_view kByteOrderMark = "\xef\xbb\xbf";
  if (text.starts_with(kByteOrderMark)) text.remove_prefix(kByteOrderMark.size());
  TLMemorySettings settings;
  std::string section;
  bool inSection = false;
  while (!text.empty()) {
    const auto line = trimmed(nextLine(text));
    if (line.empty() || line.front() == ';' || line.front() == '#') continue;
    if (line.front() == '[' && line.back() == ']') {
      section = trimmed(line.substr(1, line.size() - 2));
      settings.addKey(section);
      inSection = true;
      continue;
    }
    const auto equals = line.find('=');
    if (!inSection || equals == std::string_view::npos) continue;
    settings.set(section, trimmed(line.substr(0, equals)), trimmed(line.substr(equals + 1)));
  }
  return settings;
}

TLMemorySettings TLIniSettings::load() const {
  std::ifstream file(locate_(), std::ios::binary);
  const std::string text{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  return parse(text);
}

bool TLIniSettings::hasKey(std::string_view key) const {
  return load().hasKey(key);
}

std::optional<std::string> TLIniSettings::value(std::string_view key, std::string_view name) const {
  return load().value(key, name);
}
