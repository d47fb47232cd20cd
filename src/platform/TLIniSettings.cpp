#include "platform/TLIniSettings.h"

#include <cstdlib>
#include <filesystem>
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

/// What stands for "${`reference`}".
std::string replacement(std::string_view reference, const std::string& directory) {
  const auto mark = reference.find(":-");
  const std::string name(reference.substr(0, mark));
  if (name == "SETTINGS_DIR") return directory;
  const char* set = std::getenv(name.c_str());
  if (set != nullptr && *set != '\0') return set;
  return mark == std::string_view::npos ? std::string() : std::string(reference.substr(mark + 2));
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
  const auto text = load().value(key, name);
  if (!text) return std::nullopt;
  const auto directory = std::filesystem::absolute(locate_()).parent_path();
  return expanded(*text, directory.string());
}

std::string TLIniSettings::expanded(std::string_view value, const std::string& directory) {
  std::string result;
  while (!value.empty()) {
    const auto open = value.find("${");
    const auto close = open == std::string_view::npos ? open : value.find('}', open);
    if (close == std::string_view::npos) break;
    result += value.substr(0, open);
    result += replacement(value.substr(open + 2, close - open - 2), directory);
    value.remove_prefix(close + 1);
  }
  return result.append(value);
}
