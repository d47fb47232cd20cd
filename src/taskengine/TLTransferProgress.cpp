#include "taskengine/TLTransferProgress.h"

#include <utility>

namespace {

std::function<void()>& observer() {
  static std::function<void()> instance;
  return instance;
}

}  // namespace

void setTransferObserver(std::function<void()> wanted) {
  observer() = std::move(wanted);
}

void tellTransferObserver() {
  if (observer()) observer()();
}
