#include "balancing/TLLoadBalancing.h"

#include <algorithm>

RWCString TLLoadBalancing::processName(std::int32_t index) const {
  if (index < 0 || static_cast<std::size_t>(index) >= processNames.size()) return "Undefined";
  return processNames[static_cast<std::size_t>(index)];
}

void TLLoadBalancing::removeLastQueuedProcess() {
  const std::int32_t last = nbQueuingSystemProcessor - 1;
  for (auto& process : blockProcess) {
    if (process == last) --process;
  }
  --nbQueuingSystemProcessor;
}

void TLLoadBalancing::removeProcess(std::int32_t index) {
  if (queuingSystemActivated != 0) {
    removeLastQueuedProcess();
    return;
  }
  if (index < 1 || static_cast<std::size_t>(index) >= processNames.size()) return;
  for (auto& process : blockProcess) {
    if (process == index) {
      process = 0;
    } else if (process > index) {
      --process;
    }
  }
  processNames.erase(processNames.begin() + index);
}

std::int32_t TLLoadBalancing::processOfBlock(std::int32_t block) const {
  if (block < 0 || static_cast<std::size_t>(block) >= blockProcess.size()) return 0;
  return blockProcess[static_cast<std::size_t>(block)];
}

void TLLoadBalancing::setProcessOfBlock(std::int32_t block, std::int32_t process) {
  const std::int32_t last = queuingSystemActivated != 0
                                ? nbQueuingSystemProcessor
                                : static_cast<std::int32_t>(processNames.size());
  if (block < 0 || process < 0 || process > last) return;
  const auto at = static_cast<std::size_t>(block);
  if (at >= blockProcess.size()) blockProcess.resize(at + 1, 0);
  blockProcess[at] = process;
}

void TLLoadBalancing::setNbBlocks(std::int32_t count) {
  blockProcess.resize(static_cast<std::size_t>(std::max(count, 0)), 0);
}
