#include "tool/TLBraillePlot.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>

namespace {

constexpr int kScaleColumns = 10;  // "1.00e-05 |"
constexpr int kOtherRows = 2;      // range and legend
constexpr int kDotColumns = 2;
constexpr int kDotRows = 4;

// Bits of the dots of one character, by column and row.
constexpr std::array<std::array<unsigned, kDotRows>, kDotColumns> kDots{
    {{0x01, 0x02, 0x04, 0x40}, {0x08, 0x10, 0x20, 0x80}}};
constexpr std::array<int, 6> kColours = {36, 33, 35, 32, 31, 34};

std::string brailleText(unsigned dots) {
  return {static_cast<char>(0xE2), static_cast<char>(0xA0 | dots >> 6),
          static_cast<char>(0x80 | (dots & 0x3F))};
}

}  // namespace

TLBraillePlot::TLBraillePlot(int columns, int rows, bool colour)
    : columns_(columns < kLeastColumns ? 0 : columns - kScaleColumns),
      rows_(rows < kLeastRows ? 0 : rows - kOtherRows),
      colour_(colour) {}

std::string TLBraillePlot::coloured(const std::string& text, int number) const {
  if (!colour_ || number < 0) return text;
  return fmt::format("\x1b[{}m{}\x1b[0m",
                     kColours[static_cast<std::size_t>(number) % kColours.size()], text);
}

void TLBraillePlot::setDot(Grid& grid, int column, int row, int number) const {
  if (column < 0 || row < 0 || column >= columns_ * kDotColumns || row >= rows_ * kDotRows) return;
  Cell& cell = grid[cellIndex(row / kDotRows, column / kDotColumns)];
  cell.dots |= kDots[static_cast<std::size_t>(column % kDotColumns)]
                    [static_cast<std::size_t>(row % kDotRows)];
  cell.series = number;
}

// Lines from point to point; what the axis can't show is a gap.
void TLBraillePlot::drawSeries(Grid& grid, const TLPlotSeries& series, int number,
                               const TLPlotAxis& xAxis, const TLPlotAxis& yAxis) const {
  const double right = columns_ * kDotColumns - 1.0;
  const double bottom = rows_ * kDotRows - 1.0;
  bool joined = false;
  int lastColumn = 0;
  int lastRow = 0;
  for (std::size_t i = 0; i < series.size(); ++i) {
    if (!yAxis.shows(series.y(i)) || !std::isfinite(series.y(i))) {
      joined = false;
      continue;
    }
    const int column = static_cast<int>(std::lround(xAxis.place(series.x(i)) * right));
    const int row = static_cast<int>(std::lround((1 - yAxis.place(series.y(i))) * bottom));
    const int steps =
        joined ? std::max({std::abs(column - lastColumn), std::abs(row - lastRow), 1}) : 1;
    for (int step = joined ? 0 : 1; step <= steps; ++step) {
      const double part = static_cast<double>(step) / steps;
      const double fromColumn = joined ? lastColumn : column;
      const double fromRow = joined ? lastRow : row;
      setDot(grid, static_cast<int>(std::lround(std::lerp(fromColumn, column, part))),
             static_cast<int>(std::lround(std::lerp(fromRow, row, part))), number);
    }
    joined = true;
    lastColumn = column;
    lastRow = row;
  }
}

std::string TLBraillePlot::rowText(const Grid& grid, int row) const {
  std::string text;
  std::string run;
  int series = -1;
  for (int column = 0; column < columns_; ++column) {
    const Cell& cell = grid[cellIndex(row, column)];
    if (cell.series != series && cell.dots != 0) {
      text += coloured(run, series);
      run.clear();
      series = cell.series;
    }
    run += cell.dots == 0 ? " " : brailleText(cell.dots);
  }
  return text + coloured(run, series);
}

std::string TLBraillePlot::legend(const std::vector<TLPlotSeries>& series) const {
  const auto room = static_cast<std::size_t>(columns_) + kScaleColumns;
  std::string text;
  std::size_t used = 0;
  for (std::size_t i = 0; i < series.size(); ++i) {
    if (series[i].size() == 0) continue;
    const std::string one = fmt::format("{}{} {:.3e}", used == 0 ? "" : "   ", series[i].name(),
                                        series[i].y(series[i].size() - 1));
    if (used + one.size() > room) break;
    used += one.size();
    text += coloured(one, static_cast<int>(i));
  }
  return text;
}

std::vector<std::string> TLBraillePlot::draw(const std::vector<TLPlotSeries>& series,
                                             bool logarithmic) const {
  const bool any =
      std::any_of(series.begin(), series.end(), [](const auto& one) { return one.size() > 0; });
  if (columns_ == 0 || rows_ == 0 || !any) return {};
  const TLPlotAxis xAxis = TLPlotAxis::ofX(series);
  const TLPlotAxis yAxis = TLPlotAxis::ofY(series, logarithmic);
  Grid grid(static_cast<std::size_t>(columns_) * static_cast<std::size_t>(rows_));
  for (std::size_t i = 0; i < series.size(); ++i) {
    drawSeries(grid, series[i], static_cast<int>(i), xAxis, yAxis);
  }
  std::vector<std::string> lines;
  for (int row = 0; row < rows_; ++row) {
    const bool labelled = row == 0 || row == rows_ / 2 || row == rows_ - 1;
    const double place = 1 - (row + (row == 0 ? 0.0 : row == rows_ - 1 ? 1.0 : 0.5)) / rows_;
    lines.push_back((labelled ? fmt::format("{:8.1e} |", yAxis.value(place)) : "         |") +
                    rowText(grid, row));
  }
  const std::string from = fmt::format("{:.7g}", xAxis.low());
  lines.push_back(fmt::format("{:10}{}{:>{}.7g}", "", from, xAxis.high(),
                              std::max(columns_ - static_cast<int>(from.size()), 1)));
  lines.push_back(legend(series));
  return lines;
}
