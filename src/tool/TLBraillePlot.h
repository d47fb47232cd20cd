#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "tool/TLPlotAxis.h"

/// Draws series into a rectangle of a terminal, eight dots a character (braille, UTF-8).
class TLBraillePlot {
 public:
  /// For a rectangle of so many characters; with `colour` each series has its own.
  TLBraillePlot(int columns, int rows, bool colour);

  /// The lines, none longer than the columns: the plot with its scale, the range of x, and a legend
  /// with the last value of each series. None without points, or when there is too little room.
  std::vector<std::string> draw(const std::vector<TLPlotSeries>& series, bool logarithmic) const;

  /// Room below which nothing is drawn.
  static constexpr int kLeastColumns = 24;
  static constexpr int kLeastRows = 5;  ///< In characters, as are the columns.

 private:
  struct Cell {
    unsigned dots = 0;
    int series = -1;
  };
  using Grid = std::vector<Cell>;

  void drawSeries(Grid& grid, const TLPlotSeries& series, int number, const TLPlotAxis& xAxis,
                  const TLPlotAxis& yAxis) const;
  void setDot(Grid& grid, int column, int row, int number) const;
  std::string coloured(const std::string& text, int number) const;
  std::string rowText(const Grid& grid, int row) const;
  std::string legend(const std::vector<TLPlotSeries>& series) const;

  std::size_t cellIndex(int row, int column) const {
    return static_cast<std::size_t>(row) * static_cast<std::size_t>(columns_) +
           static_cast<std::size_t>(column);
  }

  int columns_;  ///< of the plot itself, without the scale
  int rows_;
  bool colour_;
};
