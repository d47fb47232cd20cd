#include "launching/TLLaunchLines.h"

#include "launching/TLPathText.h"
#include "session/TLScript.h"

RWCString scriptQuoted(const RWCString& text) {
  RWCString result;
  for (const char c : text) {
    if (c == '"' || c == '$' || c == '[') result += '\\';
    result += c;
  }
  return result;
}

RWCString messageLine(const RWCString& word) {
  return "task_manager_receive_message " + word;
}

RWCString spawnLine(const RWCString& executable, const RWCString& hostName, bool win32,
                    const RWCString& remoteLogin) {
  const RWCString phrase = "Try to spawn " + executable + " on " + hostName +
                           " OS: " + (win32 ? "WIN32" : "UNIX") + " with Login: " + remoteLogin;
  return messageLine('"' + scriptQuoted(phrase) + '"');
}

std::vector<RWCString> argumentLines(const TLProcessArguments& arguments) {
  std::vector<RWCString> lines;
  for (std::int32_t i = 0; i < arguments.count(); ++i) {
    const TLProcessArgument& argument = *arguments.at(i);
    const RWCString phrase = "Argument " + std::to_string(i + 1) + ": " +
                             scriptQuoted(argument.type()) + "  " +
                             scriptQuoted(doubleBackslashes(argument.value()));
    lines.push_back(messageLine('"' + phrase + '"'));
  }
  return lines;
}

void tellScript(const RWCString& line) {
  evalScript(line);
  evalScript("update");
}

void sayToScript(const RWCString& phrase) {
  tellScript(messageLine('"' + scriptQuoted(doubleBackslashes(phrase)) + '"'));
}
