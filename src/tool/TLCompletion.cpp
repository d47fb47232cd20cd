#include "tool/TLCompletion.h"

#include <fmt/format.h>
#include <CLI/CLI.hpp>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <utility>

#include "platform/TLHostForm.h"
#include "taskengine/TLKeptRun.h"
#include "tool/TLDaemonClient.h"
#include "tool/TLDaemonFinder.h"
#include "tool/TLExitCode.h"
#include "tool/TLSteeringSettings.h"
#include "tool/TLTaskFile.h"
#include "tool/TLToolEnvironment.h"

namespace fs = std::filesystem;

namespace {

using Candidates = std::vector<TLCandidate>;

// A key press waits for the answer: the beginning of a file has to do.
constexpr std::size_t kBytesLookedAt = 65536;

bool anything(TLFileKind /*kind*/) {
  return true;
}
bool anyKnown(TLFileKind kind) {
  return kind != TLFileKind::unknown;
}
bool nothing(TLFileKind /*kind*/) {
  return false;
}
template <TLFileKind kKind>
bool only(TLFileKind kind) {
  return kind == kKind;
}

// What a positional argument of a command is.
enum class Source { files, runningTasks, keptRuns, settings, none };

struct PositionalRow {
  std::string_view command;
  std::size_t position;
  Source source;
  bool (*wanted)(TLFileKind kind);
};
// Those that aren't here are files of any kind, unless the parser itself knows the choices.
constexpr PositionalRow kPositionals[] = {
    {"run", 0, Source::files, only<TLFileKind::task>},
    {"start", 0, Source::files, only<TLFileKind::task>},
    {"plan", 0, Source::files, only<TLFileKind::task>},
    {"check", 0, Source::files, anyKnown},
    {"show", 0, Source::files, anyKnown},
    {"balance", 0, Source::files, only<TLFileKind::project>},
    {"plot", 0, Source::files, only<TLFileKind::steering>},
    {"attach", 0, Source::runningTasks, nothing},
    {"watch", 0, Source::runningTasks, nothing},
    {"status", 0, Source::runningTasks, nothing},
    {"stop", 0, Source::runningTasks, nothing},
    {"suspend", 0, Source::runningTasks, nothing},
    {"save", 0, Source::runningTasks, nothing},
    {"replay", 0, Source::runningTasks, nothing},
    {"exit", 0, Source::runningTasks, nothing},
    {"steer", 0, Source::runningTasks, nothing},
    {"steer", 2, Source::settings, nothing},
    {"steer", 3, Source::none, nothing},
    {"report", 0, Source::keptRuns, nothing},
    {"units", 0, Source::none, nothing},
    {"units", 1, Source::none, nothing},
    {"units", 2, Source::none, nothing},
};

struct KindRow {
  std::string_view word;
  bool (*wanted)(TLFileKind kind);
};
// The kinds of the command rewrite.
constexpr KindRow kRewritten[] = {{"task", only<TLFileKind::task>},
                                  {"project", only<TLFileKind::project>},
                                  {"steering", only<TLFileKind::steering>}};

TLFileKind kindOfFile(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  std::string text(kBytesLookedAt, '\0');
  file.read(text.data(), static_cast<std::streamsize>(text.size()));
  text.resize(static_cast<std::size_t>(file.gcount()));
  return kindOfText(text);
}

void add(Candidates& list, std::string_view begin, std::string word, std::string about) {
  if (word.starts_with(begin)) list.push_back({std::move(word), std::move(about)});
}

// "TEXT:{a,b}" is how the parser describes an option of two choices.
std::vector<std::string> choicesOf(const CLI::Option& option) {
  const std::string type = option.get_type_name();
  const auto open = type.find('{');
  const auto close = type.find('}', open == std::string::npos ? 0 : open);
  if (open == std::string::npos || close == std::string::npos) return {};
  return CLI::detail::split(type.substr(open + 1, close - open - 1), ',');
}

bool takesValue(const CLI::Option& option) {
  return option.get_items_expected_max() > 0;
}

Candidates optionNames(const CLI::App& command, std::string_view begin) {
  Candidates list;
  for (const CLI::Option* option : command.get_options()) {
    for (const auto& name : option->get_lnames()) {
      add(list, begin, "--" + name, option->get_description());
    }
    if (!option->get_lnames().empty() && begin != "-") continue;
    for (const auto& name : option->get_snames()) {
      add(list, begin, "-" + name, option->get_description());
    }
  }
  return list;
}

const PositionalRow* positionalOf(std::string_view command, std::size_t position) {
  const auto* const found = std::find_if(
      std::begin(kPositionals), std::end(kPositionals),
      [&](const auto& row) { return row.command == command && row.position == position; });
  return found == std::end(kPositionals) ? nullptr : found;
}

// The way in which a user writes the file of a task from where he is.
std::vector<std::string> namesOf(const TLRunState& state, bool fileIsUnique) {
  std::vector<std::string> names;
  if (fileIsUnique) {
    std::error_code ignored;
    const std::string below =
        fs::path(state.taskFile).lexically_relative(fs::current_path(ignored)).string();
    const bool isBelow = !below.empty() && !below.starts_with("..");
    if (isBelow) names = {below, "./" + below};
    names.push_back(state.taskFile);
    names.push_back(state.taskName);
  }
  names.push_back(std::to_string(state.tid));
  return names;
}

std::string oneLine(std::string text) {
  for (char& c : text) {
    if (static_cast<unsigned char>(c) < ' ') c = ' ';
  }
  return text;
}

}  // namespace

