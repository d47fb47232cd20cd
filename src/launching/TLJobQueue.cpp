#include "launching/TLJobQueue.h"

#include "launching/TLQueuingSystem.h"

namespace {

TLJobQueue* gQueue = nullptr;

}  // namespace

TLJobQueue& jobQueue() {
  static TLQueuingSystem system;
  return gQueue == nullptr ? system : *gQueue;
}

void setJobQueue(TLJobQueue* queue) {
  gQueue = queue;
}
