#include <fmt/format.h>
#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include <cctype>
#include <cstdio>
#include <cstring>
#include <memory>

#include "tool/TLAnswer.h"
#include "tool/TLCommands.h"
#include "tool/TLDaemonClient.h"
#include "tool/TLDaemonFinder.h"
#include "tool/TLExitCode.h"
#include "tool/TLPlotPicture.h"
#include "tool/TLSteeringSettings.h"
#include "tool/TLTaskFile.h"

namespace {

constexpr int kNoStep = -1;
constexpr TLDaemonClient::Seconds kPatience{30.0};

struct SteerOptions {
  std::string task;
  std::string action;
  std::string name;
  std::string value;  ///< the rest of the command line
  std::string step;   ///< position or name; empty for the only solver
  bool json = false;
};

// The steering file of a step as the task names it; of the only step that has one, if none is
// asked for.
std::string steeringFileOf(const std::string& taskFile, int step, std::string& error) {
  TLTaskFile file(taskFile);
  if (!file.read()) {
    error = file.report().text();
    return {};
  }
  const auto files = file.steeringFiles();
  std::string found;
  int count = 0;
  for (int i = 0; i < static_cast<int>(files.size()); ++i) {
    const std::string& one = files[static_cast<std::size_t>(i)];
    if (one.empty() || (step != kNoStep && step != i)) continue;
    found = one;
    ++count;
  }
  if (count == 1) return found;
  error = count == 0
              ? fmt::format("tlctl: {} has no argument \"-steering\" in {}\n",
                            step == kNoStep ? "no step" : "step " + std::to_string(step), taskFile)
              : "tlctl: several steps have a steering file: say which with --step\n";
  if (count == 0 && step == kNoStep) {
    error = fmt::format("tlctl: no step of {} has an argument \"-steering\"\n", taskFile);
  }
  return {};
}

nlohmann::json settingJson(const TLSteeringSetting& setting) {
  return {{"name", setting.name},
          {"parameter", setting.parameter},
          {"entry", setting.entry},
          {"kind", setting.kind},
          {"value", setting.value()}};
}

void printAll(const TLSteeringSettings& settings, bool json) {
  auto list = nlohmann::json::array();
  for (const auto& setting : settings.all()) {
    if (json) {
      list.push_back(settingJson(setting));
    } else {
      fmt::print("{}\t{}\t{}\n", setting.name, setting.kind, setting.value());
    }
  }
  if (json) printAnswer("steer", {{"settings", std::move(list)}});
}

int printOne(const TLSteeringSetting& setting, bool json, const std::string& text) {
  if (json) {
    printAnswer("steer", {{"settings", {settingJson(setting)}}});
  } else {
    fmt::print("{}\n", text);
  }
  return TLExitCode::kOk;
}

// Changes the file, so that the next change and the next start begin from it, then the run.
int change(const SteerOptions& options, const Handle<TLSteeringParameters>& set,
           const TLSteeringSetting& setting, std::int32_t daemon) {
  if (!setting.store(options.value)) {
    complain("steer", fmt::format("\"{}\" is no value of {}: it takes {}", options.value,
                                  setting.name, setting.wanted));
    return TLExitCode::kWrongUse;
  }
  const int failure = set->saveAs(set->name);
  if (failure != 0) {
    complain("steer", fmt::format("cannot write {}: {}", set->name, std::strerror(failure)));
    return TLExitCode::kStepFailed;
  }
  TLDaemonClient client(daemon);
  client.send(
      TL_MSG_RECONNECTED);  // a daemon hears only those who have told it that they are there
  if (!client.sendSettings(set) || !client.poll(kPatience)) {
    complain("steer", fmt::format("daemon {} is busy and has not taken the change yet; {} holds it",
                                  daemon, set->name));
    return TLExitCode::kStepFailed;
  }
  return printOne(setting, options.json, setting.name + "\t" + setting.value());
}

int steer(const SteerOptions& options) {
  const TLToolEnvironment environment;
  std::string error;
  const auto state = TLDaemonFinder(environment.userDirectory()).find(options.task, error);
  TLVirtualMachineStarter machine(environment.userDirectory());
  const bool changes = options.action == "set";
  if (!state || (changes && !findDaemon(environment, machine, options.task))) {
    if (!state) complain("steer", error);
    return TLExitCode::kNobodyThere;
  }
  const auto step = options.step.empty() ? kNoStep : findStep(*state, options.step, error);
  if (!step) {
    complain("steer", error);
    return TLExitCode::kWrongUse;
  }
  const std::string file = steeringFileOf(state->taskFile, *step, error);
  const auto set = file.empty() ? nullptr : readSteeringSet(file, error);
  if (!set) {
    fmt::print(stderr, "{}", error);
    return TLExitCode::kStepFailed;
  }
  const TLSteeringSettings settings(set);
  if (options.action == "list") {
    printAll(settings, options.json);
    return TLExitCode::kOk;
  }
  const TLSteeringSetting* setting = settings.find(options.name, error);
  if (setting == nullptr) {
    complain("steer", error);
    return TLExitCode::kWrongUse;
  }
  if (changes) return change(options, set, *setting, state->tid);
  return printOne(*setting, options.json, setting->value());
}

// The words behind the name make up the value. Options are known by name, so that a negative number
// isn't taken for one.
bool takeValue(CLI::App& app, SteerOptions& options) {
  const bool changes = options.action == "set";
  std::string unknown;
  for (const auto& word : app.remaining()) {
    const bool option = word.size() > 1 && word[0] == '-' &&
                        (word[1] == '-' || std::isalpha(static_cast<unsigned char>(word[1])) != 0);
    if (option && word != "--") unknown = word;
    if (word != "--") options.value += (options.value.empty() ? "" : " ") + word;
  }
  if (unknown.empty() && (options.action == "list" || !options.name.empty()) &&
      (changes ? !options.value.empty() : options.value.empty())) {
    return true;
  }
  complain("steer", !unknown.empty()
                        ? "there is no option " + unknown + "; see \"tlctl steer --help\""
                    : changes ? "set needs a name and a value"
                              : "list takes nothing more, get takes one name");
  return false;
}

std::function<int()> defineSteer(CLI::App& app) {
  auto options = std::make_shared<SteerOptions>();
  app.add_option("TASK", options->task, "task file, task name or daemon")->required();
  app.add_option("ACTION", options->action, "list, get NAME, set NAME VALUE")
      ->required()
      ->check(CLI::IsMember({"list", "get", "set"}));
  app.add_option("NAME", options->name, "setting, as list shows it; a value follows for set");
  app.add_option("--step", options->step, "name of the solver's step, or its position from 0");
  declareJson(app, options->json);
  app.allow_extras();
  return [options, &app] {
    return takeValue(app, *options) ? steer(*options) : TLExitCode::kWrongUse;
  };
}

struct PlotOptions {
  std::string input;
  std::string output;
  int width = 900;
  int height = 320;
  bool json = false;
};

int plot(const PlotOptions& options) {
  std::string error;
  const auto set = readSteeringSet(options.input, error);
  if (!set) {
    fmt::print(stderr, "{}", error);
    return TLExitCode::kStepFailed;
  }
  TLPlotPicture picture(options.width, options.height);
  picture.add(*set);
  if (picture.panels() == 0) {
    complain("plot",
             options.input + " holds no values: has its run begun, and saved its steering?");
    return TLExitCode::kStepFailed;
  }
  const int failure = picture.write(options.output);
  if (failure != 0) {
    complain("plot", fmt::format("cannot write {}: {}", options.output, std::strerror(failure)));
    return TLExitCode::kStepFailed;
  }
  if (options.json) {
    printAnswer(
        "plot",
        {{"input", options.input}, {"output", options.output}, {"plots", picture.panels()}});
  }
  return TLExitCode::kOk;
}

}  // namespace

std::vector<TLCommand> steerCommands() {
  return {
      {"steer",
       "Show and change the settings of a running solver",
       {"tlctl steer heat.task list", "tlctl steer heat.task get relaxation",
        "tlctl steer heat.task set relaxation 1.5"},
       defineSteer},
      {"plot",
       "Draw what a steering file and its binary file hold: residuals, curves, surfaces",
       {"tlctl plot heat.steering -o heat.png",
        "tlctl plot heat.steering -o heat.png --width 1600 --height 480"},
       [](CLI::App& app) -> std::function<int()> {
         auto options = std::make_shared<PlotOptions>();
         app.add_option("FILE", options->input, "steering file")->required();
         app.add_option("-o,--output", options->output, "picture to write (PNG)")->required();
         app.add_option("--width", options->width, "of the picture, in pixels")
             ->check(CLI::Range(200, 8000))
             ->capture_default_str();
         app.add_option("--height", options->height, "of each plot in it, in pixels")
             ->check(CLI::Range(120, 4000))
             ->capture_default_str();
         declareJson(app, options->json);
         return [options] { return plot(*options); };
       }},
  };
}
