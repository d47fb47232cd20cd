#include "tool/TLSteeringMirror.h"

#include <fmt/format.h>

#include <algorithm>

#include "messaging/TLSubMessageInteger.h"
#include "messaging/TLSubMessageSteering.h"
#include "messaging/TLSubMessageSteeringStatus.h"
#include "messaging/TLSubMessageString.h"

namespace {

template <class T>
const T* part(const TLProcessMessage& message, std::size_t position) {
  if (position >= message.subMessages.size()) return nullptr;
  return dynamic_cast<const T*>(message.subMessages[position].get());
}

}  // namespace

void TLSteeringMirror::addTo(TLProcessMessage& poll) const {
  for (const auto& name : names_) {
    auto status = makeHandle<TLSubMessageSteeringStatus>();
    const auto held = sets_.find(name);
    status->parameters =
        held == sets_.end() ? makeHandle<TLSteeringParameters>() : held->second.known;
    poll.subMessages.push_back(Handle<TLSubMessage>(status.get()));
  }
}

void TLSteeringMirror::take(const TLProcessMessage& message) {
  const auto* name = part<TLSubMessageString>(message, 0);
  const auto* values = part<TLSubMessageSteering>(message, 1);
  const auto* reset = part<TLSubMessageInteger>(message, 2);
  if (name == nullptr || values == nullptr || !values->parameters) return;
  Set& set = sets_[name->text];
  if (!set.known || (reset != nullptr && reset->value != 0)) {
    set.known = makeHandle<TLSteeringParameters>();
    set.known->parameters.clear();
    set.residuals.clear();
  }
  // By position, as the daemon compares.
  const auto& received = values->parameters->parameters;
  for (std::size_t i = 0; i < received.size(); ++i) {
    const auto held = set.known->parameter(static_cast<int>(i));
    if (!held) return;
    if (held->name != received[i]->name) held->setValueCount(0);
    held->name = received[i]->name;
    if (received[i]->type != TL_STEERING_RESIDUAL || received[i]->valueCount() == 0) continue;
    takeResidual(set, *received[i]);
    const std::int32_t last = received[i]->valueCount() - 1;
    held->clearValues();
    held->mergeValues(1, received[i]->xValues() + last, received[i]->yValues() + last);
    set.fresh = true;
  }
}

void TLSteeringMirror::takeResidual(Set& set, const TLSteeringParameter& received) {
  auto series = std::find_if(set.residuals.begin(), set.residuals.end(),
                             [&](const auto& one) { return one.name() == received.name; });
  if (series == set.residuals.end()) {
    set.residuals.emplace_back(received.name);
    series = set.residuals.end() - 1;
  }
  for (std::int32_t i = 0; i < received.valueCount(); ++i) {
    const double x = received.xValues()[i];
    // A run that begins again is drawn anew.
    if (series->size() > 0 && x <= series->x(series->size() - 1)) series->clear();
    series->add(x, received.yValues()[i]);
  }
}

std::vector<TLPlotSeries> TLSteeringMirror::residuals() const {
  std::vector<TLPlotSeries> all;
  for (const auto& [name, set] : sets_) {
    all.insert(all.end(), set.residuals.begin(), set.residuals.end());
  }
  return all;
}

std::string TLSteeringMirror::newsOf(const Set& set) {
  double iteration = 0;
  std::string text;
  for (const auto& series : set.residuals) {
    if (series.size() == 0) continue;
    const std::size_t last = series.size() - 1;
    iteration = std::max(iteration, series.x(last));
    text += fmt::format("{}{} {:.6g}", text.empty() ? "" : ", ", series.name(), series.y(last));
  }
  return fmt::format("iteration {:.0f}: {}", iteration, text);
}

std::vector<std::string> TLSteeringMirror::takeNews() {
  std::vector<std::string> news;
  for (auto& [name, set] : sets_) {
    if (!set.fresh) continue;
    set.fresh = false;
    news.push_back(newsOf(set));
  }
  return news;
}
