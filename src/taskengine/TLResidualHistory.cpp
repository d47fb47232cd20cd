#include "taskengine/TLResidualHistory.h"

#include <algorithm>
#include <cmath>

#include "messaging/TLSteeringParameters.h"

namespace {
constexpr float kMostIterations = 2.0e9F;
}

std::size_t TLResidualHistory::placeOf(const RWCString& name) {
  const auto found =
      std::ranges::find_if(series_, [&](const auto& one) { return one.name() == name; });
  const auto place = static_cast<std::size_t>(found - series_.begin());
  if (found == series_.end()) {
    series_.emplace_back(name);
    first_.push_back(0);
  }
  return place;
}

void TLResidualHistory::take(const TLSteeringParameters& set) {
  for (const auto& parameter : set.parameters) {
    const std::int32_t count = parameter->valueCount();
    const float* x = parameter->xValues();
    const float* y = parameter->yValues();
    if (parameter->type != TL_STEERING_RESIDUAL || count <= 0 || x == nullptr) continue;
    const std::size_t place = placeOf(parameter->name);
    TLPlotSeries& series = series_[place];
    if (series.size() > 0 && x[count - 1] < series.x(series.size() - 1)) series.clear();
    std::int32_t next = count;
    while (next > 0 && (series.size() == 0 || x[next - 1] > series.x(series.size() - 1))) --next;
    if (series.size() == 0 && next < count) first_[place] = y[next];
    for (; next < count; ++next) series.add(x[next], y[next]);
    if (std::abs(x[count - 1]) < kMostIterations) {
      iteration_ = static_cast<std::int32_t>(x[count - 1]);
    }
  }
}

void TLResidualHistory::clear() {
  *this = TLResidualHistory();
}

std::vector<TLRunStateResidual> TLResidualHistory::ends() const {
  std::vector<TLRunStateResidual> ends;
  for (std::size_t i = 0; i < series_.size(); ++i) {
    ends.push_back({series_[i].name(), first_[i], series_[i].y(series_[i].size() - 1)});
  }
  return ends;
}
