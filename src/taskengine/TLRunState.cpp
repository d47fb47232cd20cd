#include "taskengine/TLRunState.h"

#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <ctime>
#include <nlohmann/json.hpp>
#include <string_view>

#include "platform/TLHostForm.h"
#include "taskengine/TLVersionedJson.h"

namespace {

using Json = nlohmann::json;

constexpr std::string_view kPrefix = "task-";
constexpr std::string_view kSuffix = ".json";

Json residualsToJson(const std::vector<TLRunStateResidual>& residuals) {
  Json json = Json::array();
  for (const auto& one : residuals) {
    json.push_back({{"name", one.name}, {"first", one.first}, {"last", one.last}});
  }
  return json;
}

// A number that JSON has no word for is null.
double numberFrom(const Json& json, const char* name) {
  const auto found = json.find(name);
  return found != json.end() && found->is_number() ? found->get<double>() : 0.0;
}

Json transferToJson(const TLTransferProgress& transfer) {
  return {{"direction", transfer.direction}, {"host", transfer.host},
          {"file", transfer.file},           {"number", transfer.number},
          {"count", transfer.count},         {"bytes", transfer.bytes},
          {"total", transfer.total},         {"file_bytes", transfer.fileBytes},
          {"problem", transfer.problem},     {"kept_directory", transfer.keptDirectory}};
}

TLTransferProgress transferFromJson(const Json& json) {
  TLTransferProgress transfer;
  transfer.direction = json.value("direction", "");
  transfer.host = json.value("host", "");
  transfer.file = json.value("file", "");
  transfer.number = json.value("number", 0);
  transfer.count = json.value("count", 0);
  transfer.bytes = json.value("bytes", std::int64_t{0});
  transfer.total = json.value("total", std::int64_t{0});
  transfer.fileBytes = json.value("file_bytes", std::int64_t{0});
  transfer.problem = json.value("problem", "");
  transfer.keptDirectory = json.value("kept_directory", "");
  return transfer;
}

Json stepToJson(const TLRunStateStep& step) {
  Json json{{"name", step.name},
            {"executable", step.executable},
            {"host", step.host},
            {"status", step.status},
            {"children", step.children},
            {"queue", step.queue},
            {"job", step.jobNumber},
            {"started", step.started},
            {"ended", step.ended},
            {"reason", step.reason},
            {"queue_state", step.queueState},
            {"silent_host", step.silentHost},
            {"silent_since", step.silentSince},
            {"iteration", step.iteration},
            {"iterations_asked", step.iterationsAsked},
            {"residuals", residualsToJson(step.residuals)},
            {"last_text", step.lastText}};
  if (step.transfer != TLTransferProgress()) json["transfer"] = transferToJson(step.transfer);
  return json;
}

TLRunStateStep stepFromJson(const Json& json) {
  TLRunStateStep step;
  step.name = json.value("name", "");
  step.executable = json.value("executable", "");
  step.host = json.value("host", "");
  step.status = json.value("status", 0);
  step.children = json.value("children", std::vector<std::int32_t>());
  step.queue = json.value("queue", 0);
  step.jobNumber = json.value("job", 0);
  step.started = json.value("started", 0.0);
  step.ended = json.value("ended", 0.0);
  step.reason = json.value("reason", "");
  step.queueState = json.value("queue_state", "");
  step.silentHost = json.value("silent_host", "");
  step.silentSince = json.value("silent_since", 0.0);
  step.iteration = json.value("iteration", 0);
  step.iterationsAsked = json.value("iterations_asked", 0);
  step.lastText = json.value("last_text", "");
  step.transfer = transferFromJson(json.value("transfer", Json::object()));
  for (const auto& entry : json.value("residuals", Json::array())) {
    step.residuals.push_back(
        {entry.value("name", ""), numberFrom(entry, "first"), numberFrom(entry, "last")});
  }
  return step;
}

}  // namespace

std::string TLRunStateStep::silenceText() const {
  if (silentSince <= 0) return {};
  const auto second = static_cast<std::time_t>(silentSince);
  std::tm local = {};
  localtime_r(&second, &local);
  return fmt::format("{}host {}not answering since {:02}:{:02}:{:02}", status == 0 ? "waits: " : "",
                     silentHost == host ? "" : silentHost + ' ', local.tm_hour, local.tm_min,
                     local.tm_sec);
}

TLRunState TLRunState::fromJson(const Json& json) {
  TLRunState state;
  state.tid = json.value("tid", 0);
  state.pid = json.value("pid", 0);
  state.host = json.value("host", "");
  state.taskFile = json.value("task_file", "");
  state.taskName = json.value("task_name", "");
  state.logFile = json.value("log_file", "");
  state.started = json.value("started", 0.0);
  for (const auto& step : json.value("steps", Json::array())) {
    state.steps.push_back(stepFromJson(step));
  }
  return state;
}

Json TLRunState::json() const {
  Json json = {{"version", kVersion},
               {"tid", tid},
               {"pid", pid},
               {"host", host},
               {"task_file", taskFile},
               {"task_name", taskName},
               {"log_file", logFile},
               {"started", started},
               {"steps", Json::array()}};
  for (const auto& step : steps) json["steps"].push_back(stepToJson(step));
  return json;
}

std::string TLRunState::fileName(const std::string& directory, int pid) {
  return hostForm().join(directory, fmt::format("{}{}{}", kPrefix, pid, kSuffix));
}

int TLRunState::save(const std::string& directory) const {
  // Names come from files of any encoding: what is no UTF-8 must not stop the daemon.
  const std::string text = json().dump(1, ' ', false, Json::error_handler_t::replace);
  return hostForm().replaceFile(fileName(directory, pid), text + "\n");
}

void TLRunState::remove(const std::string& directory, int pid) {
  unlink(hostForm().realPath(fileName(directory, pid)).c_str());
}

std::optional<TLRunState> TLRunState::load(const std::string& path) {
  return readVersionedJson(path, kVersion, fromJson);
}

std::vector<TLRunState> TLRunState::list(const std::string& directory) {
  std::vector<std::string> names;
  hostForm().listDirectory(directory, names);
  std::vector<TLRunState> states;
  for (const auto& name : names) {
    if (!name.starts_with(kPrefix) || !name.ends_with(kSuffix)) continue;
    if (auto state = load(hostForm().join(directory, name))) states.push_back(std::move(*state));
  }
  std::sort(states.begin(), states.end(),
            [](const TLRunState& a, const TLRunState& b) { return a.started < b.started; });
  return states;
}
