#include "HeatMesh.h"

#include <cstdio>
#include <fstream>
#include <iterator>
#include <limits>

namespace {

constexpr int kMostCells = 16000;  // along one side
constexpr const char* kMeshWord = "heat-mesh";
constexpr const char* kFieldWord = "heat-field";

bool readSize(std::istream& in, const char* word, int& nx, int& ny) {
  std::string found;
  return in >> found >> nx >> ny && found == word && nx > 2 && ny > 2 && nx <= kMostCells &&
         ny <= kMostCells;
}

bool readValues(std::istream& in, std::size_t count, std::vector<double>& values) {
  values.clear();
  for (double value = 0; values.size() < count && in >> value;) values.push_back(value);
  return values.size() == count;
}

void writeValues(std::ostream& out, const std::vector<double>& values, int perLine) {
  for (std::size_t i = 0; i < values.size(); ++i) {
    out << values[i] << ((i + 1) % static_cast<std::size_t>(perLine) == 0 ? '\n' : ' ');
  }
}

bool fail(std::string& error, const std::string& file, const char* what) {
  error = file + ": " + what;
  return false;
}

template <class Write>
bool replace(const std::string& file, std::string& error, Write write) {
  const std::string beside = file + ".new";
  {
    std::ofstream out(beside);
    out.precision(std::numeric_limits<double>::digits10);
    write(out);
    if (!out.flush()) {
      std::remove(beside.c_str());
      return fail(error, file, "cannot be written");
    }
  }
  if (std::rename(beside.c_str(), file.c_str()) != 0) {
    std::remove(beside.c_str());
    return fail(error, file, "cannot be replaced");
  }
  return true;
}

std::size_t cells(int nx, int ny) {
  return static_cast<std::size_t>(nx) * static_cast<std::size_t>(ny);
}

}  // namespace

bool HeatMesh::read(const std::string& file, std::string& error) {
  std::ifstream in(file);
  if (!in) return fail(error, file, "cannot be opened");
  if (!readSize(in, kMeshWord, nx, ny)) return fail(error, file, "is no mesh of this example");
  if (!readValues(in, cells(nx, ny), conductivity) || !readValues(in, cells(nx, ny), held)) {
    return fail(error, file, "ends too early");
  }
  return true;
}

bool HeatMesh::write(const std::string& file, std::string& error) const {
  return replace(file, error, [this](std::ostream& out) {
    out << kMeshWord << ' ' << nx << ' ' << ny << '\n';
    writeValues(out, conductivity, nx);
    writeValues(out, held, nx);
  });
}

bool HeatField::read(const std::string& file, std::string& error) {
  std::ifstream in(file);
  if (!in) return fail(error, file, "cannot be opened");
  if (!readSize(in, kFieldWord, nx, ny) || !(in >> iteration >> residual)) {
    return fail(error, file, "is no field of this example");
  }
  if (!readValues(in, cells(nx, ny), temperature)) return fail(error, file, "ends too early");
  return true;
}

bool HeatField::write(const std::string& file, std::string& error) const {
  return replace(file, error, [this](std::ostream& out) {
    out << kFieldWord << ' ' << nx << ' ' << ny << ' ' << iteration << ' ' << residual << '\n';
    writeValues(out, temperature, nx);
  });
}
