#include "session/TLSeriesFeed.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>

#include "session/TkSession.h"
#include "taskengine/TLTask.h"

namespace {
constexpr const char* kWanted = "tl_series_wanted";
constexpr const char* kSeries = "tl_series";
}  // namespace

void TLSeriesFeed::update(const TLTask& task) {
  const TkSession* session = TkSession::current();
  if (session == nullptr || !session->hasVariable(kWanted)) return;
  for (std::int32_t i = 0; i < task.subTaskCount(); ++i) {
    const TLSubTask& step = *task.subTask(i);
    if (step.status != TLSubTask::Running || !step.steering) continue;
    if (i != step_) given_.clear();
    step_ = i;
    for (const auto& parameter : step.steering->parameters) feed(*parameter);
    return;
  }
}

void TLSeriesFeed::feed(const TLSteeringParameter& parameter) {
  if (parameter.type != TL_STEERING_RESIDUAL || parameter.xValues() == nullptr) return;
  std::int32_t& given = given_[parameter.name];
  const std::int32_t count = parameter.valueCount();
  if (count == given) return;
  const bool anew = given == 0 || count < given;
  if (anew) given = 0;
  const std::int32_t end = std::min(count, given + kMostPointsAtOnce);
  const TkSession& session = *TkSession::current();
  const bool begins = anew || !session.hasVariable(kSeries, parameter.name.c_str());
  RWCString points;
  if (begins) points = std::to_string(given);
  for (std::int32_t i = given; i < end; ++i) {
    fmt::format_to(std::back_inserter(points), " {:.7g} {:.7g}", parameter.xValues()[i],
                   parameter.yValues()[i]);
  }
  given = end;
  session.setVariable(kSeries, parameter.name.c_str(), points, !begins);
}
