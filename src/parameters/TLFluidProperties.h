#pragma once

#include <cstdint>

#include "parameters/TLPhysicalEntry.h"
#include "textio/Handle.h"
#include "textio/RWCString.h"
#include "textio/RefCounted.h"
#include "textio/TLTextSink.h"
#include "textio/TLTextSource.h"

/// The values of a fluid ("fluid_properties"): reference state in K and Pa, coefficients of its
/// laws, and five quantities that may be constants or laws.
class TLFluidProperties : public RefCounted {
 public:
  TLFluidProperties();

  /// Reads the block's lines behind its opening line. 0 with a complaint on the console on failure.
  int read(TLTextSource& source);
  /// The lines of the block, without its opening and closing one.
  void write(TLTextSink& sink) const;

  /// Printed when the version line holds no number.
  static constexpr char kVersionFailure[] =
      " wrong TLFluidProperties header: cannot determine TLFluidProperties version";

  double version = 5.0;                      ///< As read; 5.0 is what is written.
  double tempRef = 0.0;                      ///< Reference temperature, K.
  double presRef = 0.0;                      ///< Reference pressure, Pa.
  double tempRefMin = 0.0;                   ///< Lowest temperature of the laws, K.
  double tempRefMax = 0.0;                   ///< Highest temperature of the laws, K.
  double presRefMin = 0.0;                   ///< Lowest pressure of the laws, Pa.
  double presRefMax = 0.0;                   ///< Highest pressure of the laws, Pa.
  double temperatureInf = 0.0;               ///< Temperature of Sutherland's reference state, K.
  double temperatureSutherland = 0.0;        ///< Sutherland's constant, K.
  double densitySutherland = 0.0;            ///< Density at Sutherland's reference state, kg/m3.
  double compressibility = 0.0;              ///< Of a liquid with pressure, 1/Pa.
  double dilatation = 0.0;                   ///< Of a liquid with temperature, 1/K.
  double prandtl = 0.0;                      ///< Prandtl number, without unit.
  double rGasConst = 0.0;                    ///< Specific gas constant, J/(kg K).
  RWCString fluidType = "unknown";           ///< As that of the fluid. Carried.
  std::int32_t realGasModel = 0;             ///< Code of the solvers; 0: none.
  Handle<TLPhysicalEntry> dynamicViscosity;  ///< the five are never null
  Handle<TLPhysicalEntry> heatConductivity;  ///< In the units that the entry names, as all five.
  Handle<TLPhysicalEntry> barotropicLaw;     ///< Density by pressure.
  Handle<TLPhysicalEntry> heatCapacity;      ///< At constant pressure.
  Handle<TLPhysicalEntry> gamma;             ///< Ratio of heat capacities, without unit.
};
