// Second step of the example: a small solver that goes by the name of the suite's flow solver, so
// that the daemon treats it as one.
//   velstraTurbo CASE.run [-iterations N] [-stop_at R] [-relaxation W] [-report_every N]
//                [-fail_at N] [-parendId TID]
// reads CASE.mesh and writes CASE.field. It tells the daemon that it is up (4), how far it is (7),
// that it is done (5) or why it dies (8, and then no 5); it stops after the next iteration and
// saves when told to suspend (11), and saves when told to (21).
#include <cmath>
#include <cstdio>
#include <string>

#include "DaemonLink.h"
#include "HeatSolver.h"

namespace {

constexpr int kSuspend = 11;
constexpr int kSaveSolution = 21;

struct Settings {
  int iterations = 20000;
  double stopAt = 1e-4;
  double relaxation = 1.9;
  int reportEvery = 100;
  int failAt = 0;
};

Settings settingsFrom(int argc, char** argv) {
  Settings s;
  const auto whole = [&](const char* option, int otherwise) {
    return static_cast<int>(numberArgument(argc, argv, option, otherwise));
  };
  s.iterations = whole("-iterations", s.iterations);
  s.reportEvery = std::max(whole("-report_every", s.reportEvery), 1);
  s.failAt = whole("-fail_at", s.failAt);
  s.stopAt = numberArgument(argc, argv, "-stop_at", s.stopAt);
  s.relaxation = numberArgument(argc, argv, "-relaxation", s.relaxation);
  return s;
}

std::string describe(const HeatSolver& solver) {
  char line[160];
  std::snprintf(line, sizeof line, "iteration %d residual %.3e heat flow %.2f W/m",
                solver.iteration(), solver.residual(), solver.heatFlow());
  return line;
}

class Run {
 public:
  Run(DaemonLink& daemon, HeatSolver& solver, const Settings& settings, std::string fieldFile)
      : daemon_(daemon), solver_(solver), settings_(settings), fieldFile_(std::move(fieldFile)) {}

  // Empty on success, else what went wrong.
  std::string toItsEnd() {
    while (solver_.iteration() < settings_.iterations && !stopping_) {
      const double residual = solver_.iterate(settings_.relaxation);
      if (!std::isfinite(residual)) {
        return "diverged at iteration " + std::to_string(solver_.iteration());
      }
      if (solver_.iteration() == settings_.failAt) {
        return "failed as asked at iteration " + std::to_string(solver_.iteration());
      }
      if (solver_.iteration() % settings_.reportEvery == 0) daemon_.text(describe(solver_));
      if (residual < settings_.stopAt) break;
      obey();
    }
    return save();
  }

 private:
  void obey() {
    while (const auto code = daemon_.nextMessage()) {
      if (*code == kSuspend) stopping_ = true;
      if (*code == kSaveSolution) daemon_.text(save().empty() ? "solution saved" : "save failed");
    }
  }

  std::string save() const {
    std::string error;
    solver_.field().write(fieldFile_, error);
    return error;
  }

  DaemonLink& daemon_;
  HeatSolver& solver_;
  const Settings& settings_;
  std::string fieldFile_;
  bool stopping_ = false;
};

int die(DaemonLink& daemon, const std::string& reason) {
  std::fprintf(stderr, "velstraTurbo: %s\n", reason.c_str());
  daemon.failing("velstraTurbo: " + reason);
  return 1;
}

}  // namespace

int main(int argc, char** argv) {
  DaemonLink daemon(argc, argv);
  daemon.started();
  const std::string runFile = runFileArgument(argc, argv);
  if (runFile.empty()) return die(daemon, "no run file on the command line");
  HeatMesh mesh;
  std::string error;
  if (!mesh.read(besideRunFile(runFile, ".mesh"), error)) return die(daemon, error);

  HeatSolver solver(std::move(mesh));
  const Settings settings = settingsFrom(argc, argv);
  Run run(daemon, solver, settings, besideRunFile(runFile, ".field"));
  error = run.toItsEnd();
  if (!error.empty()) return die(daemon, error);
  std::printf("%s\n", describe(solver).c_str());
  daemon.finished({describe(solver)});
  return 0;
}
