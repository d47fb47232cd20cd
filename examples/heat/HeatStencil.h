#pragma once

#include <cstddef>

#include "HeatMesh.h"

/// @file
/// The discrete heat balance of one cell with its up to four neighbours, by the finite volume
/// method. The edges of the plate let no heat through.

/// The field before the first sweep: held cells at their temperature, all others at the coldest.
HeatField initialField(const HeatMesh& mesh);

/// Conductivity of the face between two cells, in W/(m K).
double faceConductivity(const HeatMesh& mesh, std::size_t a, std::size_t b);

/// The temperature at which as much heat flows into cell (i, j) as out of it, in kelvin.
double balancedTemperature(const HeatMesh& mesh, const HeatField& field, int i, int j);

/// Relaxes one free cell; `largest` grows to its change, in kelvin over the relaxation.
void relaxCell(const HeatMesh& mesh, HeatField& field, int i, int j, double relaxation,
               double& largest);

/// Heat that row `j` takes in through the plate's hot left edge, in watts per metre of thickness.
double rowHeatFlow(const HeatMesh& mesh, const HeatField& field, int j);
