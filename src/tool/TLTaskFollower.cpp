#include "tool/TLTaskFollower.h"

#include <fmt/format.h>

#include <algorithm>
#include <thread>
#include <utility>

#include "taskengine/TLKeptRun.h"
#include "taskengine/TLStepEnd.h"
#include "tool/TLDaemonFinder.h"
#include "tool/TLRunScreen.h"
#include "tool/TLRunView.h"

namespace {

constexpr std::int32_t kRunning = 1;
constexpr std::int32_t kFinishedOk = 2;
constexpr TLDaemonClient::Seconds kLastPatience{30.0};
constexpr auto kLook = std::chrono::milliseconds(20);
constexpr auto kDrawingInterval = std::chrono::milliseconds(250);
constexpr auto kFilesInterval = std::chrono::milliseconds(500);
constexpr auto kLifeInterval = std::chrono::milliseconds(500);
constexpr auto kBusyAfter = std::chrono::seconds(10);
constexpr auto kNewsInterval = std::chrono::seconds(10);
constexpr std::size_t kMostLogsRead = 20;
constexpr int kKeptLines = 2;  // of the terminal, for what was there

std::string joinedTexts(const std::vector<std::string>& texts) {
  std::string text;
  for (const auto& part : texts) {
    if (!text.empty()) text += "; ";
    text += part;
  }
  return text;
}

}  // namespace

TLTaskFollower::TLTaskFollower(TLDaemonClient& client, TLRunState run, Files files)
    : client_(client),
      run_(std::move(run)),
      files_(std::move(files)),
      lastLines_(run_.steps.size()),
      reasonsSaid_(run_.steps.size()),
      transfersSaid_(run_.steps.size()),
      iterationsSaid_(run_.steps.size(), 0),
      nextNews_(Clock::now() + kNewsInterval) {}

void TLTaskFollower::showResiduals(TLSteeringMirror& mirror) {
  mirror_ = &mirror;
  plot_ = true;
  client_.followSteering(mirror_);
}

bool TLTaskFollower::allEnded() const {
  return std::ranges::all_of(
      run_.steps, [](const TLRunStateStep& step) { return isTerminalStatus(step.status); });
}

// A daemon that is busy with a start or a copy answers late: only its absence ends the following.
TLTaskFollower::End TLTaskFollower::follow(std::chrono::milliseconds interval,
                                           const volatile int& interrupted) {
  bool owed = false;
  while (true) {
    if (!owed && Clock::now() - asked_ >= interval) {
      asked_ = Clock::now();
      nextLifeCheck_ = asked_ + kLifeInterval;
      client_.beginPoll();
      owed = true;
    }
    client_.receiveWaiting();
    const bool answered = owed && client_.pollAnswered();
    if (answered) takeAnswer();
    showReports();
    if (answered && allEnded()) break;
    if (answered) owed = false;
    if (!client_.startError().empty() || (owed && !isThere())) {
      clearSteps();
      return client_.startError().empty() ? End::daemonGone : End::noStart;
    }
    if (owed) showBusy();
    takeFiles();
    if (interrupted != 0 || obeyKeys()) {
      clearSteps();
      return End::interrupted;
    }
    showSteps();
    std::this_thread::sleep_for(kLook);
  }
  // Values follow the answer to their poll: one more answer, and all have come.
  if (mirror_ != nullptr && client_.poll(kLastPatience)) {
    client_.receiveWaiting();
    showResidualNews();
    showLastPlot();
  }
  clearSteps();
  return End::allEnded;
}

bool TLTaskFollower::isThere() {
  if (Clock::now() < nextLifeCheck_) return true;
  nextLifeCheck_ = Clock::now() + kLifeInterval;
  if (client_.alive()) return true;
  client_.receiveWaiting();  // what it said last
  showReports();
  return false;
}

void TLTaskFollower::takeAnswer() {
  busySaid_ = false;
  showChanges(client_.statuses());
  showResidualNews();
}

void TLTaskFollower::showBusy() {
  if (busySaid_ || Clock::now() - asked_ < kBusyAfter) return;
  busySaid_ = true;
  printLine("the daemon is busy with a start or a copy and has not answered yet");
}

