#include "support/RunFileGenerator.h"

#include <fmt/format.h>

#include <iterator>
#include <string_view>

#include "project/TLGrid.h"
#include "project/TLProjectType.h"

namespace {

constexpr std::array<std::string_view, 6> kSides{"KMIN", "KMAX", "JMIN", "JMAX", "IMIN", "IMAX"};
constexpr std::array<std::string_view, 3> kBoundaryTypes{"SOL", "INL", "OUT"};
constexpr std::array<std::string_view, 3> kBoundaryRecords{"SOLID", "INLET", "OUTLET"};

int directionOf(int face) {
  return 2 - face / 2;
}
int firstDirection(int face) {
  return face >= 4 ? 1 : 0;
}
int secondDirection(int face) {
  return face >= 2 ? 2 : 1;
}

template <class... Args>
void put(std::string& out, fmt::format_string<Args...> form, Args&&... args) {
  fmt::format_to(std::back_inserter(out), form, std::forward<Args>(args)...);
}

std::uint32_t mixed(std::uint32_t value) {
  value ^= value >> 16;
  value *= 0x7feb352dU;
  value ^= value >> 15;
  value *= 0x846ca68bU;
  return value ^ (value >> 16);
}

constexpr std::string_view kConditionRecord =
    "    TL_BEGIN bc_parameters\n"
    "    BC_PARAMETERS_INDEX       {0}\n"
    "              VERSION                 3.0\n"
    "              TYPE                    {1}\n"
    "              TYPE_ID                 {2}\n"
    "              TYPE_OPSEL              1\n"
    "              CONDITION               none\n"
    "    TL_END   bc_parameters\n";

}  // namespace

std::array<int, 3> RunFileGenerator::placeOf(int block) const {
  const int number = block - 1;
  const int rows = options_.blocks[0];
  const int layers = rows * options_.blocks[1];
  return {number % rows, number % layers / rows, number / layers};
}

std::array<int, 3> RunFileGenerator::nodesOf(int block) const {
  const auto place = placeOf(block);
  auto nodes = options_.nodes;
  if (options_.sizeSpread <= 0) return nodes;
  for (int d = 0; d < 3; ++d) {
    const auto key = options_.seed * 7919U + static_cast<std::uint32_t>(d * 100003 + place[d]);
    nodes[d] += static_cast<int>(mixed(key) % static_cast<std::uint32_t>(options_.sizeSpread + 1));
  }
  return nodes;
}

int RunFileGenerator::neighbour(int block, int face) const {
  auto place = placeOf(block);
  const int d = directionOf(face);
  place[d] += face % 2 == 0 ? -1 : 1;
  if (place[d] < 0 || place[d] >= options_.blocks[d]) return 0;
  return 1 + place[0] + options_.blocks[0] * (place[1] + options_.blocks[1] * place[2]);
}

std::string RunFileGenerator::runFile() const {
  std::string out = "TALVEN_PROJECT_FILE   VERSION 1210\n";
  put(out, "PROJECT_TYPE  {}\n", options_.unstructured ? "HEXA" : "STRUCTURED");
  out += "COMPUTATION_NAME computation_1\nSUB_PROJECT_FLAG 0\n";
  put(out, "GRID_FILE          {}\n", options_.gridFile);
  out += "  TL_BEGIN computation\n    VERSION                          1210\n";
  out += "    NAME                             computation_1\n";
  out += options_.computationLines;
  if (!options_.solverParameters.empty()) {
    put(out, "    TL_BEGIN solver_parameters\n{}    TL_END   solver_parameters\n",
        options_.solverParameters);
  }
  for (int i = 0; i < options_.conditionRecords; ++i) {
    put(out, fmt::runtime(kConditionRecord), i, kBoundaryRecords[i % 3], 10 + i % 3);
  }
  out += "    TL_BEGIN grid_bc\n" + grid() + "    TL_END   grid_bc\n";
  out += "  TL_END   computation\n";
  return out;
}

std::string RunFileGenerator::grid() const {
  std::string lines =
      "NUMBER_OF_GRID_LEVEL_I 3\nNUMBER_OF_GRID_LEVEL_J 3\nNUMBER_OF_GRID_LEVEL_K 3\n";
  for (int block = 1; block <= blockCount(); ++block) {
    lines += "TL_BEGIN block\n";
    appendBlock(lines, block);
    lines += "TL_END block\n";
  }
  appendConnections(lines);
  TLGrid grid(options_.unstructured ? TLProjectType::hexa : TLProjectType::structured);
  TLTextSource source(std::move(lines));
  grid.read(source);
  TLTextSink sink;
  grid.write(sink);
  return sink.take();
}

