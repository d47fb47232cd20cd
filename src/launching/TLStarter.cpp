#include "launching/TLStarter.h"

TLStarter* starterFor(TLStartWay way) {
  switch (way) {
    case TLStartWay::direct:
      return &directStarter();
    case TLStartWay::mpiLauncher:
      return &mpiLauncherStarter();
    case TLStartWay::queued:
      return &queuedStarter();
    case TLStartWay::localTool:
      return &localToolStarter();
    case TLStartWay::none:
      break;
  }
  return nullptr;
}
