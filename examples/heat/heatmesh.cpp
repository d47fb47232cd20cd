// First step of the example: makes the mesh of a plate with a hot left and a cold right edge, a
// well conducting bar and a round insulating hole in the heat's way.
//   heatmesh CASE.run [-cells N]
// writes CASE.mesh. N is the number of cells along the long side.
#include <cmath>
#include <cstdio>
#include <string>

#include "DaemonLink.h"
#include "HeatMesh.h"

namespace {

constexpr double kHot = 600.0;
constexpr double kCold = 300.0;
constexpr double kPlate = 50.0;  // steel
constexpr double kBar = 400.0;   // copper
constexpr double kHole = 0.03;   // air

double conductivityAt(double x, double y) {
  if (std::hypot(x - 0.95, y - 0.42) < 0.22) return kHole;
  if (std::abs(y - 0.75) < 0.05 && x > 0.3 && x < 1.3) return kBar;
  return kPlate;
}

HeatMesh plate(int nx) {
  HeatMesh mesh;
  mesh.nx = nx;
  mesh.ny = nx / 2 + 1;
  for (int j = 0; j < mesh.ny; ++j) {
    for (int i = 0; i < nx; ++i) {
      mesh.conductivity.push_back(conductivityAt(2.0 * i / nx, 2.0 * j / nx));
      mesh.held.push_back(i == 0 ? kHot : i == nx - 1 ? kCold : 0.0);
    }
  }
  return mesh;
}

}  // namespace

int main(int argc, char** argv) {
  DaemonLink daemon(argc, argv);
  const std::string runFile = runFileArgument(argc, argv);
  const double cells = numberArgument(argc, argv, "-cells", 160);
  if (runFile.empty() || cells < 8 || cells > 8000) {
    std::fprintf(stderr, "usage: heatmesh CASE.run [-cells 8..8000]\n");
    return 2;
  }
  const HeatMesh mesh = plate(static_cast<int>(cells));
  std::string error;
  const bool good = mesh.write(besideRunFile(runFile, ".mesh"), error);
  const std::string report =
      good ? "mesh: " + std::to_string(mesh.nx) + " x " + std::to_string(mesh.ny) + " cells"
           : "mesh: " + error;
  std::printf("%s\n", report.c_str());
  daemon.text(report);
  return good ? 0 : 1;
}
