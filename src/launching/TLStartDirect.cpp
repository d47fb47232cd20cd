#include "launching/TLStarter.h"
#include "messaging/TLVirtualMachine.h"

namespace {

/// The daemon of the virtual machine on the step's host makes the process: sequential programs, and
/// the start scripts of parallel ones on UNIX hosts.
class DirectStarter : public TLStarter {
 public:
  int start(TLSubTask& /*step*/, const TLLaunchDraft& draft, const TLLaunchSite& /*site*/,
            std::int32_t& child) override {
    return TL_virtual_machine_spawn(draft.hostName, draft.executable, draft.spawnArguments, child);
  }
};

}  // namespace

TLStarter& directStarter() {
  static DirectStarter starter;
  return starter;
}
