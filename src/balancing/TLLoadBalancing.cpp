#include "balancing/TLLoadBalancing.h"

#include <algorithm>

#include "balancing/TLGridMesh.h"
#include "balancing/TLPartition.h"
#include "parameters/TLParameters.h"
#include "project/TLGrid.h"
#include "project/TLOutputs.h"
#include "project/TLProjectType.h"

TLLoadBalancing::TLLoadBalancing() = default;
TLLoadBalancing::TLLoadBalancing(const TLLoadBalancing& other) = default;
TLLoadBalancing& TLLoadBalancing::operator=(const TLLoadBalancing& other) = default;
TLLoadBalancing::~TLLoadBalancing() = default;

// Distributing ---------------------------------------------------------------------------------

TLCoarsening TLLoadBalancing::coarsening() const {
  TLCoarsening coarsening;
  coarsening.nbGridLevels = nbGridLevels;
  coarsening.gridLevel = {gridLevelI, gridLevelJ, gridLevelK};
  coarsening.multigrid = {multigridI, multigridJ, multigridK};
  return coarsening;
}

std::int32_t TLLoadBalancing::nbProcessors() const {
  return queuingSystemActivated != 0 ? nbQueuingSystemProcessor
                                     : static_cast<std::int32_t>(processNames.size());
}

std::int32_t TLLoadBalancing::nbCells(std::int32_t block) const {
  if (mesh == nullptr || block < 0 || static_cast<std::size_t>(block) >= mesh->blocks.size()) {
    return 0;
  }
  const TLBlock& record = *mesh->blocks[static_cast<std::size_t>(block)];
  if (mesh->projectType == TLProjectType::hexa) return record.nbCells;
  return coarsening().nbCells(blockOf(record));
}

TLPartition::TLPartition(const TLLoadBalancing& loadBalancing, std::int32_t adjustProcessors)
    : TLPartition(loadBalancing.mesh == nullptr ? TLBlockMesh() : blockMeshOf(*loadBalancing.mesh),
                  loadBalancing.coarsening(), loadBalancing.nbProcessors(), loadBalancing.tolerance,
                  adjustProcessors) {}

void TLLoadBalancing::balance() {
  if (queuingSystemActivated == 0 || automaticLoadBalancing == 0 || mesh == nullptr) return;
  TLPartition partition(*this, adjustProcessors);
  if (partition.distribute()) takeOwners(partition.owners());
}

void TLLoadBalancing::takeOwners(const std::vector<std::int32_t>& owners) {
  const std::size_t count = std::min(blockProcess.size(), owners.size());
  for (std::size_t i = 0; i < count; ++i) blockProcess[i] = owners[i] - 1;
}

// Processes ------------------------------------------------------------------------------------

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