void RunFileGenerator::appendBlock(std::string& out, int block) const {
  const auto nodes = nodesOf(block);
  put(out,
      "VERSION 3.0\nNAME domain_{}\nROTATION_SPEED -1570.8\nIMAX {}\nJMAX {}\nKMAX {}\n"
      "INITIAL_TEMPERATURE 293.15\nINITIAL_PRESSURE 101325\nINITIAL_VELOCITY 0 0 102.5\n",
      block, nodes[0], nodes[1], nodes[2]);
  if (options_.unstructured) appendHexaSections(out, block);
  for (int face = 0; face < 6; ++face) {
    put(out, "TL_BEGIN face\nTYPE {}\nINDEX {}\n", kSides[face], face + 1);
    for (int patch = 0; patch < options_.patchesPerFace; ++patch) {
      appendCondition(out, block, face, patch);
    }
    out += "TL_END face\n";
  }
}

void RunFileGenerator::appendCondition(std::string& out, int block, int face, int patch) const {
  const auto nodes = nodesOf(block);
  const int other = neighbour(block, face);
  const int kind = (block + face + patch) % 3;
  const int uCells = nodes[firstDirection(face)] - 1;
  put(out,
      "TL_BEGIN boundary_condition\nVERSION 4.0\nNAME domain_{0}_F{1}_P{2}\n"
      "BC_PARAMETERS_INDEX {3}\nTYPE {4}\nINDICES {5} {6} 1 {7}\nBC_INDICES {0} {1} {2}\n",
      block, face + 1, patch + 1, other != 0 ? -1 : kind % std::max(1, options_.conditionRecords),
      other != 0 ? std::string_view("CON") : kBoundaryTypes[kind],
      1 + uCells * patch / options_.patchesPerFace,
      1 + uCells * (patch + 1) / options_.patchesPerFace, nodes[secondDirection(face)]);
  if (other != 0) put(out, "CONNECTION_INFO {} {} {} 0 1 0\n", other, (face ^ 1) + 1, patch + 1);
  out += "TL_END boundary_condition\n";
}

void RunFileGenerator::appendConnections(std::string& out) const {
  int left = options_.fullNonMatching;
  for (int block = 1; block <= blockCount() && left > 0; ++block) {
    const int other = neighbour(block, 5);
    if (other == 0) continue;
    --left;
    // The unstructured solver counts block and patch from 0 and has one face.
    const int shift = options_.unstructured ? 1 : 0;
    put(out,
        "TL_BEGIN fnmb_connection\nNAME: fnmb_{0}\nSEARCH_TYPE: 1\n"
        "Left_face: domain_{0}_F6_P1 {1} {3} {5}\nRight_face: domain_{2}_F5_P1 {6} {4} {5}\n"
        "TL_END fnmb_connection\n",
        block, block - shift, other, options_.unstructured ? 1 : 6, options_.unstructured ? 1 : 5,
        1 - shift, other - shift);
  }
}

void RunFileGenerator::appendHexaSections(std::string& out, int block) const {
  const auto parameter = [&out](const std::string& name, std::string_view type, int count,
                                const std::string& value) {
    put(out, "TL_BEGIN tlparameter\nNAME {}\nTYPE {}\nNUMBER {}\nVALUE {}\nTL_END tlparameter\n",
        name, type, count, value);
  };
  const int processor = (block - 1) % options_.processors;
  const auto nodes = nodesOf(block);
  const int cells = (nodes[0] - 1) * (nodes[1] - 1) * (nodes[2] - 1);
  out += "TL_BEGIN hexa_parameters\n";
  parameter("iParallel_", "INTEGER", 1, "1");
  parameter("nbProcs_", "INTEGER", 1, std::to_string(options_.processors));
  parameter("procsOfBlock_", "INTEGER", 1, std::to_string(processor));
  parameter("PartWeights_", "REAL", 1, "1");
  parameter("procName_", "STRING", 1, "proc_" + std::to_string(processor));
  for (int i = 0; i < options_.furtherParameters; ++i) {
    parameter("further_" + std::to_string(i), "REAL", 3, fmt::format("0.{}5 1.5 {}", 1 + i, i));
  }
  out +=
      "TL_END hexa_parameters\nTL_BEGIN fluid_parameters\nVERSION 4.0\nTL_BEGIN fluid_properties\n";
  for (const std::string_view name :
       {"dynamic viscosity", "heatConductivity", "barotropicLaw", "heatCapacity", "gamma"}) {
    put(out, "TL_BEGIN physical_entry\nNAME {}\nTYPE constant\nVALUE 1.4\nTL_END physical_entry\n",
        name);
  }
  put(out,
      "TL_END fluid_properties\nTL_END fluid_parameters\n"
      "TL_BEGIN hexa_partition\nPARTITION_NAME partition_{}\nPARTITION_ID {}\nNB_CELLS {}\n"
      "TL_END hexa_partition\nNB_CELLS {}\nSKEWNESS_VALUES 12.5 45.25 89.9\n",
      block, processor, cells, cells);
}
