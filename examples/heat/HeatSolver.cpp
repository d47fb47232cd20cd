#include "HeatSolver.h"

#include <algorithm>
#include <utility>

#include "HeatStencil.h"

HeatSolver::HeatSolver(HeatMesh mesh) : mesh_(std::move(mesh)), field_(initialField(mesh_)) {}

double HeatSolver::iterate(double relaxation) {
  double largest = 0;
  for (int j = 0; j < mesh_.ny; ++j) {
    for (int i = 0; i < mesh_.nx; ++i) relaxCell(mesh_, field_, i, j, relaxation, largest);
  }
  ++field_.iteration;
  field_.residual = largest;
  return largest;
}

double HeatSolver::heatFlow() const {
  double flow = 0;
  for (int j = 0; j < mesh_.ny; ++j) flow += rowHeatFlow(mesh_, field_, j);
  return flow;
}

std::vector<double> HeatSolver::profile(double height) const {
  const int j = std::clamp(static_cast<int>(height * mesh_.ny), 0, mesh_.ny - 1);
  const auto begin = field_.temperature.begin() + static_cast<std::ptrdiff_t>(mesh_.cell(0, j));
  return {begin, begin + mesh_.nx};
}
