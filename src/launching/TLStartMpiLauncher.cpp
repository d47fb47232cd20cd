#include "launching/TLStarter.h"
#include "messaging/TLVirtualMachine.h"

namespace {

/// The launcher runs on this machine; its own words say where the solver goes.
class MpiLauncherStarter : public TLStarter {
 public:
  int start(TLSubTask& /*step*/, const TLLaunchDraft& draft, const TLLaunchSite& site,
            std::int32_t& child) override {
    return TL_virtual_machine_spawn(site.localHostName, draft.executable, draft.spawnArguments,
                                    child);
  }
};

}  // namespace

TLStarter& mpiLauncherStarter() {
  static MpiLauncherStarter starter;
  return starter;
}
