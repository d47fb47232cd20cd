#include "launching/TLStarter.h"
#include "messaging/TLVirtualMachine.h"

namespace {

/// Tools that show something stay beside the daemon whatever host their step names.
class LocalToolStarter : public TLStarter {
 public:
  int start(TLSubTask& /*step*/, const TLLaunchDraft& draft, const TLLaunchSite& site,
            std::int32_t& child) override {
    return TL_virtual_machine_spawn(site.localHostName, draft.executable, draft.spawnArguments,
                                    child);
  }
};

}  // namespace

TLStarter& localToolStarter() {
  static LocalToolStarter starter;
  return starter;
}
