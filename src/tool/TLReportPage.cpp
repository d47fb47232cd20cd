#include "tool/TLReportPage.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <ctime>
#include <map>

#include "platform/TLHostForm.h"
#include "tool/TLDaemonClient.h"
#include "tool/TLReportPlot.h"
#include "tool/TLRunView.h"
#include "tool/TLTerminal.h"

namespace {

constexpr std::size_t kMostLogLines = 200;
constexpr std::size_t kMostLogBytes = 100000;

constexpr const char* kStyle = R"(
:root { color-scheme: light dark;
  --ink: #1d2430; --paper: #ffffff; --card: #f5f7fa; --line: #d5dae2; --soft: #5b6676;
  --ok: #1a7f4b; --bad: #c02b2b; --run: #1f6fb2; --wait: #6b7584; --stop: #9a6400;
  --c0: #1f6fb2; --c1: #c9570c; --c2: #2a8a4e; --c3: #8a3fa8; --c4: #b01e4f; --c5: #6a6f00; }
@media (prefers-color-scheme: dark) { :root {
  --ink: #e4e8ee; --paper: #14181f; --card: #1d232d; --line: #38414f; --soft: #9aa6b6;
  --ok: #58c98d; --bad: #ff8078; --run: #6db6f2; --wait: #98a3b3; --stop: #e0ac4a;
  --c0: #6db6f2; --c1: #f2a05c; --c2: #6fd396; --c3: #cf9be6; --c4: #f58aa8; --c5: #d2d763; } }
* { box-sizing: border-box; }
body { margin: 0 auto; padding: 2rem 1.2rem 3rem; max-width: 62rem; background: var(--paper);
  color: var(--ink); font: 15px/1.5 system-ui, "DejaVu Sans", sans-serif; }
h1 { font-size: 1.7rem; margin: 0; } h2 { font-size: 1.2rem; margin: 2.2rem 0 .6rem; }
h3 { font-size: 1.02rem; margin: 0 0 .4rem; } p { margin: .4rem 0; }
.soft { color: var(--soft); } .file { overflow-wrap: anywhere; }
.verdict { font-size: 1.1rem; font-weight: 600; margin: .5rem 0; }
table { border-collapse: collapse; width: 100%; }
th { text-align: left; font-weight: 600; color: var(--soft); font-size: .85rem; }
th, td { padding: .35rem .7rem .35rem 0; border-bottom: 1px solid var(--line); vertical-align: top; }
td.number, th.number { text-align: right; font-variant-numeric: tabular-nums; white-space: nowrap; }
td.why { overflow-wrap: anywhere; }
.state { white-space: nowrap; font-weight: 600; }
.s0 { color: var(--wait); } .s1 { color: var(--run); } .s2 { color: var(--ok); }
.s3, .s4 { color: var(--bad); } .s5 { color: var(--stop); }
.card { background: var(--card); border: 1px solid var(--line); border-radius: 8px;
  padding: .9rem 1.1rem; margin: 0 0 1rem; break-inside: avoid; }
.reason { border-left: 4px solid var(--bad); padding-left: .7rem; overflow-wrap: anywhere; }
pre, code { font: 13px/1.45 ui-monospace, "DejaVu Sans Mono", monospace; }
pre { margin: .4rem 0; white-space: pre-wrap; overflow-wrap: anywhere; }
.log { max-height: 28rem; overflow: auto; } .command { max-height: 9rem; overflow: auto; }
svg { max-width: 100%; } svg.plot, svg.time { width: 100%; height: auto; display: block; }
.grid { stroke: var(--line); stroke-width: 1; } .axis { fill: none; stroke: var(--soft); }
.tick { fill: var(--soft); font: 12px system-ui, "DejaVu Sans", sans-serif; }
.end { text-anchor: end; } .middle { text-anchor: middle; }
.curve { fill: none; stroke-width: 1.8; stroke-linejoin: round; }
.c0 { stroke: var(--c0); } .c1 { stroke: var(--c1); } .c2 { stroke: var(--c2); }
.c3 { stroke: var(--c3); } .c4 { stroke: var(--c4); } .c5 { stroke: var(--c5); }
.legend { display: flex; flex-wrap: wrap; gap: .2rem 1.4rem; margin: .3rem 0 0; }
.legend b { font-weight: 600; font-variant-numeric: tabular-nums; }
.load { width: 100%; height: .8em; fill: var(--run); } .share { width: 50%; }
.blocks { margin-bottom: .6rem; } .b0 { fill: var(--wait); } .b1 { fill: var(--run); }
.b2 { fill: var(--ok); } .b3, .b4 { fill: var(--bad); } .b5 { fill: var(--stop); }
footer { margin-top: 2.5rem; color: var(--soft); font-size: .85rem; }
@page { margin: 15mm; }
@media print { :root { --ink: #000; --paper: #fff; --card: #fff; --line: #bbb; --soft: #444;
  --ok: #1a7f4b; --bad: #c02b2b; --run: #1f6fb2; --wait: #6b7584; --stop: #9a6400;
  --c0: #1f6fb2; --c1: #c9570c; --c2: #2a8a4e; --c3: #8a3fa8; --c4: #b01e4f; --c5: #6a6f00; }
  body { padding: 0; max-width: none; font-size: 10.5pt; print-color-adjust: exact; }
  .log, .command { max-height: none; } .card { break-inside: auto; }
  h2, h3 { break-after: avoid; } tr, svg, .reason { break-inside: avoid; } }
)";

// Signs beside the words, so that states differ by more than their colour.
constexpr std::array<const char*, 6> kSigns = {"○", "▶", "✔", "✘", "✘", "■"};

std::size_t atStatus(const TLRunStateStep& step) {
  return static_cast<std::size_t>(std::clamp(step.status, 0, 5));
}

std::string timeText(double seconds) {
  if (seconds <= 0) return "–";
  const auto whole = static_cast<std::time_t>(seconds);
  std::tm local{};
  localtime_r(&whole, &local);
  std::array<char, 32> text{};
  return {text.data(), std::strftime(text.data(), text.size(), "%Y-%m-%d %H:%M:%S", &local)};
}

std::string clockOnly(double seconds) {
  const std::string text = timeText(seconds);
  return text.size() > 11 ? text.substr(11) : text;
}

std::string stateText(const TLRunStateStep& step) {
  return fmt::format("<span class=\"state s{}\">{} {}</span>", atStatus(step),
                     kSigns[atStatus(step)], statusText(step.status));
}

std::string lineList(const std::vector<std::string>& lines) {
  std::string text;
  for (const auto& line : lines) text += htmlText(line) + "\n";
  return "<pre>" + text + "</pre>\n";
}

// A word as a UNIX shell would have it.
std::string shellWord(const std::string& word) {
  constexpr std::string_view kSpecial = " \t\n\"'`$&|;<>()*?[]{}!#~\\";
  if (!word.empty() && word.find_first_of(kSpecial) == std::string::npos) return word;
  std::string quoted = "'";
  for (const char c : word) quoted += c == '\'' ? "'\\''" : std::string(1, c);
  return quoted + "'";
}

std::string commandText(const std::vector<std::string>& words) {
  std::string line;
  for (const auto& word : words) line += (line.empty() ? "" : " ") + shellWord(word);
  return line;
}

std::string copyText(const TLKeptCopy& copy) {
  std::string html = fmt::format(
      "<p>{} {}: {} file{}, {}{}</p>\n", copy.direction == "to" ? "Copied to" : "Fetched from",
      htmlText(copy.host), copy.files, copy.files == 1 ? "" : "s",
      bytesText(static_cast<double>(copy.bytes)),
      copy.ended > 0 ? " in " + durationText(copy.ended - copy.started) : ", not finished");
  std::string names;
  for (const auto& name : copy.names) names += htmlText(name) + "\n";
  if (!names.empty()) html += "<pre class=\"command\">" + names + "</pre>\n";
  if (!copy.problem.empty()) html += "<p class=\"reason\">" + htmlText(copy.problem) + "</p>\n";
  return html;
}

struct ProcessLoad {
  std::size_t blocks = 0;
  double cells = 0;
};

// A row for each process, with its share as a bar.
std::string blockTable(const TLKeptStep& step) {
  std::map<std::int32_t, ProcessLoad> loads;
  for (std::size_t i = 0; i < step.processHosts.size(); ++i) loads[static_cast<std::int32_t>(i)];
  for (std::size_t i = 0; i < step.blockProcess.size(); ++i) {
    ProcessLoad& load = loads[step.blockProcess[i]];
    ++load.blocks;
    if (i < step.blockCells.size()) load.cells += step.blockCells[i];
  }
  const auto weigh = [](const ProcessLoad& load) { return load.cells; };
  const bool weighed =
      std::ranges::any_of(loads, [&](const auto& one) { return weigh(one.second) > 0; });
  double largest = 1;
  for (const auto& [process, load] : loads) {
    largest = std::max(largest, weighed ? load.cells : static_cast<double>(load.blocks));
  }
  const bool blocks = !step.blockProcess.empty();
  std::string html = fmt::format(
      "<p class=\"soft\">{} on {} processes</p>\n<table class=\"blocks\"><tr><th>process</th>"
      "<th>host</th>{}{}<th class=\"share\"></th></tr>\n",
      blocks ? fmt::format("{} blocks", step.blockProcess.size()) : "Ran", loads.size(),
      blocks ? "<th class=\"number\">blocks</th>" : "",
      weighed ? "<th class=\"number\">cells</th>" : "");
  for (const auto& [process, load] : loads) {
    const auto at = static_cast<std::size_t>(std::max(process, 0));
    const double share = (weighed ? load.cells : static_cast<double>(load.blocks)) / largest;
    html += fmt::format(
        "<tr><td>{}</td><td>{}</td>{}{}<td>{}</td></tr>\n", process,
        at < step.processHosts.size() ? htmlText(step.processHosts[at]) : "",
        blocks ? fmt::format("<td class=\"number\">{}</td>", load.blocks) : "",
        weighed ? fmt::format("<td class=\"number\">{:.0f}</td>", load.cells) : "",
        blocks ? fmt::format("<svg viewBox=\"0 0 100 5\" preserveAspectRatio=\"none\" "
                             "class=\"load\"><rect width=\"{:.1f}\" height=\"5\"/></svg>",
                             100 * share)
               : "");
  }
  return html + "</table>\n";
}

}  // namespace

TLReportPage::TLReportPage(const TLKeptRun& kept, bool live, double now)
    : kept_(kept), live_(live), now_(now) {}

double TLReportPage::endOf(const TLRunStateStep& step) const {
  if (step.ended > 0) return step.ended;
  if (live_) return now_;
  return kept_.ended > 0 ? kept_.ended : step.started;
}

std::string TLReportPage::head() const {
  const TLRunState& run = kept_.run;
  const bool ok = std::ranges::all_of(run.steps, [](const auto& step) { return step.status == 2; });
  double last = kept_.ended;
  for (const auto& step : run.steps) last = std::max(last, endOf(step));
  const int state = live_ ? 1 : ok ? 2 : 4;
  std::string html = fmt::format(
      "<h1>{}</h1>\n<p class=\"verdict\"><span class=\"s{}\">{}</span> {}</p>\n<p>Began {}, {} {} "
      "on {}; daemon {}, process {}.</p>\n<p class=\"soft file\">{}</p>\n",
      htmlText(run.taskName), state, kSigns[static_cast<std::size_t>(state)], countText(run),
      timeText(run.started), live_ ? "has run for" : "took",
      durationText(std::max(last - run.started, 0.0)), htmlText(run.host), run.tid, run.pid,
      htmlText(run.taskFile));
  if (live_) html += "<p class=\"soft\">It still runs: this is how it stands.</p>\n";
  if (!live_ && kept_.ended <= 0) {
    html +=
        "<p class=\"reason\">The daemon did not end in good order: it was killed, or its host went "
        "down. Steps that ran then may have gone on; what stands here is what it noted last.</p>\n";
  }
  return html;
}

std::string TLReportPage::steps() const {
  std::string html =
      "<h2>Steps</h2>\n<table>\n<tr><th class=\"number\"></th><th>step</th><th>state</th>"
      "<th>host</th><th class=\"number\">began</th><th class=\"number\">took</th>"
      "<th>how far, and why it ended</th></tr>\n";
  for (std::size_t i = 0; i < kept_.run.steps.size(); ++i) {
    const TLRunStateStep& step = kept_.run.steps[i];
    const bool began = step.started > 0;
    std::string why = progressText(step);
    if (!step.reason.empty()) why += (why.empty() ? "" : "; ") + step.reason;
    html += fmt::format(
        "<tr><td class=\"number soft\">{}</td><td>{}<br><span class=\"soft\">{}</span></td><td>{}"
        "</td><td>{}</td><td class=\"number\">{}</td><td class=\"number\">{}</td><td "
        "class=\"why\">{}"
        "</td></tr>\n",
        i, htmlText(step.name), htmlText(step.executable), stateText(step), htmlText(step.host),
        began ? clockOnly(step.started) : "–",
        began ? durationText(std::max(endOf(step) - step.started, 0.0)) : "–", htmlText(why));
  }
  return html + "</table>\n";
}

std::string TLReportPage::timeline() const {
  constexpr double kWidth = 860;
  constexpr double kRow = 22;
  constexpr double kNames = 150;
  constexpr std::size_t kLongestName = 20;
  double first = 0;
  double last = 0;
  std::size_t rows = 0;
  for (const auto& step : kept_.run.steps) {
    if (step.started <= 0) continue;
    first = rows == 0 ? step.started : std::min(first, step.started);
    last = std::max(last, endOf(step));
    ++rows;
  }
  if (rows < 2 || last <= first) return {};
  const double height = static_cast<double>(rows) * kRow + 24;
  std::string svg = fmt::format(
      "<h2>Times</h2>\n<svg viewBox=\"0 0 {} {}\" class=\"time\" role=\"img\" aria-label=\"when "
      "each "
      "step ran\">\n",
      kWidth, height);
  const double scale = (kWidth - kNames - 70) / (last - first);
  double y = 0;
  for (const auto& step : kept_.run.steps) {
    if (step.started <= 0) continue;
    const double x = kNames + (step.started - first) * scale;
    const double width = std::max((endOf(step) - step.started) * scale, 2.0);
    svg += fmt::format(
        "<text x=\"{}\" y=\"{}\" class=\"tick end\">{}</text><rect x=\"{:.1f}\" y=\"{}\" "
        "width=\"{:.1f}\" height=\"{}\" rx=\"2\" class=\"b{}\"/><text x=\"{:.1f}\" y=\"{}\" "
        "class=\"tick\">{}</text>\n",
        kNames - 8, y + 15, htmlText(step.name.substr(0, kLongestName)), x, y + 4, width, kRow - 8,
        atStatus(step), x + width + 5, y + 15, durationText(endOf(step) - step.started));
    y += kRow;
  }
  svg += fmt::format(
      "<text x=\"{}\" y=\"{}\" class=\"tick\">{}</text><text x=\"{}\" y=\"{}\" class=\"tick "
      "end\">{}</text>\n</svg>\n",
      kNames, height - 5, clockOnly(first), kWidth - 70, height - 5, clockOnly(last));
  return svg;
}

std::string TLReportPage::stepDetails(std::size_t position) const {
  const TLRunStateStep& step = kept_.run.steps[position];
  const TLKeptStep& kept = kept_.steps[position];
  std::string html;
  if (!step.reason.empty()) html += "<p class=\"reason\">" + htmlText(step.reason) + "</p>\n";
  if (!kept.crashLines.empty()) html += "<p>It reported:</p>\n" + lineList(kept.crashLines);
  if (!kept.endTexts.empty()) html += "<p>It ended with:</p>\n" + lineList(kept.endTexts);
  html += residualPlots(kept.residuals);
  for (const auto& copy : kept.copies) html += copyText(copy);
  if (!kept.blockProcess.empty() || !kept.processHosts.empty()) html += blockTable(kept);
  if (!kept.command.empty()) {
    html += "<p class=\"soft\">Started as</p>\n<pre class=\"command\">" +
            htmlText(commandText(kept.command)) + "</pre>\n";
  }
  if (html.empty()) return {};
  return fmt::format("<section class=\"card\">\n<h3>{} {} {}</h3>\n{}</section>\n", position,
                     htmlText(step.name), stateText(step), html);
}

// The output of all steps lies in one file, each line behind the sign of its process.
std::string TLReportPage::namedLog(std::string_view text) const {
  std::map<std::string, std::string, std::less<>> names;
  std::size_t widest = 0;
  for (const auto& step : kept_.run.steps) {
    for (const std::int32_t tid : step.children) {
      names[fmt::format("[t{:x}]", tid)] = step.name;
      widest = std::max(widest, step.name.size());
    }
  }
  std::string named;
  while (!text.empty()) {
    const std::string_view line = text.substr(0, text.find('\n'));
    text.remove_prefix(std::min(line.size() + 1, text.size()));
    const auto blank = line.find(' ');
    const auto name = blank == line.npos ? names.end() : names.find(line.substr(0, blank));
    const std::string_view said = name == names.end() ? line : line.substr(blank + 1);
    if (name != names.end() && (said == "BEGIN" || said == "EOF")) continue;
    named += name == names.end() ? fmt::format("{}\n", said)
                                 : fmt::format("{:<{}}  {}\n", name->second, widest, said);
  }
  return named;
}

std::string TLReportPage::log() const {
  const std::string& file = kept_.run.logFile;
  const auto text = file.empty() ? std::nullopt : hostForm().readFile(file);
  if (!text) return {};
  const std::string named = namedLog(*text);
  if (named.empty()) return {};
  // The last lines, as many as somebody may look through.
  std::size_t start = named.size();
  for (std::size_t lines = 0; lines <= kMostLogLines && start != std::string::npos; ++lines) {
    start = start == 0 ? std::string::npos : named.rfind('\n', start - 1);
  }
  const std::size_t longest = named.size() > kMostLogBytes ? named.size() - kMostLogBytes : 0;
  start = std::max(start == std::string::npos ? 0 : start + 1, longest);
  return fmt::format(
      "<h2>{}</h2>\n<p class=\"soft file\">{}</p>\n<pre class=\"card log\">{}</pre>\n",
      start > 0 ? "The end of the steps' output" : "The steps' output", htmlText(file),
      htmlText(std::string_view(named).substr(start)));
}

std::string TLReportPage::html() const {
  std::string details;
  for (std::size_t i = 0; i < kept_.run.steps.size(); ++i) details += stepDetails(i);
  if (!details.empty()) details = "<h2>Step by step</h2>\n" + details;
  return fmt::format(
      "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n<meta "
      "name=\"viewport\" content=\"width=device-width\">\n<title>{}: "
      "{}</title>\n<style>{}</style>\n"
      "</head>\n<body>\n{}{}{}{}{}<footer>Made by tlctl report on {}.</footer>\n</body>\n</html>\n",
      htmlText(kept_.run.taskName), countText(kept_.run), kStyle, head(), steps(), timeline(),
      details, log(), timeText(now_));
}
