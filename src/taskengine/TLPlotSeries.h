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
  /// At most `most` (at least 2) of the points, evenly spread, the first and the last among them.
  TLPlotSeries sample(std::size_t most) const;

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
