#include "launching/TLJobQueue.h"

namespace {

class NoQueue : public TLJobQueue {
 public:
  int submit(TLSubTask& /*step*/, const RWCString& /*precision*/, std::int32_t& job) override {
    job = 0;
    return kNothingToSubmit;
  }
  void deleteJobs(TLSubTask& /*step*/) override {}
};

TLJobQueue* gQueue = nullptr;

}  // namespace

TLJobQueue& jobQueue() {
  static NoQueue none;
  return gQueue == nullptr ? none : *gQueue;
}

void setJobQueue(TLJobQueue* queue) {
  gQueue = queue;
}
