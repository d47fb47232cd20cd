#pragma once

#include <string>
#include <vector>

#include "HeatMesh.h"

/// Steady heat conduction in the plate, div(k grad T) = 0, by successive over-relaxation. The upper
/// and the lower edge let no heat through.
class HeatSolver {
 public:
  explicit HeatSolver(HeatMesh mesh);

  /// One sweep over all cells; `relaxation` is between 0 and 2, above that it diverges. Answers the
  /// residual: the largest change of a cell, in kelvin, over the relaxation.
  double iterate(double relaxation);

  int iteration() const { return field_.iteration; }
  double residual() const { return field_.residual; }
  const HeatField& field() const { return field_; }
  const HeatMesh& mesh() const { return mesh_; }

  /// Heat that flows in through the hot left edge, in watts per metre of the plate's thickness.
  double heatFlow() const;
  /// Temperatures along the line at `height` (0 lower edge, 1 upper edge).
  std::vector<double> profile(double height) const;

 private:
  HeatMesh mesh_;
  HeatField field_;
};
