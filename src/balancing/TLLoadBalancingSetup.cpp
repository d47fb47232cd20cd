// Taking the mesh of a project over, and the partitions that the mesh tool left in an unstructured
// one.
#include <algorithm>
#include <utility>

#include "balancing/TLLoadBalancing.h"
#include "parameters/TLHexaParameters.h"
#include "parameters/TLParameters.h"
#include "platform/TLConsole.h"
#include "project/TLGrid.h"
#include "project/TLOutputs.h"
#include "project/TLProject.h"
#include "project/TLProjectType.h"

namespace {

// More processors than any machine has: what is beyond comes from a damaged file.
constexpr std::int32_t kMostProcessors = 1 << 20;

const TLParameterValue* valueOf(const TLBlock& block, std::string_view name) {
  if (block.hexaParameters == nullptr) return nullptr;
  const TLParameter* parameter = block.hexaParameters->find(name);
  return parameter == nullptr ? nullptr : &parameter->value;
}

std::int32_t integerOf(const TLBlock& block, std::string_view name) {
  const auto* value = valueOf(block, name);
  return value == nullptr ? 0 : value->integer(0, 0);
}

std::vector<std::int32_t> integersOf(const TLBlock& block, std::string_view name) {
  std::vector<std::int32_t> list;
  const auto* value = valueOf(block, name);
  if (value == nullptr || value->type() != TLValueType::integer) return list;
  for (std::int32_t row = 0; row < value->rows(); ++row) {
    for (std::int32_t column = 0; column < value->columns(); ++column) {
      list.push_back(value->integer(row, column));
    }
  }
  return list;
}

std::vector<double> realsOf(const TLBlock& block, std::string_view name) {
  std::vector<double> list;
  const auto* value = valueOf(block, name);
  if (value == nullptr || value->type() == TLValueType::string) return list;
  for (std::int32_t row = 0; row < value->rows(); ++row) {
    for (std::int32_t column = 0; column < value->columns(); ++column) {
      switch (value->type()) {
        case TLValueType::integer:
          list.push_back(value->integer(row, column));
          break;
        case TLValueType::single:
          list.push_back(static_cast<double>(value->single(row, column)));
          break;
        default:
          list.push_back(value->real(row, column));
          break;
      }
    }
  }
  return list;
}

std::int32_t truncated(double value) {
  constexpr double kLimit = 2147483648.0;
  return value > -kLimit && value < kLimit ? static_cast<std::int32_t>(value) : 0;
}

}  // namespace

bool TLLoadBalancing::setup(const RWCString& file) {
  projectFile = file;
  mesh.reset();
  outputs.reset();
  parameters.reset();
  constexpr int kReadWithRemarks = -500;
  TLProject project;
  const int result = project.read(file);
  if (result != 1 && result != kReadWithRemarks) return false;
  return setup(project);
}

bool TLLoadBalancing::setup(const TLProject& project) {
  if (project.currentComputation == nullptr) return false;
  const TLSubProject& computation = *project.currentComputation;
  gridLevelI = computation.gridLevelI;
  gridLevelJ = computation.gridLevelJ;
  gridLevelK = computation.gridLevelK;
  fluidType = computation.fluidType;
  steamTablesPath = computation.steamTablesPath;
  maximumHarmonicsNumber = computation.maximumHarmonicsNumber;
  userSolverPrecision = computation.userSolverPrecision;
  nbGridLevels = computation.numberOfGridLevel;
  if (computation.outputs != nullptr) outputs = makeHandle<TLOutputs>(*computation.outputs);
  if (computation.parameters != nullptr) {
    parameters = makeHandle<TLParameters>(*computation.parameters);
    // Fluid type and tables have no parameter: this record's own fields tell them.
    parameters->setIntegers("NHARMO,I,1,1,0", {maximumHarmonicsNumber});
  }
  if (computation.grid == nullptr) return false;
  mesh = makeHandle<TLGrid>(*computation.grid);
  if (mesh->projectType == TLProjectType::hexa) return readPartitions();
  setNbBlocks(static_cast<std::int32_t>(mesh->blocks.size()));
  return true;
}

