// The solver of the example on several processes; the script velstraTurbo_parallel starts it under
// mpirun.
//   velstraTurbo_mpi CASE.run [-iterations N] [-stop_at R] [-relaxation W] [-report_every N]
//                    [-steering FILE] [-parendId TID]
// reads CASE.mesh and writes CASE.field. Process 0 speaks for all of them with the daemon: it joins
// the virtual machine in the place of the script that the daemon has spawned, tells who computes
// what, then as velstraTurbo does. With a steering file it reports the residual of every tenth
// iteration.
#include <mpi.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "DaemonLink.h"
#include "ParallelHeatSolver.h"
#include "Steering.h"

namespace {

constexpr int kSuspend = 11;
constexpr int kSaveSolution = 21;
constexpr int kSweeps = 10;  // between two looks at the residual and at the daemon

struct Settings {
  int iterations;
  double stopAt;
  double relaxation;
  int reportEvery;
  bool steered;
};

Settings settingsFrom(int argc, char** argv) {
  return {static_cast<int>(numberArgument(argc, argv, "-iterations", 20000)),
          numberArgument(argc, argv, "-stop_at", 1e-4),
          numberArgument(argc, argv, "-relaxation", 1.9),
          std::max(static_cast<int>(numberArgument(argc, argv, "-report_every", 100)), 1),
          hasArgument(argc, argv, "-steering")};
}

/// What the daemon wants of the computation; the same on all processes after share().
struct Wishes {
  int stop = 0;
  int save = 0;

  void share() {
    std::array<int, 2> values = {stop, save};
    MPI_Bcast(values.data(), 2, MPI_INT, 0, MPI_COMM_WORLD);
    stop = values[0];
    save = values[1];
  }
};

class Run {
 public:
  /// `daemon` is null on all processes but the first.
  Run(DaemonLink* daemon, ParallelHeatSolver& solver, const Settings& settings, std::string file)
      : daemon_(daemon), solver_(solver), settings_(settings), fieldFile_(std::move(file)) {}

  // Empty on success, else what went wrong.
  std::string toItsEnd() {
    tellProcesses();
    Wishes wishes;
    while (solver_.iteration() < settings_.iterations && wishes.stop == 0) {
      const int left = settings_.iterations - solver_.iteration();
      const double residual = solver_.iterate(std::min(kSweeps, left), settings_.relaxation);
      if (!std::isfinite(residual)) {
        return "diverged at iteration " + std::to_string(solver_.iteration());
      }
      note(residual);
      if (solver_.iteration() >= nextReport_) report();
      if (residual < settings_.stopAt) break;
      wishes = ask();
      if (wishes.save != 0) tellSave();
    }
    report();
    return save();
  }

  std::string summary() const { return summary_; }

 private:
  void tellProcesses() const {
    std::array<char, MPI_MAX_PROCESSOR_NAME> name{};
    int length = 0;
    MPI_Get_processor_name(name.data(), &length);
    std::vector<char> names(static_cast<std::size_t>(solver_.size()) * name.size());
    MPI_Gather(name.data(), static_cast<int>(name.size()), MPI_CHAR, names.data(),
               static_cast<int>(name.size()), MPI_CHAR, 0, MPI_COMM_WORLD);
    if (daemon_ == nullptr) return;
    for (int rank = 0; rank < solver_.size(); ++rank) {
      daemon_->text("process " + std::to_string(rank) + " of " + std::to_string(solver_.size()) +
                    " on " + (names.data() + static_cast<std::size_t>(rank) * name.size()) +
                    ": rows " + std::to_string(solver_.firstRow(rank)) + " to " +
                    std::to_string(solver_.endRow(rank) - 1));
    }
  }

  Wishes ask() {
    Wishes wishes;
    while (daemon_ != nullptr) {
      const auto code = daemon_->nextMessage();
      if (!code) break;
      if (*code == kSuspend) wishes.stop = 1;
      if (*code == kSaveSolution) wishes.save = 1;
    }
    wishes.share();
    return wishes;
  }

  void note(double residual) {
    if (daemon_ == nullptr) return;
    iterations_.push_back(static_cast<float>(solver_.iteration()));
    residuals_.push_back(static_cast<float>(residual));
  }

  void report() {
    nextReport_ = solver_.iteration() + settings_.reportEvery;
    const double flow = solver_.heatFlow();
    if (daemon_ == nullptr) return;
    std::array<char, 160> line{};
    std::snprintf(line.data(), line.size(), "iteration %d residual %.3e heat flow %.2f W/m",
                  solver_.iteration(), solver_.residual(), flow);
    summary_ = line.data();
    daemon_->text(summary_);
    if (settings_.steered && !iterations_.empty()) {
      Steering(*daemon_).report(
          {{"residual", Steering::Series::residual, iterations_, residuals_}});
    }
    iterations_.clear();
    residuals_.clear();
  }

  void tellSave() {
    const std::string error = save();
    if (daemon_ != nullptr) {
      daemon_->text(error.empty() ? "solution saved" : "save failed: " + error);
    }
  }

  std::string save() {
    const HeatField& field = solver_.gathered();
    std::string error;
    if (daemon_ != nullptr) field.write(fieldFile_, error);
    return error;
  }

  DaemonLink* daemon_;
  ParallelHeatSolver& solver_;
  Settings settings_;
  std::string fieldFile_;
  std::string summary_;
  int nextReport_ = 0;
  std::vector<float> iterations_;  // since the last report
  std::vector<float> residuals_;
};

/// Empty on success; the same course on all processes.
std::string compute(DaemonLink* daemon, int argc, char** argv, std::string& summary) {
  const std::string runFile = runFileArgument(argc, argv);
  if (runFile.empty()) return "no run file on the command line";
  HeatMesh mesh;
  std::string error;
  if (!mesh.read(besideRunFile(runFile, ".mesh"), error)) return error;
  int size = 1;
  MPI_Comm_size(MPI_COMM_WORLD, &size);
  if (size > mesh.ny) return "more processes than rows";
  ParallelHeatSolver solver(std::move(mesh));
  Run run(daemon, solver, settingsFrom(argc, argv), besideRunFile(runFile, ".field"));
  error = run.toItsEnd();
  summary = run.summary();
  return error;
}

}  // namespace

int main(int argc, char** argv) {
  MPI_Init(&argc, &argv);
  int rank = 0;
  MPI_Comm_rank(MPI_COMM_WORLD, &rank);
  std::unique_ptr<DaemonLink> daemon;
  if (rank == 0) {
    daemon = std::make_unique<DaemonLink>(argc, argv);
    daemon->started();
  }
  std::string summary;
  const std::string error = compute(daemon.get(), argc, argv, summary);
  if (rank == 0 && !error.empty()) {
    std::fprintf(stderr, "velstraTurbo_mpi: %s\n", error.c_str());
    daemon->failing("velstraTurbo_mpi: " + error);
  } else if (rank == 0) {
    std::printf("%s\n", summary.c_str());
    daemon->finished({summary});
  }
  daemon.reset();
  MPI_Finalize();
  return error.empty() ? 0 : 1;
}
