#include "tool/TLPlotAxis.h"

#include <algorithm>
#include <cmath>
#include <limits>

template <class Value>
TLPlotAxis TLPlotAxis::over(const std::vector<TLPlotSeries>& series, bool logarithmic,
                            Value value) {
  TLPlotAxis axis;
  axis.logarithmic_ = logarithmic;
  double low = std::numeric_limits<double>::max();
  double high = std::numeric_limits<double>::lowest();
  for (const auto& one : series) {
    for (std::size_t i = 0; i < one.size(); ++i) {
      const double v = value(one, i);
      if (!std::isfinite(v) || !axis.shows(v)) continue;
      low = std::min(low, v);
      high = std::max(high, v);
    }
  }
  if (low > high) return logarithmic ? over(series, false, value) : TLPlotAxis();
  if (logarithmic && high / low < 10) {
    const double middle = std::sqrt(low) * std::sqrt(high);
    low = middle / std::sqrt(10.0);
    high = middle * std::sqrt(10.0);
  } else if (!logarithmic && !(high - low > 1e-9 * std::max(std::abs(low), std::abs(high)))) {
    const double margin = low == 0 ? 1.0 : std::abs(low) * 0.1;
    low -= margin;
    high += margin;
  }
  axis.low_ = low;
  axis.high_ = high;
  return axis;
}

TLPlotAxis TLPlotAxis::ofX(const std::vector<TLPlotSeries>& series) {
  return over(series, false, [](const TLPlotSeries& s, std::size_t i) { return s.x(i); });
}

TLPlotAxis TLPlotAxis::ofY(const std::vector<TLPlotSeries>& series, bool logarithmic) {
  return over(series, logarithmic, [](const TLPlotSeries& s, std::size_t i) { return s.y(i); });
}

double TLPlotAxis::place(double value) const {
  if (!logarithmic_) return (value - low_) / (high_ - low_);
  return (std::log10(value) - std::log10(low_)) / (std::log10(high_) - std::log10(low_));
}

double TLPlotAxis::value(double place) const {
  if (!logarithmic_) return std::lerp(low_, high_, place);
  return std::pow(10.0, std::lerp(std::log10(low_), std::log10(high_), place));
}

std::vector<double> TLPlotAxis::ticks(int most) const {
  std::vector<double> ticks;
  if (logarithmic_) {
    const int first = static_cast<int>(std::ceil(std::log10(low_) - 1e-9));
    const int last = static_cast<int>(std::floor(std::log10(high_) + 1e-9));
    const int step = std::max(1, (last - first) / std::max(most - 1, 1) + 1);
    for (int power = first; power <= last; power += (last - first < most ? 1 : step)) {
      ticks.push_back(std::pow(10.0, power));
    }
    return ticks;
  }
  const double rough = (high_ - low_) / std::max(most - 1, 1);
  double step = std::pow(10.0, std::floor(std::log10(rough)));
  for (const double factor : {1.0, 2.0, 5.0, 10.0}) {
    if (step * factor >= rough) {
      step *= factor;
      break;
    }
  }
  const double first = std::ceil(low_ / step - 1e-9);
  for (int i = 0; i < most && (first + i) * step <= high_ + 1e-9 * step; ++i) {
    ticks.push_back((first + i) * step);
  }
  return ticks;
}
