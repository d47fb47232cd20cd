#include "taskengine/TLKeptRun.h"

#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <string_view>

#include "platform/TLHostForm.h"
#include "taskengine/TLVersionedJson.h"

namespace {

using Json = nlohmann::json;

constexpr std::string_view kPrefix = "last-";
constexpr std::string_view kSuffix = ".json";
constexpr std::string_view kLogSuffix = ".log";

/// The same for all names of one file.
std::string stemOf(const std::string& taskFile) {
  std::error_code ignored;
  const auto canonical = std::filesystem::weakly_canonical(taskFile, ignored).string();
  std::uint64_t hash = 14695981039346656037U;  // FNV-1a
  for (const char c : canonical.empty() ? taskFile : canonical) {
    hash = (hash ^ static_cast<unsigned char>(c)) * 1099511628211U;
  }
  return fmt::format("{}{:016x}", kPrefix, hash);
}

/// As many digits as a value of single precision has.
double rounded(double value) {
  return std::strtod(fmt::format("{:.7g}", value).c_str(), nullptr);
}

Json seriesToJson(const std::vector<TLPlotSeries>& all) {
  Json json = Json::array();
  for (const auto& series : all) {
    const TLPlotSeries part = series.sample(TLKeptRun::kMostPoints);
    Json points = Json::array();
    for (std::size_t i = 0; i < part.size(); ++i) {
      points.push_back(rounded(part.x(i)));
      points.push_back(rounded(part.y(i)));
    }
    json.push_back({{"name", series.name()}, {"points", std::move(points)}});
  }
  return json;
}

std::vector<TLPlotSeries> seriesFromJson(const Json& json) {
  std::vector<TLPlotSeries> all;
  for (const auto& entry : json) {
    TLPlotSeries& series = all.emplace_back(entry.value("name", ""));
    const auto points = entry.value("points", Json::array());
    for (std::size_t i = 0; i + 1 < points.size(); i += 2) {
      if (points[i].is_number() && points[i + 1].is_number()) series.add(points[i], points[i + 1]);
    }
  }
  return all;
}

Json copiesToJson(const std::vector<TLKeptCopy>& copies) {
  Json json = Json::array();
  for (const auto& copy : copies) {
    json.push_back({{"direction", copy.direction},
                    {"host", copy.host},
                    {"files", copy.files},
                    {"bytes", copy.bytes},
                    {"started", copy.started},
                    {"ended", copy.ended},
                    {"names", copy.names},
                    {"problem", copy.problem}});
  }
  return json;
}

std::vector<TLKeptCopy> copiesFromJson(const Json& json) {
  std::vector<TLKeptCopy> copies;
  for (const auto& entry : json) {
    copies.push_back({entry.value("direction", ""), entry.value("host", ""),
                      entry.value("files", 0), entry.value("bytes", std::int64_t{0}),
                      entry.value("started", 0.0), entry.value("ended", 0.0),
                      entry.value("names", std::vector<std::string>()),
                      entry.value("problem", "")});
  }
  return copies;
}

Json stepToJson(const TLKeptStep& step) {
  return {{"command", step.command},
          {"crash_lines", step.crashLines},
          {"end_texts", step.endTexts},
          {"block_process", step.blockProcess},
          {"block_cells", step.blockCells},
          {"process_hosts", step.processHosts},
          {"copies", copiesToJson(step.copies)},
          {"residuals", seriesToJson(step.residuals)}};
}

TLKeptStep stepFromJson(const Json& json) {
  using Words = std::vector<std::string>;
  using Numbers = std::vector<std::int32_t>;
  return {json.value("command", Words()),
          json.value("crash_lines", Words()),
          json.value("end_texts", Words()),
          json.value("block_process", Numbers()),
          json.value("block_cells", Numbers()),
          json.value("process_hosts", Words()),
          copiesFromJson(json.value("copies", Json::array())),
          seriesFromJson(json.value("residuals", Json::array()))};
}

TLKeptRun fromJson(const Json& json) {
  TLKeptRun kept;
  kept.run = TLRunState::fromJson(json.value("run", Json::object()));
  kept.ended = json.value("ended", 0.0);
  for (const auto& step : json.value("details", Json::array())) {
    kept.steps.push_back(stepFromJson(step));
  }
  kept.steps.resize(kept.run.steps.size());
  return kept;
}

std::vector<std::string> recordNames(const std::string& directory) {
  std::vector<std::string> names;
  hostForm().listDirectory(directory, names);
  std::erase_if(names, [](const std::string& name) {
    return !name.starts_with(kPrefix) || !name.ends_with(kSuffix);
  });
  return names;
}

}  // namespace

std::string TLKeptRun::fileName(const std::string& directory, const std::string& taskFile) {
  return hostForm().join(directory, stemOf(taskFile) + std::string(kSuffix));
}

std::string TLKeptRun::logName(const std::string& directory, const std::string& taskFile) {
  return hostForm().join(directory, stemOf(taskFile) + std::string(kLogSuffix));
}

int TLKeptRun::save(const std::string& directory) const {
  Json json = {
      {"version", kVersion}, {"run", run.json()}, {"ended", ended}, {"details", Json::array()}};
  for (const auto& step : steps) json["details"].push_back(stepToJson(step));
  const std::string text = json.dump(-1, ' ', false, Json::error_handler_t::replace);
  return hostForm().replaceFile(fileName(directory, run.taskFile), text + "\n");
}

void TLKeptRun::keepLog(const std::string& directory) {
  auto text = hostForm().readEnd(run.logFile, kLongestLog + 1);
  if (!text) return;
  if (text->size() > kLongestLog) {
    const auto line = text->find('\n');
    text->erase(0, line == std::string::npos ? 1 : line + 1);
  }
  const std::string copy = logName(directory, run.taskFile);
  if (hostForm().replaceFile(copy, *text) != 0) return;
  for (auto& step : run.steps) {  // reasons name the log that goes
    const auto place = step.reason.find(run.logFile);
    if (place != std::string::npos) step.reason.replace(place, run.logFile.size(), copy);
  }
  run.logFile = copy;
}

std::optional<TLKeptRun> TLKeptRun::load(const std::string& path) {
  return readVersionedJson(path, kVersion, fromJson);
}

std::vector<TLKeptRun> TLKeptRun::list(const std::string& directory) {
  std::vector<TLKeptRun> runs;
  for (const auto& name : recordNames(directory)) {
    if (auto run = load(hostForm().join(directory, name))) runs.push_back(std::move(*run));
  }
  std::ranges::sort(runs,
                    [](const auto& a, const auto& b) { return a.run.started > b.run.started; });
  return runs;
}

void TLKeptRun::removeOld(const std::string& directory) {
  if (recordNames(directory).size() <= kMostRuns) return;  // they needn't be read
  const auto runs = list(directory);
  for (std::size_t i = kMostRuns; i < runs.size(); ++i) {
    const std::string& task = runs[i].run.taskFile;
    unlink(hostForm().realPath(logName(directory, task)).c_str());
    unlink(hostForm().realPath(fileName(directory, task)).c_str());
  }
}
