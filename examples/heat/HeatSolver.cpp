#include "HeatSolver.h"

#include <algorithm>
#include <cmath>
#include <utility>

HeatSolver::HeatSolver(HeatMesh mesh) : mesh_(std::move(mesh)) {
  field_.nx = mesh_.nx;
  field_.ny = mesh_.ny;
  const double cold = *std::min_element(
      mesh_.held.begin(), mesh_.held.end(),
      [](double a, double b) { return (a > 0 ? a : HUGE_VAL) < (b > 0 ? b : HUGE_VAL); });
  for (const double held : mesh_.held) field_.temperature.push_back(held > 0 ? held : cold);
}

// Two half cells in a row conduct as their harmonic mean.
double HeatSolver::faceConductivity(std::size_t a, std::size_t b) const {
  const double ka = mesh_.conductivity[a];
  const double kb = mesh_.conductivity[b];
  return 2.0 * ka * kb / (ka + kb);
}

double HeatSolver::balancedTemperature(int i, int j) const {
  const std::size_t here = mesh_.cell(i, j);
  double flow = 0;
  double sum = 0;
  const auto add = [&](int ni, int nj) {
    if (ni < 0 || nj < 0 || ni >= mesh_.nx || nj >= mesh_.ny) return;
    const std::size_t other = mesh_.cell(ni, nj);
    const double k = faceConductivity(here, other);
    flow += k * field_.temperature[other];
    sum += k;
  };
  add(i - 1, j);
  add(i + 1, j);
  add(i, j - 1);
  add(i, j + 1);
  return flow / sum;
}

double HeatSolver::iterate(double relaxation) {
  double largest = 0;
  for (int j = 0; j < mesh_.ny; ++j) {
    for (int i = 0; i < mesh_.nx; ++i) {
      const std::size_t cell = mesh_.cell(i, j);
      if (mesh_.held[cell] > 0) continue;
      const double change = balancedTemperature(i, j) - field_.temperature[cell];
      field_.temperature[cell] += relaxation * change;
      // Not std::max: a change that is no number any more has to show.
      if (!(std::abs(change) <= largest)) largest = std::abs(change);
    }
  }
  ++field_.iteration;
  field_.residual = largest;
  return largest;
}

double HeatSolver::heatFlow() const {
  double flow = 0;
  for (int j = 0; j < mesh_.ny; ++j) {
    const std::size_t edge = mesh_.cell(0, j);
    const std::size_t inside = mesh_.cell(1, j);
    flow +=
        faceConductivity(edge, inside) * (field_.temperature[edge] - field_.temperature[inside]);
  }
  return flow;
}

std::vector<double> HeatSolver::profile(double height) const {
  const int j = std::clamp(static_cast<int>(height * mesh_.ny), 0, mesh_.ny - 1);
  const auto begin = field_.temperature.begin() + static_cast<std::ptrdiff_t>(mesh_.cell(0, j));
  return {begin, begin + mesh_.nx};
}
