#include "taskengine/TLTaskPaths.h"

#include "parameters/TLFile.h"
#include "platform/TLHostForm.h"

RWCString joinPath(const RWCString& directory, const RWCString& name) {
  if (directory.empty()) return TLFile(name).path();
  return TLFile(hostForm().join(hostForm().toLocal(directory), name)).path();
}
