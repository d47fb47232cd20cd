#include "tool/TLDaemonFinder.h"

#include <fmt/format.h>

#include <algorithm>
#include <filesystem>

#include "platform/TLHostForm.h"
#include "platform/TLProcess.h"

namespace {

std::string nameList(const std::vector<TLRunState>& states) {
  std::string text;
  for (const auto& state : states) {
    text += fmt::format("\n  {}  (task {}, daemon {})", state.taskFile, state.taskName, state.tid);
  }
  return text;
}

}  // namespace

std::string fullPath(const std::string& path) {
  std::error_code ignored;
  const auto canonical = std::filesystem::weakly_canonical(path, ignored);
  return canonical.empty() ? path : canonical.string();
}

bool isMeant(const TLRunState& state, const std::string& who) {
  return state.taskName == who || fullPath(state.taskFile) == fullPath(who) ||
         std::to_string(state.tid) == who;
}

std::optional<int> findStep(const TLRunState& state, const std::string& word, std::string& error) {
  std::string known;
  std::vector<int> found;
  for (int i = 0; i < static_cast<int>(state.steps.size()); ++i) {
    const std::string& name = state.steps[static_cast<std::size_t>(i)].name;
    known += fmt::format("{}{} {}", known.empty() ? "" : ", ", i, name);
    if (word == std::to_string(i)) return i;
    if (word == name) found.push_back(i);
  }
  if (found.size() == 1) return found.front();
  error = fmt::format("{} step {}: {} has {}", found.empty() ? "there is no" : "more than one is",
                      word, state.taskFile, known);
  return std::nullopt;
}

bool isLive(const TLRunState& state) {
  const std::string here = hostForm().hostName();
  const std::string there = state.host.substr(0, state.host.find('.'));
  return there != here.substr(0, here.find('.')) || processExists(state.pid);
}

std::vector<TLRunState> TLDaemonFinder::all() const {
  return TLRunState::list(userDirectory_);
}

std::vector<TLRunState> TLDaemonFinder::live() const {
  std::vector<TLRunState> states = all();
  std::erase_if(states, [](const TLRunState& state) { return !isLive(state); });
  return states;
}

std::optional<TLRunState> TLDaemonFinder::find(const std::string& who, std::string& error) const {
  std::vector<TLRunState> states = live();
  if (states.empty()) {
    error = "no task is running; start one with \"tlctl run TASK\"";
    return std::nullopt;
  }
  if (!who.empty()) {
    const std::string known = nameList(states);
    std::erase_if(states, [&](const TLRunState& state) { return !isMeant(state, who); });
    if (states.empty()) {
      error = fmt::format("no running task is \"{}\"; running are:{}", who, known);
      return std::nullopt;
    }
  }
  if (states.size() > 1) {
    error =
        fmt::format("more than one task fits, name one by its file or daemon:{}", nameList(states));
    return std::nullopt;
  }
  return states.front();
}
