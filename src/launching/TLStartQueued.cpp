#include "launching/TLJobQueue.h"
#include "launching/TLProgramNames.h"
#include "launching/TLQueuingSystem.h"
#include "launching/TLStarter.h"

RWCString jobPrecision(const TLLaunchDraft& draft) {
  if (draft.unstructured && isSolver(draft.executable)) {
    if (draft.precisionWord == "hybrid") return "hp";
    return draft.precisionWord == "double" ? "dp" : "sp";
  }
  const bool structured = draft.executable.find("velstra") != RWCString::npos;
  return structured && draft.precision == 1 ? "dp" : "";
}

namespace {

/// The queuing system of the step's host starts the process when it sees fit.
class QueuedStarter : public TLStarter {
 public:
  int start(TLSubTask& step, const TLLaunchDraft& draft, const TLLaunchSite& /*site*/,
            std::int32_t& child) override {
    return jobQueue().submit(step, jobPrecision(draft), child);
  }
};

}  // namespace

TLStarter& queuedStarter() {
  static QueuedStarter starter;
  return starter;
}
