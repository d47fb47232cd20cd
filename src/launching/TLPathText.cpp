#include "launching/TLPathText.h"

#include <algorithm>
#include <string_view>

namespace {

/// A Windows name holds no quotes and no line ends; whatever claims to is no name of a file. A host
/// that nobody knows counts as such a host, too: what a UNIX shell would start between the quotes
/// goes as well.
RWCString win32Word(const RWCString& path) {
  constexpr std::string_view kPlain =
      "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789._-/\\:+@~*";
  if (path.find_first_not_of(kPlain) == RWCString::npos) return path;
  RWCString result;
  for (const char c : path) {
    if (c == '"' || c == '\n' || c == '\r' || c == '`') continue;
    while ((c == '(' || c == '{') && result.ends_with('$')) result.pop_back();
    result += c;
  }
  return '"' + result + '"';
}

}  // namespace

RWCString stripTrailingSlashes(const RWCString& path) {
  const auto last = path.find_last_not_of("/\\");
  return last == RWCString::npos ? RWCString() : path.substr(0, last + 1);
}

void toBackslashes(RWCString& path) {
  std::replace(path.begin(), path.end(), '/', '\\');
}

RWCString doubleBackslashes(const RWCString& text) {
  RWCString result;
  for (const char c : text) result.append(c == '\\' ? 2 : 1, c);
  return result;
}

RWCString collapseBackslashes(const RWCString& text) {
  RWCString result;
  for (std::size_t i = 0; i < text.size(); ++i) {
    result += text[i];
    if (text[i] == '\\' && i + 1 < text.size() && text[i + 1] == '\\') ++i;
  }
  return result;
}

RWCString quotePlain(const RWCString& text) {
  return '"' + text + '"';
}

RWCString quoteWithStar(const RWCString& path) {
  if (!path.ends_with('*')) return quotePlain(path);
  return quotePlain(path.substr(0, path.size() - 1)) + '*';
}

RWCString escapeForShell(const RWCString& text) {
  RWCString result;
  for (const char c : text) {
    switch (c) {
      case '!':
        result += "\\!";
        break;
      case '$':
        result += "\\\"\\\\$\\\"";
        break;
      default:
        result += c;
    }
  }
  return result;
}

RWCString maskForFarShell(const RWCString& text, bool stars) {
  const std::string_view plain = stars ? "._/-+,=~*?" : "._/-+,=~";
  RWCString result;
  for (const char c : text) {
    const bool letter = (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') ||
                        (c >= 'A' && c <= 'Z') || static_cast<unsigned char>(c) >= 0x80;
    if (c == '\n') {
      result += "'\n'";
      continue;
    }
    if (!letter && plain.find(c) == std::string_view::npos) result += '\\';
    result += c;
  }
  return result;
}

RWCString wordForHost(const RWCString& path, bool win32, const RWCString& pattern) {
  if (win32) return win32Word(path + pattern);
  // A name that a program would take for an option gets its directory in front.
  return (path.starts_with('-') ? "./" : "") + maskForFarShell(path, false) + pattern;
}

RWCString escapeForRemoteUnix(const RWCString& text) {
  constexpr std::string_view kMasked = " #%&'():@[]{}";
  RWCString result;
  for (const char c : text) {
    if (c == '!') {
      result += "\\\\";
    } else if (kMasked.find(c) != std::string_view::npos) {
      result += '\\';
    }
    result += c;
  }
  return result;
}
