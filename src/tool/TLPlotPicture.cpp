#include "tool/TLPlotPicture.h"

#include <fmt/format.h>
#include <png.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdlib>

#include "platform/TLHostForm.h"
#include "tool/TLPixelFont.h"

namespace {

using Colour = std::array<std::uint8_t, 3>;

constexpr Colour kInk = {40, 40, 48};
constexpr Colour kGrid = {226, 228, 232};
constexpr std::array<Colour, 8> kColours{{{31, 119, 180},
                                          {214, 39, 40},
                                          {44, 140, 44},
                                          {230, 126, 20},
                                          {120, 80, 170},
                                          {20, 150, 160},
                                          {190, 90, 150},
                                          {110, 90, 70}}};
constexpr int kLeftMargin = 70;
constexpr int kRightMargin = 20;
constexpr int kTopMargin = 34;
constexpr int kBottomMargin = 28;
constexpr int kLetter = TLPixelFont::kColumns + 1;
constexpr int kLegendMargin = 8;

TLPlotSeries seriesOf(const TLSteeringParameter& parameter) {
  TLPlotSeries series(parameter.name);
  for (std::int32_t i = 0; i < parameter.valueCount(); ++i) {
    series.add(parameter.xValues()[i], parameter.yValues()[i]);
  }
  return series;
}

const Colour& colourOf(std::size_t series) {
  return kColours[series % kColours.size()];
}

}  // namespace

void TLPlotPicture::add(const TLSteeringParameters& set) {
  std::vector<TLPlotSeries> residuals;
  for (const auto& parameter : set.parameters) {
    if (parameter->xValues() != nullptr && parameter->valueCount() > 0 &&
        parameter->type == TL_STEERING_RESIDUAL) {
      residuals.push_back(seriesOf(*parameter));
    }
  }
  if (!residuals.empty()) addPanel("residuals", std::move(residuals), true, true);
  for (const auto& parameter : set.parameters) {
    if (parameter->xValues() == nullptr || parameter->valueCount() <= 0 ||
        parameter->type == TL_STEERING_RESIDUAL) {
      continue;
    }
    const bool curve = parameter->type == TL_STEERING_CURVE;
    addPanel(fmt::format("{} [{}]", parameter->name, parameter->valueUnitsName),
             {seriesOf(*parameter)}, false, curve);
  }
}

void TLPlotPicture::addPanel(std::string title, std::vector<TLPlotSeries> series, bool logarithmic,
                             bool lines) {
  panels_.push_back({std::move(title), std::move(series), logarithmic, lines});
}

int TLPlotPicture::write(const std::string& path) {
  const std::size_t rows = panels_.size() * static_cast<std::size_t>(height_);
  pixels_.assign(rows * static_cast<std::size_t>(width_) * 3, 255);
  for (std::size_t i = 0; i < panels_.size(); ++i) {
    drawPanel(panels_[i], static_cast<int>(i) * height_);
  }
  png_image image = {};
  image.version = PNG_IMAGE_VERSION;
  image.width = static_cast<png_uint_32>(width_);
  image.height = static_cast<png_uint_32>(rows);
  image.format = PNG_FORMAT_RGB;
  png_alloc_size_t size = 0;
  if (png_image_write_to_memory(&image, nullptr, &size, 0, pixels_.data(), 0, nullptr) == 0) {
    return EINVAL;
  }
  std::string bytes(size, '\0');
  if (png_image_write_to_memory(&image, bytes.data(), &size, 0, pixels_.data(), 0, nullptr) == 0) {
    return EINVAL;
  }
  bytes.resize(size);
  return hostForm().replaceFile(path, bytes);
}

void TLPlotPicture::drawPanel(const Panel& panel, int top) {
  const Frame frame = {kLeftMargin, width_ - kRightMargin, top + kTopMargin,
                       top + height_ - kBottomMargin};
  const TLPlotAxis x = TLPlotAxis::ofX(panel.series);
  const TLPlotAxis y = TLPlotAxis::ofY(panel.series, panel.logarithmic);
  drawText(frame.left, top + 12, panel.title, kInk);
  drawScales(frame, x, y);
  for (std::size_t i = 0; i < panel.series.size(); ++i) {
    drawSeries(frame, panel.series[i], panel.lines, x, y, colourOf(i));
  }
  if (panel.series.size() > 1) drawLegend(panel, frame);
}

