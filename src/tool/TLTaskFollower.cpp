#include "tool/TLTaskFollower.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdio>
#include <thread>
#include <utility>

#include "tool/TLBraillePlot.h"

namespace {

constexpr std::int32_t kPending = 0;
constexpr std::int32_t kRunning = 1;
constexpr std::int32_t kFinishedOk = 2;
constexpr TLDaemonClient::Seconds kPatience{30.0};
constexpr int kMostPlotRows = 20;
constexpr int kLinesBesidePlot = 4;
constexpr auto kLook = std::chrono::milliseconds(20);

std::string joinedTexts(const std::vector<std::string>& texts) {
  std::string text;
  for (const auto& part : texts) {
    if (!text.empty()) text += "; ";
    text += part;
  }
  return text;
}

}  // namespace

TLTaskFollower::TLTaskFollower(TLDaemonClient& client, std::vector<TLStepLabel> steps,
                               std::string stateFile)
    : client_(client),
      steps_(std::move(steps)),
      stateFile_(std::move(stateFile)),
      shown_(steps_.size(), kPending),
      startTimes_(steps_.size()),
      endTimes_(steps_.size()) {}

TLTaskFollower::End TLTaskFollower::follow(std::chrono::milliseconds interval,
                                           const volatile int& interrupted) {
  while (true) {
    if (!update()) {
      clearProgress();
      return client_.startError().empty() ? End::daemonGone : End::noStart;
    }
    if (std::all_of(shown_.begin(), shown_.end(), isTerminalStatus)) break;
    showResidualNews();
    const auto next = Clock::now() + interval;
    while (Clock::now() < next) {
      if (interrupted != 0) {
        clearProgress();
        return End::interrupted;
      }
      std::this_thread::sleep_for(kLook);
    }
    showProgress();
  }
  // Values follow the answer to their poll: one more answer, and all have come.
  if (mirror_ != nullptr && client_.poll(kPatience)) {
    client_.receiveWaiting();
    showResidualNews();
    showLastPlot();
  }
  clearProgress();
  return End::allEnded;
}

void TLTaskFollower::showResiduals(TLSteeringMirror& mirror) {
  mirror_ = &mirror;
  client_.followSteering(mirror_);
}

void TLTaskFollower::showResidualNews() {
  if (mirror_ == nullptr) return;
  const auto news = mirror_->takeNews();
  if (terminal_.isTerminal()) return;
  for (const auto& line : news) printLine(line);
}

std::vector<std::string> TLTaskFollower::residualLines() const {
  if (mirror_ == nullptr) return {};
  const int rows = std::min(terminal_.height() - kLinesBesidePlot, kMostPlotRows);
  return TLBraillePlot(terminal_.width() - 1, rows, terminal_.hasColour())
      .draw(mirror_->residuals(), true);
}

// What the run came to stays on the terminal.
void TLTaskFollower::showLastPlot() {
  if (!terminal_.isTerminal()) return;
  clearProgress();
  for (const auto& line : residualLines()) fmt::print("{}\n", line);
  std::fflush(stdout);
}

// A daemon that is busy with a launch or a copy answers late: only its absence ends the following.
bool TLTaskFollower::update() {
  while (!client_.poll(kPatience)) {
    showReports();
    if (!client_.startError().empty() || !client_.alive()) return false;
    printLine("the daemon is busy and has not answered yet");
  }
  showChanges(client_.statuses());
  showReports();
  readState();
  return true;
}

void TLTaskFollower::showChanges(const std::vector<std::int32_t>& statuses) {
  const auto now = Clock::now();
  for (std::size_t i = 0; i < std::min(statuses.size(), shown_.size()); ++i) {
    if (statuses[i] == shown_[i]) continue;
    if (shown_[i] == kPending) startTimes_[i] = now;
    shown_[i] = statuses[i];
    const std::string word = statusText(statuses[i]);
    std::string line = fmt::format("{}: {}", label(i), terminal_.statusColoured(word, word));
    if (statuses[i] == kRunning) line += " on " + steps_[i].host;
    if (isTerminalStatus(statuses[i])) {
      endTimes_[i] = now;
      line += " after " + durationText(elapsed(i));
    }
    printLine(line);
  }
}

