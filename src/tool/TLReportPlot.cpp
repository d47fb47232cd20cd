#include "tool/TLReportPlot.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <nlohmann/json.hpp>

#include "tool/TLPlotAxis.h"

namespace {

constexpr double kWidth = 860;
constexpr double kHeight = 300;
constexpr double kLeft = 62;
constexpr double kRight = 12;
constexpr double kTop = 10;
constexpr double kBottom = 40;
constexpr int kMostTicks = 7;
constexpr std::size_t kColours = 6;

// Places on the picture.
struct Frame {
  TLPlotAxis xAxis;
  TLPlotAxis yAxis;

  double x(double value) const { return kLeft + xAxis.place(value) * (kWidth - kLeft - kRight); }
  double y(double value) const {
    return kHeight - kBottom - yAxis.place(value) * (kHeight - kTop - kBottom);
  }
};

std::string tickText(double value, bool logarithmic) {
  if (logarithmic) return fmt::format("{:.0e}", value);
  return fmt::format("{:.6g}", std::abs(value) < 1e-12 ? 0.0 : value);
}

std::string grid(const Frame& frame) {
  std::string svg;
  for (const double tick : frame.yAxis.ticks(kMostTicks)) {
    svg += fmt::format(
        "<line x1=\"{0}\" x2=\"{1}\" y1=\"{2:.1f}\" y2=\"{2:.1f}\" class=\"grid\"/>"
        "<text x=\"{3}\" y=\"{4:.1f}\" class=\"tick end\">{5}</text>\n",
        kLeft, kWidth - kRight, frame.y(tick), kLeft - 7, frame.y(tick) + 4,
        tickText(tick, frame.yAxis.logarithmic()));
  }
  for (const double tick : frame.xAxis.ticks(kMostTicks)) {
    svg += fmt::format(
        "<line x1=\"{0:.1f}\" x2=\"{0:.1f}\" y1=\"{1}\" y2=\"{2}\" class=\"grid\"/>"
        "<text x=\"{0:.1f}\" y=\"{3}\" class=\"tick middle\">{4}</text>\n",
        frame.x(tick), kTop, kHeight - kBottom, kHeight - kBottom + 17, tickText(tick, false));
  }
  svg += fmt::format("<path d=\"M{0} {1}V{2}H{3}\" class=\"axis\"/>\n", kLeft, kTop,
                     kHeight - kBottom, kWidth - kRight);
  return svg + fmt::format("<text x=\"{:.0f}\" y=\"{}\" class=\"tick middle\">iteration</text>\n",
                           (kLeft + kWidth - kRight) / 2, kHeight - 5);
}

// Points that the axis can't show are gaps.
std::string curve(const Frame& frame, const TLPlotSeries& series, std::size_t number) {
  std::string path;
  bool joined = false;
  for (std::size_t i = 0; i < series.size(); ++i) {
    if (!frame.yAxis.shows(series.y(i)) || !std::isfinite(series.y(i))) {
      joined = false;
      continue;
    }
    path += fmt::format("{}{:.1f} {:.1f}", joined ? "L" : "M", frame.x(series.x(i)),
                        frame.y(series.y(i)));
    joined = true;
  }
  return fmt::format("<path d=\"{}\" class=\"curve c{}\"/>\n", path, number % kColours);
}

std::string legend(const std::vector<TLPlotSeries>& series) {
  std::string html = "<p class=\"legend\">";
  for (std::size_t i = 0; i < series.size(); ++i) {
    html += fmt::format(
        "<span><svg viewBox=\"0 0 22 8\" width=\"22\" height=\"8\" aria-hidden=\"true\"><path "
        "d=\"M0 4L22 4\" class=\"curve c{}\"/></svg> {} <b>{:.3e}</b></span>",
        i % kColours, htmlText(series[i].name()), series[i].y(series[i].size() - 1));
  }
  return html + "</p>\n";
}

std::string onePlot(const std::vector<TLPlotSeries>& series, bool logarithmic) {
  if (series.empty()) return {};
  const Frame frame{TLPlotAxis::ofX(series), TLPlotAxis::ofY(series, logarithmic)};
  std::string svg = fmt::format(
      "<svg viewBox=\"0 0 {} {}\" class=\"plot\" role=\"img\" aria-label=\"residuals over the "
      "iterations\">\n",
      kWidth, kHeight);
  svg += grid(frame);
  for (std::size_t i = 0; i < series.size(); ++i) svg += curve(frame, series[i], i);
  return svg + "</svg>\n" + legend(series);
}

}  // namespace

std::string htmlText(std::string_view text) {
  // The library replaces what is no UTF-8 when it writes, so through it and back.
  using Json = nlohmann::json;
  const std::string valid =
      Json::parse(Json(text).dump(-1, ' ', false, Json::error_handler_t::replace))
          .get<std::string>();
  std::string html;
  for (const char c : valid) {
    switch (c) {
      case '&':
        html += "&amp;";
        break;
      case '<':
        html += "&lt;";
        break;
      case '>':
        html += "&gt;";
        break;
      case '"':
        html += "&quot;";
        break;
      case '\'':
        html += "&#39;";
        break;
      default:
        if (static_cast<unsigned char>(c) >= 0x20 || c == '\n' || c == '\t') html += c;
    }
  }
  return html;
}

std::string residualPlots(const std::vector<TLPlotSeries>& series) {
  std::vector<TLPlotSeries> falling;
  std::vector<TLPlotSeries> others;
  for (const auto& one : series) {
    if (one.size() == 0) continue;
    bool positive = false;
    for (std::size_t i = 0; i < one.size(); ++i) positive = positive || one.y(i) > 0;
    (positive ? falling : others).push_back(one);
  }
  return onePlot(falling, true) + onePlot(others, false);
}
