#pragma once

#include <vector>

#include "HeatMesh.h"

/// The computation of HeatSolver by several MPI processes: each has a band of the plate's rows. The
/// cells are swept in two colours, so that the result doesn't depend on the number of processes.
/// All operations but the plain questions are collective.
class ParallelHeatSolver {
 public:
  /// `mesh` is the whole one, on every process. MPI is initialised; there must be at least one row
  /// for each process.
  explicit ParallelHeatSolver(HeatMesh mesh);

  /// So many sweeps over all cells; answers the residual of the last, the same on all processes.
  double iterate(int sweeps, double relaxation);
  /// Heat that flows in through the hot left edge, the same on all processes.
  double heatFlow() const;
  /// The field with all rows on process 0; elsewhere only with the own ones.
  const HeatField& gathered();

  int iteration() const { return field_.iteration; }
  double residual() const { return field_.residual; }
  int rank() const { return rank_; }
  int size() const { return size_; }
  /// Rows of a process: from the first up to, without, the second.
  int firstRow(int rank) const { return mesh_.ny * rank / size_; }
  int endRow(int rank) const { return firstRow(rank + 1); }

 private:
  double sweep(int colour, double relaxation);
  void exchangeEdges();
  double* row(int j) { return field_.temperature.data() + mesh_.cell(0, j); }

  HeatMesh mesh_;
  HeatField field_;
  int rank_ = 0;
  int size_ = 1;
};
