#include "launching/TLRemPathMapping.h"

#include <ctime>
#include <string_view>
#include <utility>

#include "platform/TLHostForm.h"

namespace {

RWCString logPath() {
  TLHostForm& form = hostForm();
  return form.realPath(form.variableOrEmpty("TMP_DIR") + form.separator() +
                       "paths substitution.log");
}

/// The present time as `asctime` has it, its line feed included.
RWCString presentTime() {
  const std::time_t now = std::time(nullptr);
  std::tm local{};
  char text[64];
  if (localtime_r(&now, &local) == nullptr || asctime_r(&local, text) == nullptr) return "\n";
  return text;
}

}  // namespace

TLRemPathMapping::TLRemPathMapping(RWCString mapFileName, bool log)
    : mapFileName_(std::move(mapFileName)), logEnabled_(log ? 1 : 0) {
  if (log) logStream_.open(logPath(), std::ios::trunc);
}

char TLRemPathMapping::separatorOf(const RWCString& path) {
  const auto first = path.find_first_of("/\\");
  return first == RWCString::npos ? '/' : path[first];
}

std::vector<RWCString> TLRemPathMapping::split(const RWCString& path, char separator) {
  std::vector<RWCString> components;
  if (path.empty()) return components;
  const bool network = path.size() > 1 && path[0] == separator && path[1] == separator;
  std::size_t start = 0;
  std::size_t from = 0;
  if (network) {
    const auto host = path.find(separator, 2);
    from = host == RWCString::npos ? path.size() : host + 1;
  }
  while (true) {
    const auto end = path.find(separator, from);
    if (end == RWCString::npos) break;
    components.push_back(path.substr(start, end - start));
    start = from = end + 1;
  }
  components.push_back(path.substr(start));
  return components;
}

RWCString TLRemPathMapping::join(const std::vector<RWCString>& components, std::size_t start,
                                 std::size_t count, char separator) {
  RWCString result;
  for (std::size_t i = start; i < start + count && i < components.size(); ++i) {
    if (i > start) result += separator;
    result += components[i];
  }
  return result;
}

bool TLRemPathMapping::mapPath(const RWCString& path, const RWCString& hostName,
                               RWCString& result) {
  // `result` may be the same string.
  const RWCString original = path;  // NOLINT(performance-unnecessary-copy-initialization)
  if (logEnabled_ != 0) {
    logStream_ << presentTime() << "MAP '" << original << "' -> " << hostName << '\n';
  }
  const char separator = separatorOf(original);
  const std::vector<RWCString> components = split(original, separator);
  for (std::size_t i = 1; i < components.size(); ++i) {
    const auto prefix =
        prefixIn(join(components, 0, i, separator) + separator + mapFileName_, hostName);
    if (!prefix) continue;
    const char farSeparator = separatorOf(*prefix);
    result = *prefix;
    if (!result.empty() && result.back() != farSeparator) result += farSeparator;
    result += join(components, i, components.size() - i, farSeparator);
    if (logEnabled_ != 0) {
      logStream_ << "\tManaged to convert to '" << result << "'.\n\n" << std::flush;
    }
    return true;
  }
  result = original;
  if (logEnabled_ != 0) {
    logStream_ << "\tDidn't find host, leave as is: '" << result << "'.\n\n" << std::flush;
  }
  return false;
}

std::optional<RWCString> TLRemPathMapping::prefixIn(const RWCString& file,
                                                    const RWCString& hostName) {
  if (logEnabled_ != 0) logStream_ << "\t try file " << file << '\n';
  const auto text = hostForm().readFile(file);
  if (!text) return std::nullopt;
  std::string_view rest = *text;
  while (!rest.empty()) {
    const auto end = rest.find('\n');
    std::string_view line = rest.substr(0, end);
    rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
    if (line.ends_with('\r')) line.remove_suffix(1);
    const auto blank = line.find(' ');
    const RWCString host(line.substr(0, blank));
    const bool found = host == hostName;
    if (logEnabled_ != 0) {
      logStream_ << "\t\t " << host << " = " << hostName << "? " << (found ? "YES!" : "NO") << '\n';
    }
    if (!found) continue;
    return blank == std::string_view::npos ? RWCString() : RWCString(line.substr(blank + 1));
  }
  return std::nullopt;
}
