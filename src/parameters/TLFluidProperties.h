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
  void write(TLTextSink& sink) const;

  static constexpr char kVersionFailure[] =
      " wrong TLFluidProperties header: cannot determine TLFluidProperties version";

  double version = 5.0;
  double tempRef = 0.0;
  double presRef = 0.0;
  double tempRefMin = 0.0;
  double tempRefMax = 0.0;
  double presRefMin = 0.0;
  double presRefMax = 0.0;
  double temperatureInf = 0.0;
  double temperatureSutherland = 0.0;
  double densitySutherland = 0.0;
  double compressibility = 0.0;
  double dilatation = 0.0;
  double prandtl = 0.0;
  double rGasConst = 0.0;
  RWCString fluidType = "unknown";
  std::int32_t realGasModel = 0;
  Handle<TLPhysicalEntry> dynamicViscosity;  ///< the five are never null
  Handle<TLPhysicalEntry> heatConductivity;
  Handle<TLPhysicalEntry> barotropicLaw;
  Handle<TLPhysicalEntry> heatCapacity;
  Handle<TLPhysicalEntry> gamma;
};
