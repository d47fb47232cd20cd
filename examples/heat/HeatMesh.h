#pragma once

#include <cstddef>
#include <string>
#include <vector>

/// The plate of the example: nx times ny square cells, row by row from below. Temperatures are in
/// kelvin, conductivities in W/(m K).
struct HeatMesh {
  int nx = 0;
  int ny = 0;
  std::vector<double> conductivity;  ///< of each cell
  std::vector<double> held;          ///< temperature at which a cell is held; 0: it is free

  std::size_t cell(int i, int j) const {
    return static_cast<std::size_t>(j) * static_cast<std::size_t>(nx) + static_cast<std::size_t>(i);
  }
  /// False, with `error` saying why, when the file can't be read or written or makes no sense.
  bool read(const std::string& file, std::string& error);
  bool write(const std::string& file, std::string& error) const;
};

/// A temperature for each cell of a mesh, and where its iteration stands.
struct HeatField {
  int nx = 0;
  int ny = 0;
  int iteration = 0;
  double residual = 0.0;
  std::vector<double> temperature;

  bool read(const std::string& file, std::string& error);
  /// Beside the file and renamed over it, so that a reader never sees half a field.
  bool write(const std::string& file, std::string& error) const;
};
