#include "taskengine/TLPlotSeries.h"

void TLPlotSeries::add(double x, double y) {
  if (since_ > 0) {  // the last point was there only for being the last
    x_.back() = x;
    y_.back() = y;
  } else {
    x_.push_back(x);
    y_.push_back(y);
  }
  since_ = (since_ + 1) % stride_;
  if (since_ == 0 && x_.size() >= kMostPoints) thin();
}

void TLPlotSeries::thin() {
  const std::size_t half = x_.size() / 2;
  for (std::size_t i = 0; i < half; ++i) {
    x_[i] = x_[2 * i + 1];
    y_[i] = y_[2 * i + 1];
  }
  x_.resize(half);
  y_.resize(half);
  stride_ *= 2;
}

void TLPlotSeries::clear() {
  x_.clear();
  y_.clear();
  stride_ = 1;
  since_ = 0;
}

TLPlotSeries TLPlotSeries::sample(std::size_t most) const {
  TLPlotSeries part(name_);
  if (x_.empty()) return part;
  const std::size_t last = x_.size() - 1;
  const std::size_t stride = last / (most - 1) + 1;
  for (std::size_t i = 0; i < last; i += stride) part.add(x_[i], y_[i]);
  part.add(x_[last], y_[last]);
  return part;
}
