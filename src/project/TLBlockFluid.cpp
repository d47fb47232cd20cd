#include "project/TLBlockFluid.h"

#include <cmath>
#include <cstdint>
#include <optional>
#include <string_view>

#include "parameters/TLParameter.h"

namespace {

std::optional<double> numberOf(const TLHexaParameters& parameters, std::string_view name) {
  const TLParameter* parameter = parameters.find(name);
  return parameter == nullptr ? std::nullopt : parameter->value.firstNumber();
}

struct Choice {
  std::string_view name;
  std::int32_t TLFluid::*member;
};
constexpr Choice kChoices[] = {
    {"phys_heatConductionLaw_", &TLFluid::heatCondLawChoice},
    {"phys_viscosityLaw_", &TLFluid::viscLawChoice},
};

struct Value {
  std::string_view name;
  double TLFluidProperties::*member;
};
constexpr Value kValues[] = {
    {"pRef", &TLFluidProperties::presRef},
    {"TRef", &TLFluidProperties::tempRef},
    {"phys_Prandtl_", &TLFluidProperties::prandtl},
    {"rhoRef_", &TLFluidProperties::densitySutherland},
    {"phys_comprCoeff_", &TLFluidProperties::compressibility},
    {"phys_dilatCoeff_", &TLFluidProperties::dilatation},
};

struct Quantity {
  std::string_view name;
  Handle<TLPhysicalEntry> TLFluidProperties::*member;
};
constexpr Quantity kQuantities[] = {
    {"phys_cp_", &TLFluidProperties::heatCapacity},
    {"phys_gammaGaz_", &TLFluidProperties::gamma},
    {"phys_thermalConductivityRef_", &TLFluidProperties::heatConductivity},
};

}  // namespace

void fillFluidFromHexaParameters(TLFluid& fluid, const TLHexaParameters& parameters) {
  if (const auto incompressible = numberOf(parameters, "iIncompressible_")) {
    fluid.fluidType = *incompressible != 0.0 ? "Incompressible" : "Perfect Gas";
  }
  for (const auto& choice : kChoices) {
    constexpr double kLargestChoice = 1e9;
    const auto value = numberOf(parameters, choice.name);
    if (value && std::abs(*value) < kLargestChoice) {
      fluid.*choice.member = static_cast<std::int32_t>(*value);
    }
  }
  TLFluidProperties& properties = *fluid.properties;
  for (const auto& row : kValues) {
    if (const auto value = numberOf(parameters, row.name)) properties.*row.member = *value;
  }
  for (const auto& quantity : kQuantities) {
    if (const auto value = numberOf(parameters, quantity.name)) {
      (properties.*quantity.member)->value = *value;
    }
  }
  // The parameters hold the kinematic viscosity.
  const auto kinematic = numberOf(parameters, "nuRef_");
  const auto density = numberOf(parameters, "rhoRef_");
  if (kinematic && density) properties.dynamicViscosity->value = *kinematic * *density;
}
