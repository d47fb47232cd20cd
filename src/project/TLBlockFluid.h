#pragma once

#include "parameters/TLFluid.h"
#include "parameters/TLHexaParameters.h"

/// Blocks of old versions kept the values of their fluid among the hexa parameters: brings them
/// over into `fluid`. A parameter that isn't there leaves its value as it is.
void fillFluidFromHexaParameters(TLFluid& fluid, const TLHexaParameters& parameters);
