#pragma once

#include <cstddef>
#include <string>
#include <vector>

/// A named series of points to be drawn, of bounded size: once it is full every second point goes,
/// and from then on fewer are taken in. The last point is always there.
class TLPlotSeries {
 public:
  static constexpr std::size_t kMostPoints = 8192;  ///< Above which points go.

  /// `name` stands in the legend.
  explicit TLPlotSeries(std::string name) : name_(std::move(name)) {}

  /// Puts a point at the end; in a thinned series it may take the place of the last one.
  void add(double x, double y);
  /// Drops all points; the series takes every point again.
  void clear();
  /// At most `most` (at least 2) of the points, evenly spread, the first and the last among them.
  TLPlotSeries sample(std::size_t most) const;

  /// For the legend.
  const std::string& name() const { return name_; }
  /// Points that are held.
  std::size_t size() const { return x_.size(); }
  /// Of point `i`, from 0.
  double x(std::size_t i) const { return x_[i]; }
  /// Of point `i`, from 0.
  double y(std::size_t i) const { return y_[i]; }

 private:
  void thin();

  std::string name_;
  std::vector<double> x_;
  std::vector<double> y_;
  std::size_t stride_ = 1;  ///< one of so many points stays
  std::size_t since_ = 0;   ///< points since the last one that stays
};
