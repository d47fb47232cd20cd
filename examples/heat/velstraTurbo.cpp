// Second step of the example: a small solver that goes by the name of the suite's flow solver, so
// that the daemon treats it as one.
//   velstraTurbo CASE.run [-iterations N] [-stop_at R] [-relaxation W] [-report_every N]
//                [-fail_at N] [-steering FILE] [-parendId TID]
// reads CASE.mesh and writes CASE.field. It tells the daemon that it is up (4), how far it is (7),
// that it is done (5) or why it dies (8, and then no 5); it stops after the next iteration and
// saves when told to suspend (11), and saves when told to (21).
//
// With a steering file on its command line it asks for the settings in it (14), follows them and
// their changes (12), and reports values (13): the residual of each iteration, the heat flow, the
// temperatures along the middle line and of all cells.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "DaemonLink.h"
#include "HeatSolver.h"
#include "Steering.h"

namespace {

constexpr int kSuspend = 11;
constexpr int kNewSteering = 12;
constexpr int kSaveSolution = 21;

struct Settings {
  int iterations = 20000;
  double stopAt = 1e-4;
  double relaxation = 1.9;
  int reportEvery = 100;
  int failAt = 0;
  bool steered = false;
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
  s.steered = hasArgument(argc, argv, "-steering");
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
      : daemon_(daemon),
        steering_(daemon),
        solver_(solver),
        settings_(settings),
        fieldFile_(std::move(fieldFile)) {
    if (settings_.steered) steering_.ask();
  }

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
      note(residual);
      if (solver_.iteration() % settings_.reportEvery == 0) report();
      if (residual < settings_.stopAt) break;
      obey();
    }
    if (settings_.steered) reportValues();
    return save();
  }

 private:
  void obey() {
    while (const auto code = daemon_.nextMessage()) {
      if (*code == kSuspend) stopping_ = true;
      if (*code == kSaveSolution) tellSave();
      if (*code == kNewSteering) follow();
    }
  }

  void follow() {
    std::map<std::string, double> values;
    if (!Steering::readSettings(values)) return;
    const auto take = [&values](const char* name, double otherwise) {
      const auto value = values.find(name);
      return value == values.end() ? otherwise : value->second;
    };
    settings_.relaxation = take("relaxation", settings_.relaxation);
    settings_.stopAt = take("stop at residual", settings_.stopAt);
    settings_.reportEvery =
        std::max(static_cast<int>(take("output interval", settings_.reportEvery)), 1);
    if (take("save now", 0) > 0) tellSave();
    char line[160];
    std::snprintf(line, sizeof line, "settings: relaxation %g, stop at %g, output every %d",
                  settings_.relaxation, settings_.stopAt, settings_.reportEvery);
    daemon_.text(line);
  }

  void note(double residual) {
    if (!settings_.steered) return;
    iterations_.push_back(static_cast<float>(solver_.iteration()));
    residuals_.push_back(static_cast<float>(residual));
    flows_.push_back(static_cast<float>(solver_.heatFlow()));
  }

  void report() {
    daemon_.text(describe(solver_));
    if (settings_.steered) reportValues();
  }

  void reportValues() {
    const auto numbered = [](const std::vector<double>& values) {
      std::pair<std::vector<float>, std::vector<float>> points;
      for (std::size_t i = 0; i < values.size(); ++i) {
        points.first.push_back(static_cast<float>(i));
        points.second.push_back(static_cast<float>(values[i]));
      }
      return points;
    };
    auto [place, along] = numbered(solver_.profile(0.5));
    auto [cell, everywhere] = numbered(solver_.field().temperature);
    steering_.report(
        {{"residual", Steering::Series::residual, iterations_, residuals_},
         {"heat flow", Steering::Series::residual, iterations_, flows_},
         {"profile", Steering::Series::curve, std::move(place), std::move(along)},
         {"temperature", Steering::Series::surface, std::move(cell), std::move(everywhere)}});
    iterations_.clear();
    residuals_.clear();
    flows_.clear();
  }

  void tellSave() {
    const std::string error = save();
    daemon_.text(error.empty() ? "solution saved" : "save failed: " + error);
  }

  std::string save() const {
    std::string error;
    solver_.field().write(fieldFile_, error);
    return error;
  }

  DaemonLink& daemon_;
  Steering steering_;
  HeatSolver& solver_;
  Settings settings_;
  std::string fieldFile_;
  bool stopping_ = false;
  std::vector<float> iterations_;  // since the last report
  std::vector<float> residuals_;
  std::vector<float> flows_;
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
