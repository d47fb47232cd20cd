#include "project/TLComputationConversions.h"

#include <algorithm>
#include <cstdlib>
#include <initializer_list>
#include <utility>

#include "parameters/TLUnitsDataBase.h"
#include "platform/TLConsole.h"
#include "platform/TLHostForm.h"
#include "project/TLFluidConversion.h"
#include "project/TLInitialSolutionConversion.h"
#include "project/TLProjectType.h"
#include "project/TLSolverValues.h"
#include "project/TLSubProject.h"
#include "textio/TLNumbers.h"

namespace {

constexpr const char* kCondensableFluid = "Condensable Fluid";

// When a step is due --------------------------------------------------------------------------

// The limit in thousandths: a real can't be a template's argument with every compiler.
template <int Thousandths>
bool isBelow(const TLSubProject& computation) {
  return computation.version < Thousandths / 1000.0;
}

bool always(const TLSubProject& /*computation*/) {
  return true;
}

bool isHexa(const TLSubProject& computation) {
  return computation.projectType == TLProjectType::hexa;
}

bool isOldStructured(const TLSubProject& computation) {
  return computation.version < 900.0 && !TLProjectType::isUnstructured(computation.projectType);
}

bool hasOldFluid(const TLSubProject& computation) {
  return std::any_of(computation.fluids.begin(), computation.fluids.end(), needsSolverValues);
}

bool hasOldCoupling(const TLSubProject& computation) {
  return computation.version < 8.9 && computation.parameters &&
         TLSolverValues(*computation.parameters).integer("IMPCCI,I,1,1,0") == 1;
}

bool isCondensableFluid(const TLSubProject& computation) {
  const auto& fluids = computation.fluids;
  return computation.fluidName == kCondensableFluid ||
         (!fluids.empty() && fluids.front()->fluidName == kCondensableFluid);
}

/// The first condition of the grid; null when it has none.
const TLBC* firstCondition(const TLSubProject& computation) {
  for (const auto& block : computation.grid->blocks) {
    for (const auto& face : block->faces) {
      if (!face->conditions.empty()) return face->conditions.front().get();
    }
  }
  return nullptr;
}

bool hasOldRoughness(const TLSubProject& computation) {
  const TLBC* condition = firstCondition(computation);
  return condition != nullptr && condition->version > 2.9 && condition->version < 4.0 &&
         computation.unitIndex("length") >= 3;
}

bool hasOldAcoustic(const TLSubProject& computation) {
  return computation.acoustic && computation.acoustic->version() < 5.0;
}

// Common ways ---------------------------------------------------------------------------------

/// Calls `visit(condition, block, face, patch)` for all conditions, with their places from 1.
template <class Visit>
void forEachPatch(const TLSubProject& computation, Visit visit) {
  int blockNumber = 0;
  for (const auto& block : computation.grid->blocks) {
    ++blockNumber;
    int faceNumber = 0;
    for (const auto& face : block->faces) {
      ++faceNumber;
      int patch = 0;
      for (const auto& condition : face->conditions) {
        visit(*condition, blockNumber, faceNumber, ++patch);
      }
    }
  }
}

/// Factor from the unit that the computation gives values of a quantity in to the first one of its
/// kind; 1 when the database doesn't know.
double toFirstUnit(const TLSubProject& computation, const RWCString& quantity) {
  const auto units = TLUnitsDataBase::instance().find(quantity);
  if (!units) return 1.0;
  const double factor = units->factor(computation.unitIndex(quantity), units->firstSystem);
  return factor == 0.0 ? 1.0 : factor;
}

TLParameter* hexaParameter(const TLBlock& block, std::string_view name) {
  return block.hexaParameters ? block.hexaParameters->find(name) : nullptr;
}

/// The first element of a value, read as a number where it is a text; 0 without one.
double numberOf(const TLParameterValue& value) {
  const bool text = value.type() == TLValueType::string && value.rows() > 0 && value.columns() > 0;
  return text ? realFrom(value.string(0, 0)) : value.firstNumber().value_or(0.0);
}

void setNumber(TLParameterValue& value, double number) {
  if (value.rows() < 1 || value.columns() < 1) return;
  switch (value.type()) {
    case TLValueType::integer:
      value.setInteger(0, 0, static_cast<std::int32_t>(number));
      break;
    case TLValueType::real:
      value.setReal(0, 0, number);
      break;
    case TLValueType::single:
      value.setSingle(0, 0, static_cast<float>(number));
      break;
    case TLValueType::string:
      break;
  }
}

/// A setting of a block as a number; 0 when the block lacks it.
double hexaNumber(const TLBlock& block, std::string_view name) {
  const TLParameter* parameter = hexaParameter(block, name);
  return parameter == nullptr ? 0.0 : numberOf(parameter->value);
}

// 1. Outlets control their backflow -----------------------------------------------------------

void addBackflowControl(TLSubProject& computation) {
  std::int32_t control = 1;
  if (computation.parameters) {
    TLSolverValues values(*computation.parameters);
    if (!values.has("BCKFLO,I,1,1,0")) values.setInteger("BCKFLO,I,1,1,0", control);
    control = values.integer("BCKFLO,I,1,1,0", control);
  }
  forEachPatch(computation, [control](TLBC& condition, int block, int face, int patch) {
    if (condition.type != "OUT") return;
    if (!condition.parameters) {
      console() << "Info:\tno parameters to control the backflow of"
                << patchName(block, face, patch) << '\n'
                << std::flush;
      return;
    }
    if (condition.parameters->entry("Backflow Control")) return;
    auto entry = makeHandle<TLIntegerEntry>();
    entry->name = "Backflow Control";
    entry->value = control;
    entry->position = static_cast<std::int32_t>(condition.parameters->integerEntries.size());
    condition.parameters->integerEntries.push_back(entry);
  });
}

// 3. Heat sources of the blocks ---------------------------------------------------------------

void addHeatSources(TLSubProject& computation) {
  for (const auto& block : computation.grid->blocks) {
    if (hexaNumber(*block, "iVolHeatSrcTrm_") == 0.0) continue;
    TLNamedChild<TLVolumicHeatSource> source{"spherical_heat_source",
                                             makeHandle<TLVolumicHeatSource>()};
    source.record->setSphere(hexaNumber(*block, "heatSrcTrm_"),
                             {hexaNumber(*block, "xCenterSphereVolHeatSrcTrm_"),
                              hexaNumber(*block, "yCenterSphereVolHeatSrcTrm_"),
                              hexaNumber(*block, "zCenterSphereVolHeatSrcTrm_")},
                             hexaNumber(*block, "radiusSphereVolHeatSrcTrm_"));
    block->heatSources.push_back(std::move(source));
  }
}

// 4. Units of the parameters ------------------------------------------------------------------

struct UnitRow {
  const char* quantity;
  std::initializer_list<std::string_view> descriptors;
};
const UnitRow kUnitRows[] = {
    {"length",
     {"XCOSC,R,1,1,0", "YCOSC,R,1,1,0", "ZCOSC,R,1,1,0", "AMPOSC,R,1,1,0", "XROTC,R,1,1,0",
      "YROTC,R,1,1,0", "ZROTC,R,1,1,0"}},
    {"angle", {"ALFOSC,R,1,1,0", "BETOSC,R,1,1,0", "PHIOSC,R,1,1,0", "AMPDEG,R,1,1,0"}},
    {"rotational_speed", {"OMGOSC,R,1,1,0"}},
};

void applyUnits(TLSubProject& computation) {
  if (!computation.parameters) return;
  TLSolverValues values(*computation.parameters);
  for (const auto& row : kUnitRows) {
    const double factor = toFirstUnit(computation, row.quantity);
    for (const auto descriptor : row.descriptors) values.scale(descriptor, factor);
  }
  if (!values.has("IMOVQS,I,1,1,0")) values.setInteger("IMOVQS,I,1,1,0", 0);
  for (const auto descriptor : {"QSAMPY,R,1,1,0", "QSOMGZ,R,1,1,0"}) {
    if (!values.has(descriptor)) values.setReal(descriptor, 0.0);
  }
}

// 5. ------------------------------------------------------------------------------------------

void raiseShapeModel(TLSubProject& computation) {
  if (!computation.parameters) return;
  TLSolverValues values(*computation.parameters);
  if (values.integer("RSHAME,I,1,1,0") == 3) values.setInteger("RSHAME,I,1,1,0", 4);
}

// 6. CPU booster ------------------------------------------------------------------------------

/// A setting of an unstructured block that the booster has an own one for: its value goes there,
/// and it takes the usual one.
struct BoosterRow {
  std::string_view from;
  std::string_view to;
  double usual;
};
constexpr BoosterRow kBoosterRows[] = {
    {"tm_cflV_", "tm_cflVCPB_", 3.0},
    {"turb_mavRem_", "turb_mavRemCPB_", 0.95},
    {"turb_mavRes_", "turb_mavResCPB_", 0.95},
};

void boostBlocks(const TLSubProject& computation) {
  for (const auto& block : computation.grid->blocks) {
    if (hexaNumber(*block, "iCPUBooster_") != 1.0) continue;
    for (const auto& row : kBoosterRows) {
      TLParameter* from = hexaParameter(*block, row.from);
      TLParameter* to = hexaParameter(*block, row.to);
      if (from == nullptr) continue;
      if (to != nullptr) setNumber(to->value, numberOf(from->value));
      setNumber(from->value, row.usual);
    }
    // The settings are those of the booster of that time.
    if (TLParameter* old = hexaParameter(*block, "tm_iOldCPB_")) setNumber(old->value, 1.0);
  }
}

/// Fluids with which the structured solver's booster runs.
constexpr std::string_view kBoostedFluids[] = {"Perfect Gas", "Real Gas", "Incompressible"};

void boostStructured(TLSubProject& computation) {
  if (!computation.parameters) return;
  TLSolverValues values(*computation.parameters);
  const RWCString& type =
      computation.fluidType == "unknown" ? kBoostedFluids[0].data() : computation.fluidType;
  const bool suits = std::find(std::begin(kBoostedFluids), std::end(kBoostedFluids), type) !=
                     std::end(kBoostedFluids);
  if (!values.has("IRSMCH,I,1,1,0")) values.setInteger("IRSMCH,I,1,1,0", 0);
  if (values.integer("CPUBOO,I,1,1,0") == 0) return;
  values.setInteger("CPUBOO,I,1,1,0", suits ? values.integer("CPUBOO,I,1,1,0") : 0);
  values.setInteger("IRSMCH,I,1,1,0", suits ? 1 : 0);
}

void settleBooster(TLSubProject& computation) {
  if (isHexa(computation)) {
    if (computation.version < 8.9) boostBlocks(computation);
  } else if (!TLProjectType::isUnstructured(computation.projectType)) {
    boostStructured(computation);
  }
}

// 7. Fluids -----------------------------------------------------------------------------------

void fillFluids(TLSubProject& computation) {
  for (const auto& fluid : computation.fluids) {
    if (needsSolverValues(fluid)) fillFromSolverValues(*fluid, computation);
  }
}

// 8. Tables of the unstructured solver --------------------------------------------------------

constexpr std::string_view kTableDirectories[] = {"tables_water_steam", "tables_R134a",
                                                  "thermodynamic_tables"};

void moveTables(TLFluid& fluid, const RWCString& home) {
  RWCString& path = fluid.thermodynamicTablesPath;
  for (const auto directory : kTableDirectories) {
    const auto place = path.rfind(directory);
    if (place == RWCString::npos) continue;
    const RWCString moved = hostForm().join(home, path.substr(place));
    if (moved == path) return;
    console() << "Old path to thermodynamic tables: " << path << '\n'
              << "New path to thermodynamic tables: " << moved << '\n'
              << "Path to thermodynamic tables has been updated !\n"
              << std::flush;
    path = moved;
    return;
  }
}

void moveAllTables(TLSubProject& computation) {
  const char* home = std::getenv("VELSTRA_DIR");
  if (home == nullptr) return;
  for (const auto& fluid : computation.fluids) moveTables(*fluid, home);
  for (const auto& block : computation.grid->blocks) {
    if (block->fluid) moveTables(*block->fluid, home);
  }
}

// 9. to 12. -----------------------------------------------------------------------------------

constexpr std::int32_t kCoupledSurface = 2;

const TLEntry* firstEntry(const TLBCParameters& parameters) {
  const TLEntry* first = nullptr;
  const auto look = [&first](const auto& list) {
    for (const auto& entry : list) {
      if (first == nullptr || entry->position < first->position) first = entry.get();
    }
  };
  look(parameters.choiceEntries);
  look(parameters.integerEntries);
  look(parameters.realEntries);
  look(parameters.vectorEntries);
  look(parameters.stringEntries);
  look(parameters.physicalEntries);
  return first;
}

void coupleSurfaces(TLSubProject& computation) {
  computation.grid->forEachCondition([](TLBC& condition) {
    const TLEntry* first = condition.parameters ? firstEntry(*condition.parameters) : nullptr;
    if (first != nullptr && (first->name == "Moving_Surface" || first->name == "Heated_Surface")) {
      condition.couplingType = kCoupledSurface;
    }
  });
}

void useVariableDensity(TLSubProject& computation) {
  if (computation.parameters) {
    TLSolverValues(*computation.parameters).setInteger("IROVAR,I,1,1,0", 1);
  }
}

constexpr std::string_view kRoughnessEntries[] = {
    "zero-displacement-plane", "Equivalent Roughness Height", "Roughness-height"};

void scaleRoughness(TLBCParameters& parameters, double factor) {
  const auto isRoughness = [](const RWCString& name) {
    return std::find(std::begin(kRoughnessEntries), std::end(kRoughnessEntries), name) !=
           std::end(kRoughnessEntries);
  };
  for (const auto& entry : parameters.realEntries) {
    if (isRoughness(entry->name)) entry->value *= factor;
  }
  for (const auto& entry : parameters.physicalEntries) {
    if (isRoughness(entry->name)) entry->value *= factor;
  }
}

void convertRoughness(TLSubProject& computation) {
  const double factor = toFirstUnit(computation, "length");
  std::vector<const TLBCParameters*> done;  // records are shared by conditions
  computation.grid->forEachCondition([&](TLBC& condition) {
    TLBCParameters* parameters = condition.parameters.get();
    if (condition.type != "SOL" || parameters == nullptr) return;
    if (std::find(done.begin(), done.end(), parameters) != done.end()) return;
    done.push_back(parameters);
    scaleRoughness(*parameters, factor);
  });
}

void takeAcousticConfiguration(TLSubProject& computation) {
  if (!computation.parameters) return;
  const TLSolverValues values(*computation.parameters);
  computation.acousticConfiguration =
      values.integer("IACOUS,I,1,1,0", computation.acousticConfiguration);
}

// The steps in their order.
constexpr TLComputationConversion kConversions[] = {
    {"backflow control of outlets", &isBelow<1500>, &addBackflowControl},
    {"initial solutions of blocks", &isBelow<2500>, &makeInitialSolutions},
    {"volumic heat sources", &isBelow<8000>, &addHeatSources},
    {"units of parameters", &isBelow<8900>, &applyUnits},
    {"shape model", &isOldStructured, &raiseShapeModel},
    {"CPU booster", &always, &settleBooster},
    {"fluid from solver parameters", &hasOldFluid, &fillFluids},
    {"tables of the unstructured solver", &isHexa, &moveAllTables},
    {"coupled surfaces", &hasOldCoupling, &coupleSurfaces},
    {"variable density", &isCondensableFluid, &useVariableDensity},
    {"units of roughness", &hasOldRoughness, &convertRoughness},
    {"acoustic configuration", &hasOldAcoustic, &takeAcousticConfiguration},
};

}  // namespace

std::span<const TLComputationConversion> computationConversions() {
  return kConversions;
}

void convertComputation(TLSubProject& computation) {
  for (const auto& conversion : kConversions) {
    if (conversion.isDue(computation)) conversion.run(computation);
  }
}

RWCString patchName(int block, int face, int patch) {
  return " B" + std::to_string(block) + " F" + std::to_string(face) + " P" + std::to_string(patch);
}