bool TLLoadBalancing::readPartitions() {
  if (mesh->blocks.empty()) return true;
  parallel = integerOf(*mesh->blocks.front(), "iParallel_");
  if (parallel == 0) {
    nbQueuingSystemProcessor = 1;
    return true;
  }
  nbQueuingSystemProcessor = integerOf(*mesh->blocks.front(), "nbProcs_");
  if (nbQueuingSystemProcessor > kMostProcessors) {
    console() << "TLLoadBalancing: the mesh asks for " << nbQueuingSystemProcessor
              << " processors; at most " << kMostProcessors << " are possible\n";
    return false;
  }
  console() << "TLLoadBalancing::setup, Creating distribution map:\n";
  distributionMap.clear();
  for (std::size_t b = 0; b < mesh->blocks.size(); ++b) {
    enterBlock(static_cast<std::int32_t>(b), integersOf(*mesh->blocks[b], "procsOfBlock_"));
  }
  namePartitions();
  fitProcesses();
  return true;
}

void TLLoadBalancing::enterBlock(std::int32_t block, const std::vector<std::int32_t>& processors) {
  if (processors.empty()) return;
  if (processors.size() == 1) {
    const auto shared =
        std::find_if(distributionMap.begin(), distributionMap.end(), [&](const auto& entry) {
          return std::find(entry.second.begin(), entry.second.end(), processors.front()) !=
                 entry.second.end();
        });
    if (shared != distributionMap.end()) {
      auto node = distributionMap.extract(shared);
      node.key().push_back(block);
      distributionMap.insert(std::move(node));
      return;
    }
  }
  distributionMap[{block}] = processors;
}

void TLLoadBalancing::namePartitions() {
  ncell_.clear();
  partName_.clear();
  for (const auto& [blocks, processors] : distributionMap) {
    if (blocks.size() == 1) {
      splitBlock(blocks.front(), processors.size());
    } else {
      mergeBlocks(blocks);
    }
  }
  const auto count = static_cast<std::size_t>(std::max(nbQueuingSystemProcessor, 0));
  ncell_.resize(count, 0);
  partName_.resize(count);
}

void TLLoadBalancing::splitBlock(std::int32_t block, std::size_t nbPartitions) {
  const TLBlock& record = *mesh->blocks[static_cast<std::size_t>(block)];
  const auto weights = realsOf(record, "PartWeights_");
  for (std::size_t j = 0; j < nbPartitions; ++j) {
    std::int32_t cells = 0;
    if (j < weights.size()) {
      cells = truncated(weights[j] * nbCells(block));
    } else {
      console() << "TLLoadBalancing: block " << record.name << " has " << nbPartitions
                << " processors, but " << weights.size() << " weights\n";
    }
    addPartition(cells, record.name + ", partition #" + std::to_string(j + 1));
  }
}

void TLLoadBalancing::mergeBlocks(const std::vector<std::int32_t>& blocks) {
  std::uint32_t cells = 0;
  for (const auto block : blocks) cells += static_cast<std::uint32_t>(nbCells(block));
  const auto* name = valueOf(*mesh->blocks[static_cast<std::size_t>(blocks.front())], "procName_");
  addPartition(static_cast<std::int32_t>(cells),
               name == nullptr ? RWCString() : name->string(0, 0));
}

void TLLoadBalancing::addPartition(std::int32_t cells, const RWCString& name) {
  console() << "TLLoadBalancing::setup, partName_[iProc]=" << name << '\n'
            << "TLLoadBalancing::setup, ncell_[iProc]=" << cells << '\n';
  ncell_.push_back(cells);
  partName_.push_back(name);
}

void TLLoadBalancing::fitProcesses() {
  // The count is that of the mesh, also while removing processes lowers the field.
  const std::int32_t count = std::max(nbQueuingSystemProcessor, 0);
  const auto known = static_cast<std::int32_t>(processNames.size());
  for (std::int32_t i = known - 1; i >= count; --i) removeProcess(i);
  for (std::int32_t i = known; i < count; ++i) {
    addProcessName("Undefined");
    setProcessOfBlock(i, i);
  }
}