void TLPlotPicture::drawScales(const Frame& frame, const TLPlotAxis& x, const TLPlotAxis& y) {
  const auto right = [&](double value) {
    return frame.left + static_cast<int>(std::lround(x.place(value) * (frame.right - frame.left)));
  };
  const auto down = [&](double value) {
    return frame.bottom -
           static_cast<int>(std::lround(y.place(value) * (frame.bottom - frame.top)));
  };
  for (const double tick : y.ticks(8)) {
    drawLine(frame.left, down(tick), frame.right, down(tick), kGrid);
    const std::string text = fmt::format("{:.4g}", tick);
    drawText(frame.left - 8 - kLetter * static_cast<int>(text.size()),
             down(tick) - TLPixelFont::kRows / 2, text, kInk);
  }
  for (const double tick : x.ticks(9)) {
    drawLine(right(tick), frame.top, right(tick), frame.bottom, kGrid);
    const std::string text = fmt::format("{:.6g}", tick);
    drawText(right(tick) - kLetter * static_cast<int>(text.size()) / 2, frame.bottom + 8, text,
             kInk);
  }
  drawLine(frame.left, frame.top, frame.left, frame.bottom, kInk);
  drawLine(frame.left, frame.bottom, frame.right, frame.bottom, kInk);
}

void TLPlotPicture::drawSeries(const Frame& frame, const TLPlotSeries& series, bool lines,
                               const TLPlotAxis& x, const TLPlotAxis& y, const Colour& colour) {
  bool joined = false;
  int lastColumn = 0;
  int lastRow = 0;
  for (std::size_t i = 0; i < series.size(); ++i) {
    if (!y.shows(series.y(i)) || !std::isfinite(series.y(i)) || !std::isfinite(series.x(i))) {
      joined = false;
      continue;
    }
    const int column =
        frame.left +
        static_cast<int>(std::lround(x.place(series.x(i)) * (frame.right - frame.left)));
    const int row =
        frame.bottom -
        static_cast<int>(std::lround(y.place(series.y(i)) * (frame.bottom - frame.top)));
    if (lines && joined) {
      drawLine(lastColumn, lastRow, column, row, colour);
      drawLine(lastColumn, lastRow + 1, column, row + 1, colour);  // two pixels thick
    } else {
      drawLine(column, row, column + 1, row, colour);
      drawLine(column, row + 1, column + 1, row + 1, colour);
    }
    joined = true;
    lastColumn = column;
    lastRow = row;
  }
}

void TLPlotPicture::drawLegend(const Panel& panel, const Frame& frame) {
  int right = frame.right;
  for (std::size_t i = panel.series.size(); i-- > 0;) {
    const std::string& name = panel.series[i].name();
    right -= kLetter * static_cast<int>(name.size());
    const int left = right - 2 * kLegendMargin;
    if (left < frame.left + kLetter * static_cast<int>(panel.title.size())) return;
    const int row = frame.top - 18;
    drawText(right, row, name, kInk);
    for (int thick = 2; thick < 5; ++thick) {
      drawLine(left, row + thick, right - kLegendMargin / 2, row + thick, colourOf(i));
    }
    right = left - kLegendMargin;
  }
}

void TLPlotPicture::setPixel(int x, int y, const Colour& colour) {
  const int rows = height_ * static_cast<int>(panels_.size());
  if (x < 0 || y < 0 || x >= width_ || y >= rows) return;
  const auto place = (static_cast<std::size_t>(y) * static_cast<std::size_t>(width_) +
                      static_cast<std::size_t>(x)) *
                     3;
  std::copy(colour.begin(), colour.end(), pixels_.begin() + static_cast<std::ptrdiff_t>(place));
}

void TLPlotPicture::drawLine(int x0, int y0, int x1, int y1, const Colour& colour) {
  const int steps = std::max({std::abs(x1 - x0), std::abs(y1 - y0), 1});
  for (int step = 0; step <= steps; ++step) {
    const double part = static_cast<double>(step) / steps;
    setPixel(static_cast<int>(std::lround(std::lerp(x0, x1, part))),
             static_cast<int>(std::lround(std::lerp(y0, y1, part))), colour);
  }
}

void TLPlotPicture::drawText(int x, int y, std::string_view text, const Colour& colour) {
  for (const char character : text) {
    const std::uint8_t* columns = TLPixelFont::columnsOf(character);
    for (int column = 0; column < TLPixelFont::kColumns; ++column) {
      for (int row = 0; row < TLPixelFont::kRows; ++row) {
        if ((columns[column] >> row & 1) != 0) setPixel(x + column, y + row, colour);
      }
    }
    x += kLetter;
  }
}
