#include <cerrno>
#include <cstring>

#include "launching/TLCommands.h"
#include "launching/TLPathText.h"
#include "platform/TLConsole.h"

namespace {

/// The name as the remove command takes it. Where the shell expands a star, the name that was
/// tested is the only one to go.
RWCString removedName(const RWCString& path) {
  if (hostForm().kind() == TLHostKind::win32) return quoteWithStar(path);
  return hostForm().quoted(path.starts_with('-') ? "./" + path : path);
}

}  // namespace

int removeLocal(const RWCString& path) {
  initFileCommands();
  const RWCString name = stripTrailingSlashes(path);
  int error = 0;
  if (!hostForm().canWrite(name, error)) {
    console() << "Error deleting file: "
              << (error == EACCES ? "Permission denied." : std::strerror(error)) << '\n'
              << std::flush;
    return 0;
  }
  const RWCString line = fileCommandTable().remove + removedName(name);
  return hostForm().runSystem(hostForm().toLocal(line)) == 0 ? 1 : 0;
}
