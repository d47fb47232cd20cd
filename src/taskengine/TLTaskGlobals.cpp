#include "taskengine/TLTaskGlobals.h"

std::int32_t gLaunchConfirmed = 1;
std::int32_t gSuspendRequested = 0;
RWCString gTaskFileName;
RWCString gCatchoutFileName;
std::FILE* gCatchoutFile = nullptr;
RWCString gTaskHostName;
RWCString gLastError;
std::int64_t gMemoryKills = 0;

namespace {
void (*gEnd)() = nullptr;
}

void exitTaskManager() {
  if (gEnd != nullptr) gEnd();
}

void setTaskManagerEnd(void (*end)()) {
  gEnd = end;
}
