#include "taskengine/TLTaskPaths.h"

#include <algorithm>
#include <string_view>

#include "parameters/TLFile.h"
#include "platform/TLHostForm.h"

namespace {

bool isPlain(char c) {
  const bool letter = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
  const bool digit = c >= '0' && c <= '9';
  return letter || digit || std::string_view("._/-+,:=@%").find(c) != std::string_view::npos;
}

}  // namespace

RWCString joinPath(const RWCString& directory, const RWCString& name) {
  if (directory.empty()) return TLFile(name).path();
  return TLFile(hostForm().join(hostForm().toLocal(directory), name)).path();
}

RWCString shellWord(const RWCString& name) {
  if (hostForm().kind() == TLHostKind::win32 || std::all_of(name.begin(), name.end(), isPlain)) {
    return name;
  }
  return hostForm().quoted(name);
}
