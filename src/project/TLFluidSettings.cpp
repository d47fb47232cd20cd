#include "project/TLFluidSettings.h"

#include <algorithm>

#include "project/TLSolverValues.h"
#include "project/TLSubProject.h"

namespace {

constexpr const char* kUnknown = "unknown";
constexpr const char* kPerfectGas = "Perfect Gas";
constexpr const char* kCondensableGas = "Condensable Gas";

/// Value that a solver parameter has for one kind of fluid.
struct FluidRow {
  std::string_view fluidType;
  std::string_view descriptor;  ///< empty: this kind asks for nothing
  std::int32_t value;
};
constexpr FluidRow kFluidRows[] = {
    {"Perfect Gas", "", 0},
    {"Real Gas", "", 0},
    {"Condensable Fluid", "IROVAR,I,1,1,0", 1},
    {"Incompressible", "", 0},
};

constexpr std::int32_t kCoolingSector = 3;

/// Name of the directory that a path of tables ends in, without separators.
RWCString lastDirectory(RWCString path) {
  const auto end = path.find_last_not_of("/\\");
  if (end == RWCString::npos) return {};
  path.erase(end + 1);
  const auto separator = path.find_last_of("/\\");
  return separator == RWCString::npos ? path : path.substr(separator + 1);
}

/// The computation's name of its fluid before "unknown" is replaced.
RWCString plainName(const TLSubProject& computation) {
  if (computation.fluids.empty()) return computation.fluidName;
  const auto& fluid = *computation.fluids.front();
  if (fluid.fluidType == kCondensableGas && fluid.thermodynamicTablesPath != TLFluid::kNoTables) {
    const RWCString table = lastDirectory(fluid.thermodynamicTablesPath);
    if (!table.empty()) return table;
  }
  return fluid.fluidName;
}

}  // namespace

RWCString TLFluidSettings::writtenName(const TLSubProject& computation) {
  const RWCString name = plainName(computation);
  return name == kUnknown ? RWCString(kPerfectGas) : name;
}

RWCString TLFluidSettings::writtenType(const TLSubProject& computation) {
  return plainName(computation) == kUnknown ? RWCString(kPerfectGas) : computation.fluidType;
}

void TLFluidSettings::apply(const TLSubProject& computation) {
  if (!computation.parameters) return;
  TLSolverValues values(*computation.parameters);
  const RWCString type = writtenType(computation);
  for (const auto& row : kFluidRows) {
    if (row.fluidType == type && !row.descriptor.empty()) {
      values.setInteger(row.descriptor, row.value);
    }
  }
}

void TLFluidSettings::applyInjection(const TLSubProject& computation) {
  if (!computation.parameters) return;
  const auto& sectors = computation.injectionSectors;
  const bool cooled = std::any_of(sectors.begin(), sectors.end(), [](const auto& sector) {
    return sector->kind() == kCoolingSector;
  });
  if (cooled) TLSolverValues(*computation.parameters).setInteger("COOLFL,I,1,1,0", 3);
}
