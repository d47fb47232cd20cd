#include "ParallelHeatSolver.h"

#include <mpi.h>

#include <cmath>
#include <utility>
#include <vector>

#include "HeatStencil.h"

ParallelHeatSolver::ParallelHeatSolver(HeatMesh mesh)
    : mesh_(std::move(mesh)), field_(initialField(mesh_)) {
  MPI_Comm_rank(MPI_COMM_WORLD, &rank_);
  MPI_Comm_size(MPI_COMM_WORLD, &size_);
}

double ParallelHeatSolver::sweep(int colour, double relaxation) {
  double largest = 0;
  for (int j = firstRow(rank_); j < endRow(rank_); ++j) {
    for (int i = (j + colour) % 2; i < mesh_.nx; i += 2)
      relaxCell(mesh_, field_, i, j, relaxation, largest);
  }
  return largest;
}

void ParallelHeatSolver::exchangeEdges() {
  const int below = rank_ > 0 ? rank_ - 1 : MPI_PROC_NULL;
  const int above = rank_ + 1 < size_ ? rank_ + 1 : MPI_PROC_NULL;
  const int first = firstRow(rank_);
  const int end = endRow(rank_);
  double nothing = 0;  // stands for a row that isn't there
  double* under = below == MPI_PROC_NULL ? &nothing : row(first - 1);
  double* over = above == MPI_PROC_NULL ? &nothing : row(end);
  MPI_Request requests[4];
  MPI_Irecv(over, mesh_.nx, MPI_DOUBLE, above, 0, MPI_COMM_WORLD, &requests[0]);
  MPI_Irecv(under, mesh_.nx, MPI_DOUBLE, below, 1, MPI_COMM_WORLD, &requests[1]);
  MPI_Isend(row(first), mesh_.nx, MPI_DOUBLE, below, 0, MPI_COMM_WORLD, &requests[2]);
  MPI_Isend(row(end - 1), mesh_.nx, MPI_DOUBLE, above, 1, MPI_COMM_WORLD, &requests[3]);
  MPI_Waitall(4, requests, MPI_STATUSES_IGNORE);
}

double ParallelHeatSolver::iterate(int sweeps, double relaxation) {
  double largest = 0;
  for (int i = 0; i < sweeps; ++i) {
    largest = 0;
    for (int colour = 0; colour < 2; ++colour) {
      const double change = sweep(colour, relaxation);
      if (!(change <= largest)) largest = change;
      exchangeEdges();
    }
    ++field_.iteration;
  }
  // MPI_MAX may lose what is no number.
  double own[2] = {std::isfinite(largest) ? largest : 0.0, std::isfinite(largest) ? 0.0 : 1.0};
  double all[2];
  MPI_Allreduce(own, all, 2, MPI_DOUBLE, MPI_MAX, MPI_COMM_WORLD);
  field_.residual = all[1] > 0 ? HUGE_VAL : all[0];
  return field_.residual;
}

double ParallelHeatSolver::heatFlow() const {
  double own = 0;
  for (int j = firstRow(rank_); j < endRow(rank_); ++j) own += rowHeatFlow(mesh_, field_, j);
  double all = 0;
  MPI_Allreduce(&own, &all, 1, MPI_DOUBLE, MPI_SUM, MPI_COMM_WORLD);
  return all;
}

const HeatField& ParallelHeatSolver::gathered() {
  std::vector<int> counts;
  std::vector<int> places;
  for (int rank = 0; rank < size_; ++rank) {
    counts.push_back((endRow(rank) - firstRow(rank)) * mesh_.nx);
    places.push_back(firstRow(rank) * mesh_.nx);
  }
  const bool first = rank_ == 0;
  MPI_Gatherv(first ? MPI_IN_PLACE : static_cast<void*>(row(firstRow(rank_))), counts[rank_],
              MPI_DOUBLE, field_.temperature.data(), counts.data(), places.data(), MPI_DOUBLE, 0,
              MPI_COMM_WORLD);
  return field_;
}
