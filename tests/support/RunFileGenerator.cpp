#include "support/RunFileGenerator.h"

#include <fmt/format.h>

#include <iterator>
#include <string_view>

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

void putBanner(std::string& out, std::string_view line) {
  put(out, "{:#<78}\n#{:*<77}\n{}\n#{:*<77}\n{:#<78}\n", "", "", line, "", "");
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
  std::string out;
  out +=
      "      VERSION                        1.0\n"
      "      GRIDUNIT                       1\n"
      "      NUMBER_OF_GRID_LEVEL_I         3\n"
      "      NUMBER_OF_GRID_LEVEL_J         3\n"
      "      NUMBER_OF_GRID_LEVEL_K         3\n"
      "      ZYVGRIDVERSION                 1210\n"
      "      SHOWKM5MESSAGE                 0\n";
  for (int block = 1; block <= blockCount(); ++block) {
    out += "      TL_BEGIN block\n";
    appendBlock(out, block);
    out += "      TL_END   block\n";
  }
  appendConnections(out);
  return out;
}

void RunFileGenerator::appendBlock(std::string& out, int block) const {
  const auto nodes = nodesOf(block);
  put(out,
      "        VERSION                      3.0\n"
      "        NAME                         domain_{0}\n"
      "        OLD_NAME\t\t       domain_{0}\n"
      "        BLOCK_TYPE                   FLUID\n"
      "        GROUP_NAME                   domain_group_{1}\n"
      "        INITIAL_SOLUTION_INDEX       0\n",
      block, 1 + block % 4);
  if (options_.unstructured) appendHexaSections(out, block);
  put(out,
      "        TL_BEGIN real_entry_full\n"
      "                name                                   Block_Rotation_Speed\n"
      "                value                                  {}\n"
      "                non_deterministic_data                 0\n"
      "        TL_END   real_entry\n",
      block % 3 == 0 ? "-1570.8" : "0");
  put(out,
      "        IMAX                         {}\n"
      "        JMAX                         {}\n"
      "        KMAX                         {}\n",
      nodes[0], nodes[1], nodes[2]);
  out +=
      "        STREAMWISE_DIRECTION         REVERSE_K\n"
      "        SPANWISE_DIRECTION           REVERSE_J\n"
      "        AZIMUTAL_DIRECTION           REVERSE_I\n"
      "        AVERAGE_TOGGLE               no\n"
      "        AVERAGE_DIRECTION            NONE\n"
      "        REPETITION                   ROTATION\n"
      "        NUMBER_OF_BLADES             36\n"
      "        NUMBER_OF_REPETITION         1\n"
      "        PERIODICITY                  36\n"
      "        INITIAL_SOLUTION_TURBOMACHINERY no\n"
      "        INITIAL_TEMPERATURE          293.15\n"
      "        INITIAL_PRESSURE             101325\n"
      "        INITIAL_VELOCITY             0 0 102.5\n"
      "        INITIAL_FLOW_DIRECTION       NONE\n"
      "        INITIAL_VELOCITY_FITTING     Vm\n"
      "        INITIAL_PRESSURE_FIELD       CONSTANT\n"
      "        RADIAL_EQUILIBRIUM_FACTOR    0.25\n"
      "        PROCESS_ID                   -1\n"
      "        NB_CHANNELS                  1\n"
      "        PITCH_DISPLACEMENT           0\n"
      "        CLOCK_VAR                    0\n";
  for (int face = 0; face < 6; ++face) {
    out += "        TL_BEGIN face\n";
    appendFace(out, block, face);
    out += "        TL_END   face\n";
  }
}

void RunFileGenerator::appendFace(std::string& out, int block, int face) const {
  put(out,
      "          VERSION                     1.0\n"
      "          TYPE                        {}\n"
      "          INDEX                       {}\n",
      kSides[face], face + 1);
  for (int patch = 0; patch < options_.patchesPerFace; ++patch) {
    out += "          TL_BEGIN boundary_condition\n";
    appendCondition(out, block, face, patch);
    out += "          TL_END   boundary_condition\n";
  }
}

