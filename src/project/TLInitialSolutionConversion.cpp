#include "project/TLInitialSolutionConversion.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "project/TLSubProject.h"

namespace {

using Lines = std::vector<std::pair<std::string_view, RWCString>>;

template <class... Values>
RWCString joined(const Values&... values) {
  TLTextSink sink;
  const char* blank = "";
  ((sink << std::exchange(blank, " ") << values), ...);
  return sink.take();
}

constexpr std::string_view kDirections[] = {"None", "Reverse I", "Reverse J", "Reverse K"};

std::string_view kindOf(const TLSubProject& computation, const TLBlock& block) {
  if (computation.startFromInitialSolutionFile != 0) return "file";
  return block.initialSolutionTurbomachinery != 0 ? "turbo" : "const";
}

/// What the initial solution of a block says, line by line. Blocks with the same lines are a group.
Lines linesOf(const TLSubProject& computation, const TLBlock& block) {
  const auto kind = kindOf(computation, block);
  Lines lines{{"KIND", RWCString(kind)}};
  if (kind == "file") {
    lines.emplace_back("FILE", computation.initialSolutionFile);
    return lines;
  }
  const auto& velocity = block.initialVelocity;
  lines.emplace_back("TEMPERATURE", joined(block.initialTemperature));
  lines.emplace_back("PRESSURE", joined(block.initialPressure));
  lines.emplace_back("VELOCITY", joined(velocity[0], velocity[1], velocity[2]));
  if (kind == "const") return lines;
  const bool radial = block.initialPressureField == TLPressureField::radialEquilibrium;
  const bool fitted = block.initialVelocityFitting == TLVelocityFitting::vm;
  lines.emplace_back("VELOCITY_FITTING", fitted ? "Vm" : "None");
  lines.emplace_back("VELOCITY_FRAME", block.rotationSpeed ? "rel" : "abs");
  lines.emplace_back("PRESSURE_FIELD", radial ? "Radial equilibrium with factor" : "Constant");
  lines.emplace_back("RADIAL_EQUILIBRIUM_FACTOR", joined(block.radialEquilibriumFactor));
  lines.emplace_back("FLOW_DIRECTION",
                     kDirections[static_cast<std::size_t>(block.initialFlowDirection)]);
  return lines;
}

Handle<TLInitSol> makeSolution(const Lines& lines, const RWCString& group) {
  auto solution = makeHandle<TLInitSol>();
  solution->setGroupName(group);
  for (const auto& [key, value] : lines) solution->addLine(key, value);
  return solution;
}

}  // namespace

void makeInitialSolutions(TLSubProject& computation) {
  std::vector<std::pair<Lines, std::int32_t>> groups;
  for (const auto& block : computation.grid->blocks) {
    if (block->initialSolutionIndex >= 0) continue;
    Lines lines = linesOf(computation, *block);
    auto group = std::find_if(groups.begin(), groups.end(),
                              [&lines](const auto& known) { return known.first == lines; });
    if (group == groups.end()) {
      const RWCString name = "Group_" + std::to_string(groups.size() + 1);
      const auto index = static_cast<std::int32_t>(computation.initialSolutions.size());
      computation.initialSolutions.push_back(makeSolution(lines, name));
      groups.emplace_back(std::move(lines), index);
      group = groups.end() - 1;
    }
    block->initialSolutionIndex = group->second;
    block->groupNames.push_back("Group_" + std::to_string(group - groups.begin() + 1));
  }
}
