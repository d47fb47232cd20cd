#pragma once

#include <cstddef>
#include <string>
#include <vector>

/// A named series of points to be drawn, of bounded size: once it is full every second point goes,
/// and from then on fewer are taken in. The last point is always there.
class TLPlotSeries {
 public:
  static constexpr std::size_t kMostPoints = 8192;

  explicit TLPlotSeries(std::string name) : name_(std::move(name)) {}

  void add(double x, double y);
  void clear();

  const std::string& name() const { return name_; }
  std::size_t size() const { return x_.size(); }
  double x(std::size_t i) const { return x_[i]; }
  double y(std::size_t i) const { return y_[i]; }

 private:
  void thin();

  std::string name_;
  std::vector<double> x_;
  std::vector<double> y_;
  std::size_t stride_ = 1;  ///< one of so many points stays
  std::size_t since_ = 0;   ///< points since the last one that stays
};

/// One axis of a plot, linear or logarithmic (base 10).
class TLPlotAxis {
 public:
  /// An axis that holds the x of all series.
  static TLPlotAxis ofX(const std::vector<TLPlotSeries>& series);
  /// One that holds all y; where `logarithmic` is asked for it is given if there is any y above 0,
  /// and holds those alone.
  static TLPlotAxis ofY(const std::vector<TLPlotSeries>& series, bool logarithmic);

  double low() const { return low_; }
  double high() const { return high_; }
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