/// The words before the one to be completed, as far as they tell what that is.
struct TLCompletion::Line {
  const CLI::App& command;
  std::vector<std::string> positionals;
  std::string step;                      ///< value of "--step"; empty without
  const CLI::Option* waiting = nullptr;  ///< the option whose value comes next
  bool onlyPositionals = false;          ///< behind "--"
};

TLCompletion::TLCompletion(const CLI::App& app, std::string userDirectory)
    : app_(app), userDirectory_(std::move(userDirectory)) {}

Candidates TLCompletion::candidates(const std::vector<std::string>& words) const {
  const std::string begin = words.empty() ? std::string() : words.back();
  if (words.size() < 2) return commandNames(begin);
  const auto commands = app_.get_subcommands(
      [&](const CLI::App* command) { return command->get_name() == words.front(); });
  if (commands.empty()) return {};
  const CLI::App* command = commands.front();
  const Line line = parsed(*command, words);
  if (line.waiting != nullptr) return ofOption(line, *line.waiting, begin);
  if (line.onlyPositionals || !begin.starts_with('-')) return ofPositional(line, begin);
  const auto equals = begin.find('=');
  if (equals == std::string::npos) return optionNames(*command, begin);
  const CLI::Option* option = command->get_option_no_throw(begin.substr(0, equals));
  if (option == nullptr) return {};
  Candidates list = ofOption(line, *option, std::string_view(begin).substr(equals + 1));
  for (auto& candidate : list) candidate.word.insert(0, begin, 0, equals + 1);
  return list;
}

TLCompletion::Line TLCompletion::parsed(const CLI::App& command,
                                        const std::vector<std::string>& words) const {
  Line line{command, {}, {}, nullptr, false};
  for (std::size_t i = 1; i + 1 < words.size(); ++i) {
    const std::string& word = words[i];
    if (line.waiting != nullptr) {
      if (line.waiting->check_lname("step")) line.step = word;
      line.waiting = nullptr;
    } else if (word == "--") {
      line.onlyPositionals = true;
    } else if (line.onlyPositionals || !word.starts_with('-')) {
      line.positionals.push_back(word);
    } else if (word.starts_with("--step=")) {
      line.step = word.substr(word.find('=') + 1);
    } else if (const CLI::Option* option = command.get_option_no_throw(word);
               option != nullptr && takesValue(*option)) {
      line.waiting = option;
    }
  }
  return line;
}

Candidates TLCompletion::commandNames(std::string_view begin) const {
  if (begin.starts_with('-')) return optionNames(app_, begin);
  Candidates list;
  for (const CLI::App* command : app_.get_subcommands({})) {
    add(list, begin, command->get_name(), command->get_description());
  }
  return list;
}

Candidates TLCompletion::ofOption(const Line& line, const CLI::Option& option,
                                  std::string_view begin) const {
  Candidates list;
  for (const auto& choice : choicesOf(option)) add(list, begin, choice, {});
  if (!list.empty()) return list;
  if (option.check_lname("step")) return steps(line, begin);
  if (option.check_lname("tools")) return filesBeginning(begin, nothing);
  if (option.check_lname("output")) return filesBeginning(begin, anything);
  return {};
}

Candidates TLCompletion::ofPositional(const Line& line, std::string_view begin) const {
  const std::string& command = line.command.get_name();
  const std::size_t position = line.positionals.size();
  if (command == "rewrite" && position == 1) {
    for (const auto& row : kRewritten) {
      if (row.word == line.positionals[0]) return filesBeginning(begin, row.wanted);
    }
    return {};
  }
  if (const PositionalRow* row = positionalOf(command, position)) {
    switch (row->source) {
      case Source::files:
        return filesBeginning(begin, row->wanted);
      case Source::runningTasks:
        return tasks(begin, false);
      case Source::keptRuns:
        return tasks(begin, true);
      case Source::settings:
        return settings(line, begin);
      case Source::none:
        return {};
    }
  }
  std::size_t at = 0;
  for (const CLI::Option* option : line.command.get_options()) {
    if (!option->get_positional() || at++ != position) continue;
    const auto choices = choicesOf(*option);
    Candidates list;
    for (const auto& choice : choices) add(list, begin, choice, {});
    return choices.empty() ? filesBeginning(begin, anything) : list;
  }
  return {};
}