void TLTaskFollower::showReports() {
  for (const auto& report : client_.takeEndReports()) {
    if (report.texts.empty()) continue;
    const std::string text = joinedTexts(report.texts);
    reasons_[report.step] = text;
    const bool known = report.step >= 0 && report.step < static_cast<std::int32_t>(steps_.size());
    printLine((known ? label(static_cast<std::size_t>(report.step)) + ": " : "") + text);
  }
}

void TLTaskFollower::readState() {
  const auto state = TLRunState::load(stateFile_);
  if (!state) return;
  for (std::size_t i = 0; i < std::min(state->steps.size(), steps_.size()); ++i) {
    const auto& step = state->steps[i];
    if (!step.reason.empty()) reasons_[static_cast<std::int32_t>(i)] = step.reason;
    if (!step.host.empty()) steps_[i].host = step.host;
  }
}

std::string TLTaskFollower::label(std::size_t step) const {
  return fmt::format("step {} {}", step, steps_[step].name);
}

double TLTaskFollower::elapsed(std::size_t step) const {
  if (startTimes_[step] == Clock::time_point()) return 0;
  const auto end = isTerminalStatus(shown_[step]) ? endTimes_[step] : Clock::now();
  return std::chrono::duration<double>(end - startTimes_[step]).count();
}

void TLTaskFollower::printLine(const std::string& text) {
  clearProgress();
  fmt::print("{}  {}\n", clockText(), text);
  std::fflush(stdout);
}

void TLTaskFollower::showProgress() {
  if (!terminal_.isTerminal()) return;
  const auto ended = std::count_if(shown_.begin(), shown_.end(), isTerminalStatus);
  std::string line =
      fmt::format("{}/{} steps done, {}", ended, shown_.size(),
                  durationText(std::chrono::duration<double>(Clock::now() - begin_).count()));
  for (std::size_t i = 0; i < shown_.size(); ++i) {
    if (shown_[i] != kRunning) continue;
    line += fmt::format("  |  {} running {}", steps_[i].name, durationText(elapsed(i)));
  }
  const auto width = static_cast<std::size_t>(terminal_.width() - 1);
  clearProgress();
  const auto plot = residualLines();
  for (const auto& row : plot) fmt::print("{}\n", row);
  fmt::print("{}", line.substr(0, width));
  std::fflush(stdout);
  linesShown_ = static_cast<int>(plot.size()) + 1;
  widthShown_ = terminal_.width();
}

void TLTaskFollower::clearProgress() {
  if (linesShown_ == 0) return;
  // On a terminal that has become narrower each line has been broken into several.
  const int width = std::max(terminal_.width(), 1);
  const int broken = width < widthShown_ ? (widthShown_ + width - 1) / width : 1;
  const int above = std::min(linesShown_ * broken, terminal_.height()) - 1;
  fmt::print("\r{}\x1b[J", above > 0 ? fmt::format("\x1b[{}A", above) : "");
  std::fflush(stdout);
  linesShown_ = 0;
}

bool TLTaskFollower::allOk() const {
  return std::all_of(shown_.begin(), shown_.end(),
                     [](std::int32_t status) { return status == kFinishedOk; });
}

std::string TLTaskFollower::table() const {
  std::size_t widest = 4;
  for (const auto& step : steps_) widest = std::max(widest, step.name.size());
  std::string text = fmt::format("step  {:<{}}  {:<12}  {:>10}  {}\n", "name", widest, "status",
                                 "time", "host, and why");
  for (std::size_t i = 0; i < steps_.size(); ++i) {
    const std::string word = statusText(shown_[i]);
    const auto reason = reasons_.find(static_cast<std::int32_t>(i));
    text += fmt::format("{:>4}  {:<{}}  {}  {:>10}  {}{}\n", i, steps_[i].name, widest,
                        terminal_.statusColoured(word, fmt::format("{:<12}", word)),
                        durationText(elapsed(i)), steps_[i].host,
                        reason == reasons_.end() ? "" : ": " + reason->second);
  }
  return text;
}
