#include "tool/TLRunView.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>

#include "tool/TLDaemonClient.h"
#include "tool/TLDaemonFinder.h"

namespace {

using Json = nlohmann::json;

Json residualsJson(const TLRunStateStep& step) {
  Json json = Json::array();
  for (const auto& one : step.residuals) {
    json.push_back({{"name", one.name}, {"first", one.first}, {"last", one.last}});
  }
  return json;
}

Json transferJson(const TLTransferProgress& transfer) {
  return {{"direction", transfer.direction},
          {"host", transfer.host},
          {"file", transfer.file},
          {"number", transfer.number},
          {"count", transfer.count},
          {"bytes", transfer.bytes},
          {"total", transfer.total},
          {"problem", transfer.problem},
          {"kept_directory", transfer.keptDirectory}};
}

Json stepJson(const TLRunStateStep& step, std::size_t position) {
  return {{"step", position},
          {"name", step.name},
          {"executable", step.executable},
          {"host", step.host},
          {"status", step.status},
          {"word", statusText(step.status)},
          {"children", step.children},
          {"job", step.jobNumber},
          {"queue_state", step.queueState},
          {"silent_host", step.silentHost},
          {"silent_since", step.silentSince},
          {"started", step.started},
          {"ended", step.ended},
          {"reason", step.reason},
          {"iteration", step.iteration},
          {"iterations_asked", step.iterationsAsked},
          {"residuals", residualsJson(step)},
          {"last_text", step.lastText},
          {"transfer", transferJson(step.transfer)}};
}

std::string jobText(const TLRunStateStep& step) {
  if (step.queue == 0 || step.jobNumber <= 0) return {};
  return fmt::format(", job {}{}{}", step.jobNumber, step.queueState.empty() ? "" : " ",
                     step.queueState);
}

}  // namespace

double elapsedOf(const TLRunStateStep& step, double now) {
  if (step.started <= 0) return 0;
  return std::max(0.0, (step.ended > 0 ? step.ended : now) - step.started);
}

std::string progressText(const TLRunStateStep& step) {
  std::string text;
  if (step.iteration > 0) text = fmt::format("iteration {}", step.iteration);
  if (step.iteration > 0 && step.iterationsAsked > 0) {
    text += fmt::format(" of {} ({:.0f} %)", step.iterationsAsked,
                        100.0 * step.iteration / step.iterationsAsked);
  }
  // One is enough to see whether it converges: the first that can be put into orders.
  const auto falling = std::ranges::find_if(
      step.residuals, [](const auto& one) { return one.first > 0 && one.last > 0; });
  const auto shown = falling == step.residuals.end() ? step.residuals.begin() : falling;
  if (shown == step.residuals.end()) return text;
  text += fmt::format("{}{} {:.2e}", text.empty() ? "" : ", ", shown->name, shown->last);
  if (falling == step.residuals.end()) return text;
  const double orders = std::log10(shown->first / shown->last);
  return text + fmt::format(" ({:.1f} orders {})", std::abs(orders), orders < 0 ? "up" : "down");
}

std::string bytesText(double bytes) {
  constexpr std::array<const char*, 4> kUnits = {"B", "kB", "MB", "GB"};
  std::size_t unit = 0;
  for (; bytes >= 1000 && unit + 1 < kUnits.size(); ++unit) bytes /= 1000;
  return fmt::format("{:.{}f} {}", bytes, unit == 0 ? 0 : 1, kUnits[unit]);
}

std::string transferText(const TLRunStateStep& step) {
  const TLTransferProgress& transfer = step.transfer;
  if (transfer.direction.empty()) {
    if (transfer.problem.empty() || step.reason.find(transfer.problem) != std::string::npos)
      return {};
    if (transfer.keptDirectory.empty()) return transfer.problem;
    return fmt::format("{}; what could not be fetched lies in {} on {}", transfer.problem,
                       transfer.keptDirectory, transfer.host);
  }
  std::string text =
      fmt::format("{} {}: {}", transfer.direction == "to" ? "copying to" : "fetching from",
                  transfer.host, transfer.file);
  std::string amount;
  if (transfer.number > 0) amount = std::to_string(transfer.number);
  if (transfer.count > 0) amount += fmt::format(" of {}", transfer.count);
  if (transfer.total > 0) {
    amount += fmt::format("{}{} of {}", amount.empty() ? "" : ", ",
                          bytesText(static_cast<double>(transfer.bytes)),
                          bytesText(static_cast<double>(transfer.total)));
  } else if (transfer.bytes > 0) {
    amount += fmt::format("{}{} so far", amount.empty() ? "" : ", ",
                          bytesText(static_cast<double>(transfer.bytes)));
  }
  return amount.empty() ? text : fmt::format("{} ({})", text, amount);
}

std::string placeAndReason(const TLRunStateStep& step) {
  // Most reasons name the host themselves.
  const bool named = step.reason.find("host " + step.host) != std::string::npos;
  std::string what = step.reason.empty() ? step.silenceText() : step.reason;
  if (what.empty()) what = progressText(step);
  const std::string transfer = transferText(step);
  if (!transfer.empty()) what += (what.empty() ? "" : "; ") + transfer;
  const std::string place = named ? std::string() : step.host + jobText(step);
  return place + (place.empty() || what.empty() ? "" : ": ") + what;
}

std::string countText(const TLRunState& state) {
  std::array<std::size_t, 6> counts{};
  for (const auto& step : state.steps)
    ++counts[static_cast<std::size_t>(std::clamp(step.status, 0, 5))];
  std::string text = fmt::format("{} of {} steps finished ok", counts[2], state.steps.size());
  for (const std::int32_t status : {3, 4, 5, 1, 0}) {
    const std::size_t count = counts[static_cast<std::size_t>(status)];
    if (count > 0) text += fmt::format(", {} {}", count, statusText(status));
  }
  const auto remarks = std::ranges::count_if(state.steps, [](const TLRunStateStep& step) {
    return step.status == 2 && !step.reason.empty();
  });
  if (remarks > 0) text += fmt::format("; {} ok with a remark", remarks);
  return text;
}

std::string statusTable(const TLRunState& state, const TLTerminal& terminal) {
  std::size_t widest = 4;
  for (const auto& step : state.steps) widest = std::max(widest, step.name.size());
  const double now = secondsNow();
  std::string text = fmt::format("step  {:<{}}  {:<12}  {:>10}  {}\n", "name", widest, "status",
                                 "time", "host, and why");
  for (std::size_t i = 0; i < state.steps.size(); ++i) {
    const auto& step = state.steps[i];
    const std::string word = statusText(step.status);
    text += fmt::format("{:>4}  {:<{}}  {}  {:>10}  {}\n", i, step.name, widest,
                        terminal.statusColoured(word, fmt::format("{:<12}", word)),
                        durationText(elapsedOf(step, now)), placeAndReason(step));
  }
  return text;
}

Json statusJson(const TLRunState& state) {
  Json json = {{"task_file", state.taskFile}, {"task", state.taskName},
               {"daemon", state.tid},         {"pid", state.pid},
               {"host", state.host},          {"started", state.started},
               {"live", isLive(state)},       {"log", state.logFile},
               {"steps", Json::array()}};
  for (std::size_t i = 0; i < state.steps.size(); ++i) {
    json["steps"].push_back(stepJson(state.steps[i], i));
  }
  return json;
}
