// Last step of the example: draws the temperature field.
//   heatpicture CASE.run [-scale N]
// reads CASE.field and writes CASE.png, N by N pixels a cell, black lines every 25 K.
#include <png.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

#include "DaemonLink.h"
#include "HeatMesh.h"

namespace {

using Colour = std::array<double, 3>;

// From cold to hot: dark blue, violet, red, orange, pale yellow.
constexpr std::array<Colour, 5> kColours = {
    {{20, 24, 82}, {123, 33, 122}, {214, 57, 66}, {251, 155, 59}, {253, 246, 190}}};
constexpr double kContourStep = 25.0;

class Picture {
 public:
  Picture(const HeatField& field, int scale) : field_(field), scale_(scale) {
    const auto [low, high] =
        std::minmax_element(field.temperature.begin(), field.temperature.end());
    low_ = *low;
    range_ = std::max(*high - *low, 1e-9);
    for (int y = 0; y < height(); ++y) {
      for (int x = 0; x < width(); ++x) addPixel(x, y);
    }
  }

  bool write(const std::string& file) const {
    png_image image = {};
    image.version = PNG_IMAGE_VERSION;
    image.width = static_cast<png_uint_32>(width());
    image.height = static_cast<png_uint_32>(height());
    image.format = PNG_FORMAT_RGB;
    return png_image_write_to_file(&image, file.c_str(), 0, pixels_.data(), 0, nullptr) != 0;
  }

  int width() const { return field_.nx * scale_; }
  int height() const { return field_.ny * scale_; }

 private:
  // Between the centres of the cells; the picture's first row is the plate's upper edge.
  double temperature(double x, double y) const {
    const double u = std::clamp(x / scale_ - 0.5, 0.0, field_.nx - 1.0001);
    const double v = std::clamp((height() - y) / scale_ - 0.5, 0.0, field_.ny - 1.0001);
    const int i = static_cast<int>(u);
    const int j = static_cast<int>(v);
    const auto at = [&](int di, int dj) {
      return field_
          .temperature[static_cast<std::size_t>(j + dj) * static_cast<std::size_t>(field_.nx) +
                       static_cast<std::size_t>(i + di)];
    };
    const double below = std::lerp(at(0, 0), at(1, 0), u - i);
    const double above = std::lerp(at(0, 1), at(1, 1), u - i);
    return std::lerp(below, above, v - j);
  }

  void addPixel(int x, int y) {
    const double here = temperature(x + 0.5, y + 0.5);
    const auto band = [](double t) { return std::floor(t / kContourStep); };
    const bool line = band(here) != band(temperature(x + 1.5, y + 0.5)) ||
                      band(here) != band(temperature(x + 0.5, y + 1.5));
    const double place = std::clamp((here - low_) / range_, 0.0, 1.0) * (kColours.size() - 1);
    const auto lower = std::min(static_cast<std::size_t>(place), kColours.size() - 2);
    for (std::size_t channel = 0; channel < 3; ++channel) {
      const double value = std::lerp(kColours[lower][channel], kColours[lower + 1][channel],
                                     place - static_cast<double>(lower));
      pixels_.push_back(static_cast<std::uint8_t>(line ? value * 0.45 : value));
    }
  }

  const HeatField& field_;
  int scale_;
  double low_ = 0;
  double range_ = 1;
  std::vector<std::uint8_t> pixels_;
};

}  // namespace

int main(int argc, char** argv) {
  DaemonLink daemon(argc, argv);
  const std::string runFile = runFileArgument(argc, argv);
  const double scale = numberArgument(argc, argv, "-scale", 5);
  if (runFile.empty() || scale < 1 || scale > 32) {
    std::fprintf(stderr, "usage: heatpicture CASE.run [-scale 1..32]\n");
    return 2;
  }
  HeatField field;
  std::string error;
  bool good = field.read(besideRunFile(runFile, ".field"), error);
  std::string report = "picture: " + error;
  if (good) {
    const Picture picture(field, static_cast<int>(scale));
    const std::string file = besideRunFile(runFile, ".png");
    good = picture.write(file);
    report = "picture: " + file + (good ? "" : " cannot be written");
  }
  std::printf("%s\n", report.c_str());
  daemon.text(report);
  return good ? 0 : 1;
}