void RunFileGenerator::appendCondition(std::string& out, int block, int face, int patch) const {
  const auto nodes = nodesOf(block);
  const int other = neighbour(block, face);
  const int kind = (block + face + patch) % 3;
  const auto type = other != 0 ? std::string_view("CON") : kBoundaryTypes[kind];
  const int uCells = nodes[firstDirection(face)] - 1;
  put(out,
      "            VERSION                   4.0\n"
      "            NAME                      domain_{0}_F{1}_P{2}\n"
      "            BC_PARAMETERS_INDEX        {3}\n"
      "            TYPE                      {4}\n"
      "            INDICES                   {5} {6} 1 {7}\n"
      "            BC_INDICES                {0} {1} {2}\n",
      block, face + 1, patch + 1, other != 0 ? -1 : kind % std::max(1, options_.conditionRecords),
      type, 1 + uCells * patch / options_.patchesPerFace,
      1 + uCells * (patch + 1) / options_.patchesPerFace, nodes[secondDirection(face)]);
  if (other != 0) {
    put(out, "            CONNECTION_INFO           {} {} {} 0 1 0\n", other, (face ^ 1) + 1,
        patch + 1);
  }
  out +=
      "            LAGRANGIAN_GROUP_NAME   \n"
      "            COUPLING_NAME           \n"
      "            COUPLING_TYPE           0\n"
      "            DEFORMATION_TYPE        0\n";
  if (type == "SOL") out += "            MODAL_STRUCTURE_INDEX   0\n";
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
        "      TL_BEGIN fnmb_connection\n"
        "            VERSION                      2\n"
        "            NAME:                        fnmb_{0}\n"
        "            PROJECTION_TYPE:             0\n"
        "            SEARCH_TYPE:                 1\n"
        "            SIDE:                        0\n"
        "            TOLERANCE:                   1e-06\n"
        "            MAXIMUM_PROJECTION_DISTANCE: 1e+06\n"
        "            MINIMUM_PROJECTION_DISTANCE: 1e+06\n"
        "            NORMALS_SMOOTHING_STEPS:     0\n"
        "            TRIANGULATED_SIDE:           0\n"
        "            RS_CONNECTION:               0\n"
        "            IS_PERIODIC:                 0\n"
        "            Left_face:            domain_{0}_F6_P1 {1}  {3}  {5}\n"
        "            Right_face:            domain_{2}_F5_P1 {6}  {4}  {5}\n"
        "      TL_END   fnmb_connection\n",
        block, block - shift, other, options_.unstructured ? 1 : 6, options_.unstructured ? 1 : 5,
        1 - shift, other - shift);
  }
}

namespace {

void putParameter(std::string& out, std::string_view name, std::string_view type,
                  std::string_view number, std::string_view value) {
  put(out,
      "          TL_BEGIN tlparameter\n"
      "          VERSION                     1.0\n\n"
      "          NAME                        {}\n"
      "          GLOBAL                      no\n"
      "          TYPE                        {}\n"
      "          EXPERT                      no\n"
      "          NUMBER                      {}\n"
      "          VALUE                       {}\n"
      "          TL_END   tlparameter\n",
      name, type, number, value);
}

constexpr std::string_view kFluid =
    "        TL_BEGIN FLUID_PARAMETERS\n"
    "VERSION                   4.0\n"
    "FLUID_NAME                                 AIR (perfect gas)\n"
    "FLUID_TYPE                                 Perfect Gas\n"
    "FLUID_OWNER                                UNDEFINED\n"
    "VISC_LAW_CHOICE                            2\n"
    "HEAT_COND_LAW_CHOICE                       2\n"
    "CP_LAW_CHOICE                              0\n"
    "BARO_LAW_CHOICE                            0\n"
    "THERMODYNAMIC_TABLES_PATH                  __undefined__\n"
    "     TL_BEGIN FLUID_PROPERTIES\n"
    "      VERSION                        5.0\n"
    "      COMPRESSIBILITY                1e-10\n"
    "      DILATATION                     0.00021\n"
    "      PRANDTL                        0.708\n"
    "      R_GAS_CONST                    287\n"
    "      FLUID_TYPE                     Perfect Gas\n"
    "      REAL_GAS_MODEL                 0\n"
    "      TEMP_REF                       293\n"
    "      PRES_REF                       101325\n"
    "      TEMP_REF_MIN                   100\n"
    "      TEMP_REF_MAX                   2000\n"
    "      PRES_REF_MIN                   1000\n"
    "      PRES_REF_MAX                   1e+07\n"
    "      TEMPERATURE_INF                288.2\n"
    "      TEMPERATURE_SUTHERLAND         110\n"
    "      DENSITY_SUTHERLAND             1.2\n";

constexpr std::string_view kFluidEntry =
    "      TL_BEGIN physical_entry\n"
    "                VERSION               1.0\n"
    "                NAME                  {}\n"
    "                TYPE                  constant\n"
    "                VALUE                 {}\n"
    "                non_deterministic_data                 0\n"
    "      TL_END   physical_entry\n";

void putFluid(std::string& out) {
  out += kFluid;
  constexpr std::array<std::array<std::string_view, 2>, 5> entries{
      {{"dynamic viscosity", "1.716e-05"},
       {"heatConductivity", "0.02428"},
       {"barotropicLaw", "0"},
       {"heatCapacity", "1006"},
       {"gamma", "1.4"}}};
  for (const auto& [name, value] : entries) put(out, fmt::runtime(kFluidEntry), name, value);
  out +=
      "     TL_END   FLUID_PROPERTIES\n"
      "        TL_END   FLUID_PARAMETERS\n";
}

}  // namespace

