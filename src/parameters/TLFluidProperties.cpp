#include "parameters/TLFluidProperties.h"

#include <cstddef>
#include <utility>
#include <vector>

#include "textio/TLKeyTable.h"

namespace {

using R = TLFluidProperties;
using T = TLTokenReader;

constexpr std::size_t kCoefficients = 7;  // of each quantity's polynomial

// The quantities in the order in which they are written, and the names under which they come.
struct Quantity {
  std::string_view name;
  Handle<TLPhysicalEntry> R::*member;
};
constexpr Quantity kQuantities[] = {
    {"dynamic viscosity", &R::dynamicViscosity},
    {"heatConductivity", &R::heatConductivity},
    {"barotropicLaw", &R::barotropicLaw},
    {"heatCapacity", &R::heatCapacity},
    {"gamma", &R::gamma},
};
constexpr Quantity kOldNames[] = {
    {"kinematic viscosity", &R::dynamicViscosity},
    {"viscosity", &R::dynamicViscosity},
};

TLKeyResult readQuantity(R& record, TLKeyContext& context) {
  auto entry = makeHandle<TLPhysicalEntry>();
  if (entry->read(context.source) == 0) return TLKeyResult::failed;
  for (const auto& quantity : kQuantities) {
    if (entry->name == quantity.name) record.*quantity.member = entry;
  }
  for (const auto& quantity : kOldNames) {
    if (entry->name == quantity.name) record.*quantity.member = entry;
  }
  return TLKeyResult::next;
}

template <auto Member>
constexpr TLKey<R> realKey(std::string_view word, int place, std::string_view literal) {
  return valueKey<Member, &T::readReal>(word, place, literal);
}

const TLKeyTable<R>& table() {
  static const TLKeyTable<R> keys(
      "fluid_properties",
      {
          versionKey<&R::version, R::kVersionFailure>(1,
                                                      "      VERSION                        5.0"),
          realKey<&R::tempRef>("temp_ref", 8, "      TEMP_REF                       "),
          realKey<&R::presRef>("pres_ref", 9, "      PRES_REF                       "),
          realKey<&R::tempRefMin>("temp_ref_min", 10, "      TEMP_REF_MIN                   "),
          realKey<&R::tempRefMax>("temp_ref_max", 11, "      TEMP_REF_MAX                   "),
          realKey<&R::presRefMin>("pres_ref_min", 12, "      PRES_REF_MIN                   "),
          realKey<&R::presRefMax>("pres_ref_max", 13, "      PRES_REF_MAX                   "),
          realKey<&R::temperatureInf>("temperature_inf", 14,
                                      "      TEMPERATURE_INF                "),
          realKey<&R::temperatureSutherland>("temperature_sutherland", 15,
                                             "      TEMPERATURE_SUTHERLAND         "),
          realKey<&R::densitySutherland>("density_sutherland", 16,
                                         "      DENSITY_SUTHERLAND             "),
          realKey<&R::compressibility>("compressibility", 2,
                                       "      COMPRESSIBILITY                "),
          realKey<&R::dilatation>("dilatation", 3, "      DILATATION                     "),
          realKey<&R::prandtl>("prandtl", 4, "      PRANDTL                        "),
          realKey<&R::rGasConst>("r_gas_const", 5, "      R_GAS_CONST                    "),
          valueKey<&R::fluidType, &T::readStrings>("fluid_type", 6,
                                                   "      FLUID_TYPE                     "),
          valueKey<&R::realGasModel, &T::readInteger>("real_gas_model", 7,
                                                      "      REAL_GAS_MODEL                 "),
          {"tl_begin", "physical_entry", &readQuantity},
          {"tl_begin", "", &skipBlock<R>},
          {"tl_end", "fluid_properties", &endBlock<R>},
      });
  return keys;
}

}  // namespace

TLFluidProperties::TLFluidProperties() {
  for (const auto& quantity : kQuantities) {
    auto entry = makeHandle<TLPhysicalEntry>(RWCString(quantity.name));
    entry->setCoefficients(std::vector<double>(kCoefficients, 0.0));
    this->*quantity.member = std::move(entry);
  }
}

int TLFluidProperties::read(TLTextSource& source) {
  return readBlock(*this, source, table());
}

void TLFluidProperties::write(TLTextSink& sink) const {
  table().write(*this, sink);
  for (const auto& quantity : kQuantities) {
    sink << "      TL_BEGIN physical_entry\n";
    (this->*quantity.member)->write(sink);
    sink << "      TL_END   physical_entry\n";
  }
}
