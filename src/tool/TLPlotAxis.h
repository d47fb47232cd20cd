#pragma once

#include <cstddef>
#include <vector>

#include "taskengine/TLPlotSeries.h"

/// One axis of a plot, linear or logarithmic (base 10).
class TLPlotAxis {
 public:
  /// An axis that holds the x of all series.
  static TLPlotAxis ofX(const std::vector<TLPlotSeries>& series);
  /// One that holds all y; where `logarithmic` is asked for it is given if there is any y above 0,
  /// and holds those alone.
  static TLPlotAxis ofY(const std::vector<TLPlotSeries>& series, bool logarithmic);

  /// Value at place 0.
  double low() const { return low_; }
  /// Value at place 1.
  double high() const { return high_; }
  /// True when equal places are equal ratios.
  bool logarithmic() const { return logarithmic_; }
  /// False for what this axis can't show.
  bool shows(double value) const { return !logarithmic_ || value > 0; }
  /// 0 at the low end, 1 at the high one.
  double place(double value) const;
  /// The value at a place.
  double value(double place) const;
  /// Round values along the axis, `most` at most.
  std::vector<double> ticks(int most) const;

 private:
  template <class Value>
  static TLPlotAxis over(const std::vector<TLPlotSeries>& series, bool logarithmic, Value value);

  double low_ = 0;
  double high_ = 1;
  bool logarithmic_ = false;
};
