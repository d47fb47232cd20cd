#include "taskengine/TLLauncher.h"

namespace {

class NoLauncher : public TLLauncher {
 public:
  int startStep(TLSubTask& /*step*/) override { return kNotStarted; }
  int startMarineStep(TLSubTask& /*step*/) override { return kNotStarted; }
  int startProbesTool(TLSubTask& /*step*/) override { return kNotStarted; }
  int retrieveResults(TLSubTask& /*step*/) override { return 1; }
  int retrieveHexa_(TLSubTask& /*step*/) override { return 1; }
  void removeRemoteDir(TLSubTask& /*step*/) override {}
  int removeRemoteResults(TLSubTask& /*step*/) override { return 1; }
  int stopSubTask(TLSubTask& /*step*/) override { return 1; }

 private:
  static constexpr int kNotStarted = -1;
};

TLLauncher* gLauncher = nullptr;

}  // namespace

TLLauncher& launcher() {
  static NoLauncher none;
  return gLauncher != nullptr ? *gLauncher : none;
}

void setLauncher(TLLauncher* launcher) {
  gLauncher = launcher;
}
