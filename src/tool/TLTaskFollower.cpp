#include "tool/TLTaskFollower.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdio>
#include <thread>
#include <utility>

#include "tool/TLBraillePlot.h"
#include "tool/TLRunView.h"

namespace {

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

TLTaskFollower::TLTaskFollower(TLDaemonClient& client, TLRunState run, std::string stateFile)
    : client_(client), run_(std::move(run)), stateFile_(std::move(stateFile)) {}

bool TLTaskFollower::allEnded() const {
  return std::all_of(run_.steps.begin(), run_.steps.end(),
                     [](const TLRunStateStep& step) { return isTerminalStatus(step.status); });
}

TLTaskFollower::End TLTaskFollower::follow(std::chrono::milliseconds interval,
                                           const volatile int& interrupted) {
  while (true) {
    if (!update()) {
      clearProgress();
      return client_.startError().empty() ? End::daemonGone : End::noStart;
    }
    if (allEnded()) break;
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
  for (const auto& line : residualLines()) fmt::print(out_, "{}\n", line);
  std::fflush(out_);
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
  const double now = secondsNow();
  for (std::size_t i = 0; i < std::min(statuses.size(), run_.steps.size()); ++i) {
    TLRunStateStep& step = run_.steps[i];
    if (statuses[i] == step.status) continue;
    step.status = statuses[i];
    if (step.started <= 0) step.started = now;
    const std::string word = statusText(statuses[i]);
    std::string line = fmt::format("{}: {}", label(i), terminal_.statusColoured(word, word));
    if (statuses[i] == kRunning) line += " on " + step.host;
    if (isTerminalStatus(statuses[i])) {
      if (step.ended <= 0) step.ended = now;
      line += " after " + durationText(elapsedOf(step, now));
    }
    printLine(line);
  }
}

void TLTaskFollower::showReports() {
  for (const auto& report : client_.takeEndReports()) {
    if (report.texts.empty()) continue;
    const std::string text = joinedTexts(report.texts);
    const bool known =
        report.step >= 0 && report.step < static_cast<std::int32_t>(run_.steps.size());
    if (known) run_.steps[static_cast<std::size_t>(report.step)].reason = text;
    printLine((known ? label(static_cast<std::size_t>(report.step)) + ": " : "") + text);
  }
}

// What the daemon notes of itself, but for the statuses: those of a poll are never older.
void TLTaskFollower::readState() {
  auto noted = TLRunState::load(stateFile_);
  if (!noted || noted->steps.size() != run_.steps.size()) return;
  for (std::size_t i = 0; i < run_.steps.size(); ++i) {
    TLRunStateStep& step = noted->steps[i];
    const TLRunStateStep& known = run_.steps[i];
    step.status = known.status;
    if (step.reason.empty()) step.reason = known.reason;
    if (step.started <= 0) step.started = known.started;
    if (step.ended <= 0) step.ended = known.ended;
  }
  run_ = std::move(*noted);
}

std::string TLTaskFollower::label(std::size_t step) const {
  return fmt::format("step {} {}", step, run_.steps[step].name);
}

void TLTaskFollower::printLine(const std::string& text) {
  clearProgress();
  fmt::print(out_, "{}  {}\n", clockText(), text);
  std::fflush(out_);
}

void TLTaskFollower::showProgress() {
  if (!terminal_.isTerminal()) return;
  const auto ended = std::ranges::count_if(
      run_.steps, [](const TLRunStateStep& step) { return isTerminalStatus(step.status); });
  std::string line =
      fmt::format("{}/{} steps done, {}", ended, run_.steps.size(),
                  durationText(std::chrono::duration<double>(Clock::now() - begin_).count()));
  for (const auto& step : run_.steps) {
    if (step.status != kRunning) continue;
    line +=
        fmt::format("  |  {} running {}", step.name, durationText(elapsedOf(step, secondsNow())));
  }
  const auto width = static_cast<std::size_t>(terminal_.width() - 1);
  clearProgress();
  const auto plot = residualLines();
  for (const auto& row : plot) fmt::print(out_, "{}\n", row);
  fmt::print(out_, "{}", line.substr(0, width));
  std::fflush(out_);
  linesShown_ = static_cast<int>(plot.size()) + 1;
  widthShown_ = terminal_.width();
}

void TLTaskFollower::clearProgress() {
  if (linesShown_ == 0) return;
  // On a terminal that has become narrower each line has been broken into several.
  const int width = std::max(terminal_.width(), 1);
  const int broken = width < widthShown_ ? (widthShown_ + width - 1) / width : 1;
  const int above = std::min(linesShown_ * broken, terminal_.height()) - 1;
  fmt::print(out_, "\r{}\x1b[J", above > 0 ? fmt::format("\x1b[{}A", above) : "");
  std::fflush(out_);
  linesShown_ = 0;
}

bool TLTaskFollower::allOk() const {
  return std::all_of(run_.steps.begin(), run_.steps.end(),
                     [](const TLRunStateStep& step) { return step.status == kFinishedOk; });
}
