#include "HeatStencil.h"

#include <algorithm>
#include <cmath>

HeatField initialField(const HeatMesh& mesh) {
  HeatField field;
  field.nx = mesh.nx;
  field.ny = mesh.ny;
  double cold = HUGE_VAL;
  for (const double held : mesh.held) {
    if (held > 0) cold = std::min(cold, held);
  }
  for (const double held : mesh.held) field.temperature.push_back(held > 0 ? held : cold);
  return field;
}

// Two half cells in a row conduct as their harmonic mean.
double faceConductivity(const HeatMesh& mesh, std::size_t a, std::size_t b) {
  const double ka = mesh.conductivity[a];
  const double kb = mesh.conductivity[b];
  return 2.0 * ka * kb / (ka + kb);
}

double balancedTemperature(const HeatMesh& mesh, const HeatField& field, int i, int j) {
  const std::size_t here = mesh.cell(i, j);
  double flow = 0;
  double sum = 0;
  const auto add = [&](int ni, int nj) {
    if (ni < 0 || nj < 0 || ni >= mesh.nx || nj >= mesh.ny) return;
    const std::size_t other = mesh.cell(ni, nj);
    const double k = faceConductivity(mesh, here, other);
    flow += k * field.temperature[other];
    sum += k;
  };
  add(i - 1, j);
  add(i + 1, j);
  add(i, j - 1);
  add(i, j + 1);
  return flow / sum;
}

void relaxCell(const HeatMesh& mesh, HeatField& field, int i, int j, double relaxation,
               double& largest) {
  const std::size_t cell = mesh.cell(i, j);
  if (mesh.held[cell] > 0) return;
  const double change = balancedTemperature(mesh, field, i, j) - field.temperature[cell];
  field.temperature[cell] += relaxation * change;
  // Not std::max: a change that is no number any more has to show.
  if (!(std::abs(change) <= largest)) largest = std::abs(change);
}

double rowHeatFlow(const HeatMesh& mesh, const HeatField& field, int j) {
  const std::size_t edge = mesh.cell(0, j);
  const std::size_t inside = mesh.cell(1, j);
  return faceConductivity(mesh, edge, inside) *
         (field.temperature[edge] - field.temperature[inside]);
}