// True: the user leaves.
bool TLTaskFollower::obeyKeys() {
  const char key = keys_.next();
  if (key == 'p') {
    plot_ = !plot_;
    nextFiles_ = nextDrawing_ = Clock::time_point();
  }
  return key == 'q';
}

void TLTaskFollower::showResidualNews() {
  if (mirror_ == nullptr) return;
  const auto news = mirror_->takeNews();
  if (drawsLive()) return;
  for (const auto& line : news) printLine(line);
}

std::vector<TLPlotSeries> TLTaskFollower::series() const {
  if (!plot_) return {};
  return mirror_ != nullptr ? mirror_->residuals() : recorded_;
}

// What the run came to stays on the terminal.
void TLTaskFollower::showLastPlot() {
  if (!drawsLive()) return;
  clearSteps();
  TLRunState none;
  const auto plot = TLRunScreen(terminal_).lines({none, {}, series(), 0, {}}, terminal_.width() - 1,
                                                 terminal_.height() - kKeptLines);
  for (std::size_t i = 0; i + 1 < plot.size(); ++i) fmt::print(out_, "{}\n", plot[i]);
  std::fflush(out_);
}

void TLTaskFollower::showChanges(const std::vector<std::int32_t>& statuses) {
  readState();
  const double now = secondsNow();
  for (std::size_t i = 0; i < std::min(statuses.size(), run_.steps.size()); ++i) {
    TLRunStateStep& step = run_.steps[i];
    if (statuses[i] == step.status) continue;
    step.status = statuses[i];
    if (step.started <= 0 && step.status != 0) step.started = now;
    const std::string word = statusText(statuses[i]);
    std::string line = fmt::format("{}: {}", label(i), terminal_.statusColoured(word, word));
    if (statuses[i] == kRunning) line += " on " + step.host;
    if (isTerminalStatus(statuses[i])) {
      if (step.ended <= 0) step.ended = now;
      line += " after " + durationText(elapsedOf(step, now));
    }
    printLine(line);
  }
  showReasons();
}

// Why a step ended may become known after the end itself.
void TLTaskFollower::showReasons() {
  for (std::size_t i = 0; i < run_.steps.size(); ++i) {
    const TLRunStateStep& step = run_.steps[i];
    if (!isTerminalStatus(step.status) || step.reason == reasonsSaid_[i]) continue;
    reasonsSaid_[i] = step.reason;
    if (!step.reason.empty()) printLine(label(i) + ": " + step.reason);
  }
}

// That files are on their way, and what went wrong with them; the rest is for the lines of the
// steps.
void TLTaskFollower::showTransfers() {
  for (std::size_t i = 0; i < run_.steps.size(); ++i) {
    const TLTransferProgress& transfer = run_.steps[i].transfer;
    const std::string& now = transfer.direction.empty() ? transfer.problem : transfer.direction;
    if (now == transfersSaid_[i]) continue;
    transfersSaid_[i] = now;
    const std::string text = transferText(run_.steps[i]);
    if (!text.empty()) printLine(label(i) + ": " + text);
  }
}

void TLTaskFollower::showReports() {
  for (const auto& report : client_.takeEndReports()) {
    if (report.texts.empty()) continue;
    const bool known =
        report.step >= 0 && report.step < static_cast<std::int32_t>(run_.steps.size());
    printLine((known ? label(static_cast<std::size_t>(report.step)) + ": " : "") +
              joinedTexts(report.texts));
  }
}

bool TLTaskFollower::findState() {
  if (!stateFile_.empty()) return true;
  for (const auto& state : TLRunState::list(files_.directory)) {
    if (state.tid == client_.tid() && isLive(state)) {
      stateFile_ = TLRunState::fileName(files_.directory, state.pid);
    }
  }
  return !stateFile_.empty();
}

// What the daemon notes of itself, but for the statuses: those of a poll are never older.
void TLTaskFollower::readState() {
  if (!findState()) return;
  auto noted = TLRunState::load(stateFile_);
  if (!noted || noted->steps.size() != run_.steps.size()) return;
  for (std::size_t i = 0; i < run_.steps.size(); ++i) {
    TLRunStateStep& step = noted->steps[i];
    const TLRunStateStep& known = run_.steps[i];
    step.status = known.status;
    if (step.started <= 0) step.started = known.started;
    if (step.ended <= 0) step.ended = known.ended;
    if (step.silentSince == known.silentSince) continue;
    const std::string silence = step.silenceText();
    if (!silence.empty()) printLine(label(i) + ": " + silence);
    if (silence.empty() && step.status == kRunning) printLine(label(i) + ": host answers again");
  }
  run_ = std::move(*noted);
}

