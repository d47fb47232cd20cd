#include "tool/TLRunScreen.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <numeric>

#include "tool/TLBraillePlot.h"
#include "tool/TLDaemonClient.h"
#include "tool/TLRunView.h"

namespace {

constexpr int kMostPlotRows = 20;
constexpr std::size_t kWidestName = 24;

// States differ by shape, not by colour alone. In the order of the status numbers.
constexpr std::array<const char*, 6> kSigns = {"○", "▶", "✔", "✘", "✘", "■"};
// Which steps stay when there is no room for all, best first: those that run, failed, are next.
constexpr std::array<int, 6> kRanks = {2, 0, 3, 1, 1, 1};

std::size_t atStatus(const TLRunStateStep& step) {
  return static_cast<std::size_t>(std::clamp(step.status, 0, 5));
}

bool isControl(unsigned char c) {
  return c < 0x20 || c == 0x7F;
}

// The positions of the steps that are shown, in the order of the task.
std::vector<std::size_t> shownSteps(const TLRunState& run, std::size_t most) {
  std::vector<std::size_t> places(run.steps.size());
  std::iota(places.begin(), places.end(), 0U);
  if (places.size() <= most) return places;
  const auto rank = [&](std::size_t place) { return kRanks[atStatus(run.steps[place])]; };
  // Of those that ended well the last ones.
  std::ranges::stable_sort(places, [&](std::size_t a, std::size_t b) {
    if (rank(a) != rank(b)) return rank(a) < rank(b);
    return rank(a) == kRanks[2] ? a > b : a < b;
  });
  places.resize(most);
  std::ranges::sort(places);
  return places;
}

}  // namespace

std::string cutToColumns(std::string_view text, int columns) {
  std::string cut;
  std::size_t lastStart = 0;
  int used = 0;
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    const bool begins = (byte & 0xC0U) != 0x80U;
    if (begins && used >= columns) {
      cut.erase(columns > 0 ? lastStart : 0);
      return columns > 0 ? cut + "…" : cut;
    }
    if (begins) {
      lastStart = cut.size();
      ++used;
    }
    cut += isControl(byte) ? ' ' : c;
  }
  return cut;
}

std::string TLRunScreen::head(const Content& content, int columns) const {
  const TLRunState& run = content.run;
  const auto ended = std::ranges::count_if(
      run.steps, [](const TLRunStateStep& step) { return isTerminalStatus(step.status); });
  const double began = run.started > 0 ? run.started : content.now;
  return terminal_.bold(cutToColumns(
      fmt::format("{}: {}/{} steps done, {}   {}", run.taskName, ended, run.steps.size(),
                  durationText(std::max(content.now - began, 0.0)), content.note),
      columns));
}

std::string TLRunScreen::stepLine(const Content& content, std::size_t position,
                                  std::size_t nameWidth, int columns) const {
  const TLRunStateStep& step = content.run.steps[position];
  const std::string word = statusText(step.status);
  std::string rest;
  if (step.status != 0) {
    rest = fmt::format("{:>10}  {}", durationText(elapsedOf(step, content.now)), step.host);
    const std::string progress = progressText(step);
    if (!progress.empty()) rest += "  " + progress;
  }
  std::string said = step.reason;
  if (said.empty() && step.status == 1) {
    const bool known = step.lastText.empty() && position < content.lastLines.size();
    said = known ? content.lastLines[position] : step.lastText;
  }
  for (const auto& trouble : {step.silenceText(), transferText(step)}) {
    if (!trouble.empty()) rest += "  " + trouble;
  }
  if (!said.empty()) rest += "  " + said;
  const std::string front =
      fmt::format(" {} {:<{}} ", kSigns[atStatus(step)],
                  cutToColumns(step.name, static_cast<int>(nameWidth)), nameWidth);
  const std::string status = fmt::format("{:<12}", word);
  const int left = columns - static_cast<int>(nameWidth + 4 + status.size());
  if (left < 0) return cutToColumns(front + status + rest, columns);
  return terminal_.statusColoured(word, front + status) + cutToColumns(rest, left);
}

std::vector<std::string> TLRunScreen::lines(const Content& content, int columns, int rows) const {
  std::vector<std::string> lines;
  const TLRunState& run = content.run;
  int room = rows - 1;
  if (!content.series.empty()) {
    const int steps = std::min(static_cast<int>(run.steps.size()), rows / 2);
    lines = TLBraillePlot(columns, std::min(room - steps, kMostPlotRows), terminal_.hasColour())
                .draw(content.series, true);
    room -= static_cast<int>(lines.size());
  }
  lines.push_back(head(content, columns));
  std::size_t nameWidth = 4;
  for (const auto& step : run.steps) nameWidth = std::max(nameWidth, step.name.size());
  nameWidth = std::min(nameWidth, kWidestName);
  const bool all = static_cast<int>(run.steps.size()) <= room;
  const auto most = static_cast<std::size_t>(std::max(all ? room : room - 1, 0));
  const auto shown = shownSteps(run, most);
  for (const std::size_t position : shown) {
    lines.push_back(stepLine(content, position, nameWidth, columns));
  }
  if (!all) {
    lines.push_back(terminal_.faint(cutToColumns(
        fmt::format("   and {} more steps", run.steps.size() - shown.size()), columns)));
  }
  return lines;
}
