#pragma once

#include <string>

/// Script of a program that writes down the words it gets, "name|first|second", as a line of the
/// file `asked`, and then does `more`.
inline std::string recordingTool(const std::string& asked, const std::string& more) {
  return "#!/bin/sh\n{ printf %s \"${0##*/}\"; for i; do printf '|%s' \"$i\"; done; echo; } >> '" +
         asked + "'\n" + more;
}