void TLTaskFollower::takeFiles() {
  const auto now = Clock::now();
  if (now < nextFiles_) return;
  nextFiles_ = now + kFilesInterval;
  readState();
  showReasons();
  showTransfers();
  if (drawsLive()) {
    takeLogs();
  } else if (mirror_ == nullptr && now >= nextNews_) {
    nextNews_ = now + kNewsInterval;
    sayProgress();
  }
  if (plot_ && mirror_ == nullptr) takeRecord();
}

// What those who send no texts print.
void TLTaskFollower::takeLogs() {
  std::size_t read = 0;
  for (std::size_t i = 0; i < run_.steps.size() && read < kMostLogsRead; ++i) {
    const TLRunStateStep& step = run_.steps[i];
    if (step.status != kRunning || !step.lastText.empty() || run_.logFile.empty()) continue;
    lastLines_[i] = lastOutputLine(run_.logFile, step.children);
    ++read;
  }
}

void TLTaskFollower::sayProgress() {
  for (std::size_t i = 0; i < run_.steps.size(); ++i) {
    const TLRunStateStep& step = run_.steps[i];
    const bool carried = !step.transfer.direction.empty();
    if (!carried && (step.status != kRunning || step.iteration == iterationsSaid_[i])) continue;
    iterationsSaid_[i] = step.iteration;
    printLine(label(i) + ": " + (carried ? transferText(step) : progressText(step)));
  }
}

// The residuals of the step that runs; of the last one that had any when none does.
void TLTaskFollower::takeRecord() {
  const auto kept = TLKeptRun::load(files_.record);
  if (!kept || kept->run.pid != run_.pid) return;
  for (std::size_t i = 0; i < std::min(kept->steps.size(), run_.steps.size()); ++i) {
    if (kept->steps[i].residuals.empty()) continue;
    recorded_ = kept->steps[i].residuals;
    if (run_.steps[i].status == kRunning) break;
  }
}

std::string TLTaskFollower::label(std::size_t step) const {
  return fmt::format("step {} {}", step, run_.steps[step].name);
}

void TLTaskFollower::printLine(const std::string& text) {
  clearSteps();
  fmt::print(out_, "{}  {}\n", clockText(), text);
  std::fflush(out_);
  nextDrawing_ = Clock::time_point();
}

void TLTaskFollower::showSteps() {
  if (!drawsLive()) return;
  const int width = terminal_.width();
  if (width == widthShown_ && Clock::now() < nextDrawing_) return;
  nextDrawing_ = Clock::now() + kDrawingInterval;
  std::string note = keys_.present() ? "p: plot  q: leave" : "";
  if (plot_ && series().empty()) note = "no residuals yet  " + note;
  if (busySaid_) note = "the daemon is busy  " + note;
  const auto lines = TLRunScreen(terminal_).lines({run_, lastLines_, series(), secondsNow(), note},
                                                  width - 1, terminal_.height() - kKeptLines);
  clearSteps();
  std::string text;
  for (const auto& line : lines) text += (text.empty() ? "" : "\n") + line;
  fmt::print(out_, "{}", text);
  std::fflush(out_);
  linesShown_ = static_cast<int>(lines.size());
  widthShown_ = width;
}

void TLTaskFollower::clearSteps() {
  if (linesShown_ == 0) return;
  // On a terminal that has become narrower each line has been broken into several.
  const int width = std::max(terminal_.width(), 1);
  const int broken = width < widthShown_ ? (widthShown_ + width - 1) / width : 1;
  const int above = std::min(linesShown_ * broken, terminal_.height()) - 1;
  fmt::print(out_, "\r{}\x1b[J", above > 0 ? fmt::format("\x1b[{}A", above) : "");
  linesShown_ = 0;
}

bool TLTaskFollower::allOk() const {
  return std::ranges::all_of(run_.steps,
                             [](const TLRunStateStep& step) { return step.status == kFinishedOk; });
}
