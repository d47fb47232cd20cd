#pragma once

#include "parameters/TLFluid.h"
#include "textio/Handle.h"

class TLSubProject;

/// True when the properties of `fluid` are from a time when its laws stood among the solver
/// parameters.
bool needsSolverValues(const Handle<TLFluid>& fluid);

/// Fills the laws of `fluid` from the solver parameters of `computation`, and its names from those
/// of the computation. An unknown law is told on the console, and the fluid is left as it is then.
void fillFromSolverValues(TLFluid& fluid, const TLSubProject& computation);