Candidates TLCompletion::tasks(std::string_view begin, bool ended) const {
  const TLDaemonFinder finder(userDirectory_);
  std::vector<TLRunState> states = finder.live();
  if (ended) {
    for (auto& kept : TLKeptRun::list(userDirectory_)) {
      const bool runs = std::any_of(states.begin(), states.end(), [&](const TLRunState& state) {
        return state.taskFile == kept.run.taskFile;
      });
      if (!runs) states.push_back(std::move(kept.run));
    }
  }
  Candidates list;
  for (const auto& state : states) {
    const auto sameFile = std::count_if(states.begin(), states.end(), [&](const auto& other) {
      return other.taskFile == state.taskFile;
    });
    for (const auto& name : namesOf(state, sameFile == 1)) {
      if (!name.starts_with(begin)) continue;
      list.push_back(
          {name, fmt::format("{}, daemon {} on {}", state.taskName, state.tid, state.host)});
      break;
    }
  }
  return list;
}

// By their names, as far as those are one step's alone.
Candidates TLCompletion::steps(const Line& line, std::string_view begin) const {
  std::string ignored;
  const auto state = TLDaemonFinder(userDirectory_)
                         .find(line.positionals.empty() ? "" : line.positionals[0], ignored);
  Candidates list;
  if (!state) return list;
  for (std::size_t i = 0; i < state->steps.size(); ++i) {
    const auto& step = state->steps[i];
    const std::string position = std::to_string(i);
    const bool named = begin.empty() || !position.starts_with(begin);
    const bool unique = findStep(*state, step.name, ignored) == static_cast<int>(i);
    add(list, begin, named && unique ? step.name : position,
        fmt::format("step {}, {} on {}", i, statusText(step.status), step.host));
  }
  return list;
}

Candidates TLCompletion::settings(const Line& line, std::string_view begin) const {
  std::string ignored;
  const auto state = TLDaemonFinder(userDirectory_).find(line.positionals[0], ignored);
  Candidates list;
  if (!state) return list;
  TLTaskFile file(state->taskFile);
  if (!file.read()) return list;
  const auto files = file.steeringFiles();
  const auto step = findStep(*state, line.step, ignored);
  for (std::size_t i = 0; i < files.size(); ++i) {
    if (files[i].empty() || (step && *step != static_cast<int>(i))) continue;
    const auto set = readSteeringSet(files[i], ignored);
    if (!set) continue;
    const TLSteeringSettings changeable(set);
    for (const auto& setting : changeable.all()) {
      add(list, begin, setting.name, fmt::format("{} {}", setting.kind, setting.value()));
    }
  }
  return list;
}

Candidates filesBeginning(std::string_view begin, bool (*wanted)(TLFileKind kind)) {
  const auto slash = begin.rfind('/');
  const std::string shown(slash == std::string_view::npos ? "" : begin.substr(0, slash + 1));
  const std::string_view name = begin.substr(shown.size());
  std::string directory = shown.empty() ? "." : shown;
  if (directory.starts_with("~/")) directory.replace(0, 1, hostForm().homeDirectory());
  Candidates list;
  std::error_code failure;
  for (const auto& entry : fs::directory_iterator(directory, failure)) {
    const std::string file = entry.path().filename().string();
    if (!file.starts_with(name) || (file[0] == '.' && name.empty())) continue;
    std::error_code ignored;
    if (entry.is_directory(ignored)) {
      list.push_back({shown + file + "/", "directory"});
    } else if (entry.is_regular_file(ignored)) {
      const TLFileKind kind = wanted == nothing ? TLFileKind::unknown : kindOfFile(entry.path());
      if (!wanted(kind)) continue;
      const bool known = kind != TLFileKind::unknown;
      list.push_back({shown + file, known ? std::string(nameOfKind(kind)) : std::string()});
    }
  }
  std::sort(list.begin(), list.end(), [](const auto& a, const auto& b) { return a.word < b.word; });
  return list;
}

int printCompletions(const CLI::App& app, const std::vector<std::string>& words) {
  const TLToolEnvironment environment;
  for (const auto& candidate : TLCompletion(app, environment.userDirectory()).candidates(words)) {
    fmt::print("{}\t{}\n", oneLine(candidate.word), oneLine(candidate.about));
  }
  return TLExitCode::kOk;
}