void RunFileGenerator::appendHexaSections(std::string& out, int block) const {
  const int processor = (block - 1) % options_.processors;
  const auto nodes = nodesOf(block);
  const int cells = (nodes[0] - 1) * (nodes[1] - 1) * (nodes[2] - 1);
  putBanner(out, "#*******                START HEXA PARAMETERS SECTION              ***********");
  out += "        TL_BEGIN hexa_parameters\n          VERSION                     1.0\n";
  putParameter(out, "iParallel_", "INTEGER", "1", "1");
  putParameter(out, "nbProcs_", "INTEGER", "1", std::to_string(options_.processors));
  putParameter(out, "procsOfBlock_", "INTEGER", "1", std::to_string(processor));
  putParameter(out, "PartWeights_", "REAL", "1", "1");
  putParameter(out, "procName_", "STRING", "1", "proc_" + std::to_string(processor));
  for (int i = 0; i < options_.furtherParameters; ++i) {
    putParameter(out, "further_" + std::to_string(i), "REAL", "3",
                 fmt::format("0.{}5 1.5 {}", 1 + i, i));
  }
  out += "        TL_END   hexa_parameters\n";
  putBanner(out, "#*******                START FLUID SECTION                        ***********");
  putFluid(out);
  putBanner(out, "#*******                START HEAT SOURCE TERMS SECTION            ***********");
  putBanner(out, "#*******                START HEXA OUTPUTS SECTION                 ***********");
  putBanner(out, "#*******                START HEXA PARTITIONS SECTION              ***********");
  put(out,
      "        TL_BEGIN hexa_partition\n"
      "        VERSION\t\t1\n"
      "        PARTITION_NAME\tpartition_{0}\n"
      "        PARTITION_ID\t\t{1}\n"
      "        NB_CELLS\t\t{2}\n"
      "        NB_VERTICES\t\t{3}\n"
      "        TL_END   hexa_partition\n",
      block, processor, cells, nodes[0] * nodes[1] * nodes[2]);
  put(out,
      "        FLUID_NAME                     AIR (perfect gas)\n"
      "        NB_CELLS                       {0}\n"
      "        NB_LEAF_CELLS                  {0}\n"
      "        NB_VERTICES                    {1}\n"
      "        NB_AGGLO_LEVELS_MAX            4\n"
      "        MINIMUM_NORMALIZED_EDGE_LENGTH 0.0125\n"
      "        NB_NEGATIVE_CELLS              0\n"
      "        NB_CONCAVE_CELLS               0\n"
      "        NB_TWISTED_CELLS               2\n"
      "        NB_RELAXED_CELLS               0\n"
      "        SKEWNESS_VALUES                12.5 45.25 89.9\n"
      "        EXPANSION_RATIO_VALUES         1 1.2 3.75\n"
      "        ASPECT_RATIO_VALUES            1 25.5 1250\n"
      "        IS_2D                          0\n",
      cells, nodes[0] * nodes[1] * nodes[2]);
}
