#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "messaging/TLSteeringParameters.h"
#include "tool/TLPlotAxis.h"

/// A picture of plots, one below the other, written as a PNG file.
class TLPlotPicture {
 public:
  /// Sizes in pixels: width of the picture, height of each plot.
  TLPlotPicture(int width, int height) : width_(width), height_(height) {}

  /// Adds what a steering set holds: all residuals in one logarithmic plot, each curve and each
  /// surface (as points) in one of its own. What has no values is left out.
  void add(const TLSteeringParameters& set);
  /// Adds one plot; `lines` joins the points of a series.
  void addPanel(std::string title, std::vector<TLPlotSeries> series, bool logarithmic, bool lines);
  /// Plots added so far.
  std::size_t panels() const { return panels_.size(); }

  /// Draws all and replaces the file; 0 or an errno.
  int write(const std::string& path);

 private:
  using Colour = std::array<std::uint8_t, 3>;
  struct Panel {
    std::string title;
    std::vector<TLPlotSeries> series;
    bool logarithmic = false;
    bool lines = true;
  };
  /// The inside of a plot's frame, in pixels of the picture.
  struct Frame {
    int left;
    int right;
    int top;
    int bottom;
  };

  void drawPanel(const Panel& panel, int top);
  void drawScales(const Frame& frame, const TLPlotAxis& x, const TLPlotAxis& y);
  void drawSeries(const Frame& frame, const TLPlotSeries& series, bool lines, const TLPlotAxis& x,
                  const TLPlotAxis& y, const Colour& colour);
  void drawLegend(const Panel& panel, const Frame& frame);
  void setPixel(int x, int y, const Colour& colour);
  void drawLine(int x0, int y0, int x1, int y1, const Colour& colour);
  void drawText(int x, int y, std::string_view text, const Colour& colour);

  int width_;
  int height_;
  std::vector<Panel> panels_;
  std::vector<std::uint8_t> pixels_;
};
