#include "project/TLFluidConversion.h"

#include <vector>

#include "platform/TLConsole.h"
#include "project/TLSolverValues.h"
#include "project/TLSubProject.h"

namespace {

constexpr double kFirstOwnLaws = 4.99;
constexpr double kFirstSutherland = 3.0;

/// How much of a law's nine parameter values its entry takes: two coefficients, and seven of a
/// polynomial.
enum class Takes { nothing, coefficients, coefficientAndPolynom, polynom };

/// What one value of a law's parameter means for the fluid.
struct LawRow {
  std::int32_t value;
  std::int32_t choice;
  std::int32_t variableChoice;  ///< choice when the entry has a variable type
  Takes takes;
  bool takesSutherland;
};

/// A law of the fluid: the parameter that chooses it, the one that holds its values, and where the
/// fluid keeps both.
struct Law {
  std::string_view selector;
  std::string_view selectorName;
  std::string_view values;
  std::int32_t TLFluid::*choice;
  Handle<TLPhysicalEntry> TLFluidProperties::*entry;
  std::vector<LawRow> rows;
};

const Law kLaws[] = {
    {"IVIMOD,I,1,1,0",
     "IVIMOD",
     "VICOEF,R,1,9,0",
     &TLFluid::viscLawChoice,
     &TLFluidProperties::dynamicViscosity,
     {{1, 1, 3, Takes::coefficients, false},
      {2, 2, 2, Takes::nothing, false},
      {3, 4, 4, Takes::polynom, true}}},
    {"IHCMOD,I,1,1,0",
     "IHCMOD",
     "HCCOEF,R,1,9,0",
     &TLFluid::heatCondLawChoice,
     &TLFluidProperties::heatConductivity,
     {{1, 1, 3, Takes::coefficients, false},
      {2, 2, 2, Takes::nothing, false},
      {3, 6, 6, Takes::coefficientAndPolynom, false}}},
};
constexpr std::size_t kCoefficients = 2;
constexpr std::size_t kLawValues = 9;

void take(TLPhysicalEntry& entry, const std::vector<double>& values, Takes takes) {
  if (takes == Takes::nothing || values.size() < kLawValues) return;
  if (takes != Takes::polynom) entry.value = values[0];
  if (takes == Takes::coefficients) entry.minValue = values[1];
  entry.setCoefficients({values.begin() + kCoefficients, values.end()});
}

void takeSutherland(TLFluidProperties& properties, const TLSolverValues& values) {
  const auto infinite = values.reals("TINF,R,1,1,0");
  const auto sutherland = values.reals("TSUTHE,R,1,1,0");
  if (!infinite.empty()) properties.temperatureInf = infinite[0];
  if (!sutherland.empty()) properties.temperatureSutherland = sutherland[0];
}

// False, with a line on the console, for a value that no law has.
bool applyLaw(TLFluid& fluid, const Law& law, const TLSolverValues& values) {
  if (!values.has(law.selector)) return true;
  const std::int32_t selected = values.integer(law.selector);
  for (const auto& row : law.rows) {
    if (row.value != selected) continue;
    TLPhysicalEntry& entry = *((*fluid.properties).*law.entry);
    fluid.*law.choice = entry.variableTypeCode() != 0 ? row.variableChoice : row.choice;
    take(entry, values.reals(law.values), row.takes);
    if (row.takesSutherland && fluid.version < kFirstSutherland) {
      takeSutherland(*fluid.properties, values);
    }
    return true;
  }
  console() << "WARNING: unknown value=" << selected << " for " << law.selectorName << '\n'
            << std::flush;
  return false;
}

}  // namespace

bool needsSolverValues(const Handle<TLFluid>& fluid) {
  return fluid->properties->version < kFirstOwnLaws;
}

void fillFromSolverValues(TLFluid& fluid, const TLSubProject& computation) {
  if (computation.fluidName != "unknown") fluid.fluidName = computation.fluidName;
  if (computation.fluidType != "unknown") fluid.fluidType = computation.fluidType;
  if (!computation.parameters) return;
  const TLSolverValues values(*computation.parameters);
  for (const auto& law : kLaws) {
    if (!applyLaw(fluid, law, values)) return;
  }
}
