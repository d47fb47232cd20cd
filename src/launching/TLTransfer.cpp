#include "launching/TLTransfer.h"

#include "launching/TLComposition.h"
#include "messaging/TLVirtualMachine.h"
#include "taskengine/TLSubTask.h"

namespace {

/// Without a way to carry files a step can only start when none has to be carried.
class NoTransfer : public TLTransfer {
 public:
  int transferStep(TLSubTask& step) override { return refused(step); }
  int transferHexa_(TLSubTask& step) override { return refused(step); }
  int transferSculpt(TLSubTask& step) override { return 1 - refused(step); }
  int retrieveResults(TLSubTask& /*step*/) override { return 1; }
  int retrieveHexa_(TLSubTask& /*step*/) override { return 1; }
  void removeRemoteDir(TLSubTask& /*step*/) override {}
  int removeRemoteResults(TLSubTask& /*step*/) override { return 1; }

 private:
  static int refused(const TLSubTask& step) {
    const bool here = step.hostName == ownHostName();
    return !here && hasMarkedFile(step.spawnArguments) ? 1 : 0;
  }
};

TLTransfer* gTransfer = nullptr;

}  // namespace

TLTransfer& transfer() {
  static NoTransfer none;
  return gTransfer == nullptr ? none : *gTransfer;
}

void setTransfer(TLTransfer* transfer) {
  gTransfer = transfer;
}
