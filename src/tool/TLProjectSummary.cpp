#include "tool/TLProjectSummary.h"

#include <fmt/format.h>

#include <cstdint>
#include <map>
#include <string>

#include "parameters/TLParametersDataBase.h"
#include "project/TLProjectType.h"

namespace {

std::string fileText(const TLFile& file) {
  if (file.isUnknown()) return "none";
  return file.path() + (file.exists() ? "" : "  (not found)");
}

std::string yesNo(bool value) {
  return value ? "yes" : "no";
}

std::int64_t cellsOf(const TLBlock& block) {
  if (block.projectType == TLProjectType::hexa && block.nbCells > 0) return block.nbCells;
  const auto cells = [](std::int32_t nodes) { return static_cast<std::int64_t>(nodes) - 1; };
  return cells(block.imax) * cells(block.jmax) * cells(block.kmax);
}

std::string_view typeText(TLBlockType type) {
  switch (type) {
    case TLBlockType::fluid:
      return "fluid";
    case TLBlockType::solid:
      return "solid";
    case TLBlockType::throughflow:
      return "throughflow";
  }
  return "";
}

std::string blockText(const TLBlock& block) {
  std::size_t conditions = 0;
  for (const auto& face : block.faces) conditions += face->conditions.size();
  std::string text = fmt::format("{}, {} x {} x {} nodes, {} cells, {} faces, {} conditions",
                                 typeText(block.blockType), block.imax, block.jmax, block.kmax,
                                 cellsOf(block), block.faces.size(), conditions);
  if (block.processId >= 0) text += fmt::format(", process {}", block.processId);
  if (!block.groupNames.empty()) text += fmt::format(", group {}", block.groupName());
  return text;
}

void addMesh(TLSummary& summary, const TLGrid& grid) {
  std::int64_t cells = 0;
  for (const auto& block : grid.blocks) cells += cellsOf(*block);
  TLSummary& mesh = summary.section("mesh");
  mesh.add("version", fmt::format("{}", grid.version));
  mesh.add("blocks", std::to_string(grid.blocks.size()));
  mesh.add("cells", std::to_string(cells));
  mesh.add("grid levels",
           fmt::format("{} {} {}", grid.gridLevelI, grid.gridLevelJ, grid.gridLevelK));
  TLSummary& blocks = mesh.section("blocks");
  for (std::size_t i = 0; i < grid.blocks.size(); ++i) {
    blocks.add(fmt::format("{} {}", i + 1, grid.blocks[i]->name), blockText(*grid.blocks[i]));
  }
  std::map<std::string, int> kinds;
  int connections = 0;
  grid.forEachCondition([&](const TLBC& condition) {
    ++kinds[condition.type.empty() ? "without a type" : condition.type];
    if (condition.isConnection()) ++connections;
  });
  TLSummary& conditions = mesh.section("conditions by kind");
  for (const auto& [kind, count] : kinds) conditions.add(kind, std::to_string(count));
  TLSummary& links = mesh.section("connections");
  links.add("of patches", std::to_string(connections));
  links.add("full non-matching", std::to_string(grid.connections.size()));
}

void addConditions(TLSummary& summary, const TLSubProject& computation) {
  if (computation.bcParameters.empty()) return;
  TLSummary& records = summary.section("boundary conditions");
  for (std::size_t i = 0; i < computation.bcParameters.size(); ++i) {
    const auto& record = *computation.bcParameters[i];
    const std::size_t entries = record.physicalEntries.size() + record.chemicalEntries.size() +
                                record.realEntries.size() + record.vectorEntries.size() +
                                record.integerEntries.size() + record.choiceEntries.size() +
                                record.stringEntries.size() + record.lagrangianEntries.size();
    records.add(std::to_string(i), fmt::format("{}, id {}, option {}, {} entries", record.type,
                                               record.typeId, record.typeOpsel, entries));
  }
}

void addInitialSolutions(TLSummary& summary, const TLSubProject& computation) {
  if (computation.initialSolutions.empty()) return;
  TLSummary& solutions = summary.section("initial solutions");
  for (std::size_t i = 0; i < computation.initialSolutions.size(); ++i) {
    const auto& solution = *computation.initialSolutions[i];
    solutions.add(std::to_string(i),
                  solution.kind() + (solution.isFile() ? ", " + solution.path() : std::string()));
  }
}

void addFluids(TLSummary& summary, const TLSubProject& computation) {
  if (computation.fluids.empty()) return;
  TLSummary& fluids = summary.section("fluids");
  for (const auto& fluid : computation.fluids) {
    fluids.add(fluid->fluidName,
               fmt::format("{}, version {}, laws: viscosity {}, heat conductivity {}, cp {}, "
                           "barotropic {}",
                           fluid->fluidType, fluid->version, fluid->viscLawChoice,
                           fluid->heatCondLawChoice, fluid->cpLawChoice, fluid->baroLawChoice));
  }
}

// What a computation sets otherwise than the definition that its parameters come from.
void addSettings(TLSummary& summary, const TLSubProject& computation) {
  if (!computation.parameters || !TLParametersDataBase::problem().empty()) return;
  std::map<std::string, std::string> defined;
  for (const auto& item : TLParametersDataBase::instance().items()) {
    defined[item.descriptor] = item.values;
  }
  TLSummary& settings = summary.section("solver settings that differ from the definition");
  for (const auto& item : computation.parameters->items()) {
    const auto known = defined.find(item.descriptor);
    if (known != defined.end() && known->second == item.values) continue;
    settings.add(item.descriptor.substr(0, item.descriptor.find(',')),
                 known == defined.end()
                     ? item.values
                     : fmt::format("{}  (definition: {})", item.values, known->second));
  }
}

std::string_view modeText(TLRunningMode mode) {
  switch (mode) {
    case TLRunningMode::stopped:
      return "stopped";
    case TLRunningMode::foreground:
      return "foreground";
    case TLRunningMode::background:
      return "background";
  }
  return "";
}

void addComputation(TLSummary& parent, const TLSubProject& computation, const std::string& title) {
  TLSummary summary{title, {}, {}};
  summary.add("version", fmt::format("{}", computation.version));
  summary.add("running mode", std::string(modeText(computation.runningMode)));
  summary.add("fluid", fmt::format("{}, {}", computation.fluidName, computation.fluidType));
  summary.add("double precision", yesNo(computation.userSolverPrecision != 0));
  summary.add("grid level", fmt::format("{} {} {}", computation.gridLevelI, computation.gridLevelJ,
                                        computation.gridLevelK));
  summary.add("reference run", fileText(computation.referenceRunFile));
  summary.add("own partition", yesNo(computation.virtualPartition.isActivated()));
  addSettings(summary, computation);
  addInitialSolutions(summary, computation);
  addConditions(summary, computation);
  addFluids(summary, computation);
  addMesh(summary, *computation.grid);
  for (const auto& child : computation.nonDeterministicChildren) {
    addComputation(summary, *child, "computation within: " + child->name);
  }
  parent.sections.push_back(std::move(summary));
}

}  // namespace

TLSummary summaryOf(const TLProject& project) {
  TLSummary summary{"project", {}, {}};
  summary.add("type", std::string(TLProject::projectTypeWord(project.projectType())));
  if (!project.applicationType().empty()) summary.add("application", project.applicationType());
  summary.add("version", fmt::format("{}", project.version));
  summary.add("precision", project.solverPrecision);
  summary.add("mesh file", fileText(project.gridFile));
  summary.add("geometry file", fileText(project.geometryFile));
  summary.add("blade file", fileText(project.trbFile));
  summary.add("computations", std::to_string(project.computations.size()));
  for (std::size_t i = 0; i < project.computations.size(); ++i) {
    const auto& computation = *project.computations[i];
    addComputation(summary, computation, fmt::format("computation {} {}", i + 1, computation.name));
  }
  return summary;
}
