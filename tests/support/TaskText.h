#pragma once

#include <string>

/// Text of an argument of a step in a task file, `lines` being further lines of it.
inline std::string argumentText(const std::string& type, const std::string& value,
                                const std::string& lines = {}) {
  return "    TL_BEGIN process_argument\n      TYPE " + type + "\n      VALUE " + value + "\n" +
         lines + "    TL_END process_argument\n";
}

/// Text of all arguments of a step.
inline std::string argumentsText(const std::string& all) {
  return "  TL_BEGIN process_arguments\n" + all + "  TL_END process_arguments\n";
}

/// Text of a step; `lines` are further lines of it.
inline std::string stepText(const std::string& name, const std::string& executable,
                            const std::string& host, const std::string& lines) {
  return "TL_BEGIN subtask\n  NAME " + name + "\n  EXECUTABLE " + executable + "\n  HOSTNAME " +
         host + "\n" + lines + "TL_END subtask\n";
}
