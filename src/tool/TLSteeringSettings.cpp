#include "tool/TLSteeringSettings.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <sstream>

#include "platform/TLConsole.h"
#include "platform/TLHostForm.h"
#include "textio/TLTokens.h"
#include "tool/TLFileReport.h"

namespace {

template <class Number>
bool readNumber(std::string_view text, Number& number) {
  if (text.starts_with('+')) text.remove_prefix(1);
  Number read{};
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), read);
  if (error != std::errc() || end != text.data() + text.size()) return false;
  if constexpr (std::is_floating_point_v<Number>) {
    if (!std::isfinite(read)) return false;
  }
  number = read;
  return true;
}

bool readVector(std::string_view text, std::array<double, 3>& vector) {
  TLTokens tokens(text);
  std::array<double, 3> read{};
  for (double& value : read) {
    if (!readNumber(tokens.next(), value)) return false;
  }
  if (!tokens.next().empty()) return false;
  vector = read;
  return true;
}

std::string choiceText(const TLChoiceEntry& entry) {
  for (const auto& choice : entry.subChoices) {
    if (choice->value == entry.value) return fmt::format("{} ({})", entry.value, choice->name);
  }
  return std::to_string(entry.value);
}

bool readChoice(std::string_view text, TLChoiceEntry& entry) {
  std::int32_t number = 0;
  const bool isNumber = readNumber(text, number);
  for (const auto& choice : entry.subChoices) {
    if (isNumber ? choice->value == number : choice->name == text) {
      entry.value = choice->value;
      return true;
    }
  }
  if (!isNumber || !entry.subChoices.empty()) return false;
  entry.value = number;
  return true;
}

std::string choicesOf(const TLChoiceEntry& entry) {
  std::string text;
  for (const auto& choice : entry.subChoices) {
    text += fmt::format("{}{} ({})", text.empty() ? "one of " : ", ", choice->value, choice->name);
  }
  return text.empty() ? "a whole number" : text;
}

}  // namespace

Handle<TLSteeringParameters> readSteeringSet(const std::string& path, std::string& error) {
  std::ostringstream unheard;
  return readSteeringSet(path, error, unheard);
}

Handle<TLSteeringParameters> readSteeringSet(const std::string& path, std::string& error,
                                             std::ostream& console) {
  const auto text = hostForm().readFile(path);
  if (!text) {
    error = fmt::format("tlctl: {} cannot be opened\n", path);
    return nullptr;
  }
  auto set = makeHandle<TLSteeringParameters>();
  std::ostringstream heard;
  const TLConsoleRedirect redirect(heard);
  TLTextSource source(*text);
  TLFileReport report(path);
  source.setObserver(&report);
  if (set->readText(source) == 0) {
    if (!report.hasFault()) report.stoppedAt(source, heard.str());
    error = report.text();
    console << heard.str() << std::flush;
    return nullptr;
  }
  heard.str("");
  if (set->read(path)) return set;
  error = fmt::format("tlctl: {}.binary cannot be opened\n", path);
  console << heard.str() << std::flush;
  return nullptr;
}

TLSteeringSettings::TLSteeringSettings(const Handle<TLSteeringParameters>& set) : set_(set) {
  for (const auto& parameter : set_->parameters) addParameter(*parameter);
}

void TLSteeringSettings::addParameter(TLSteeringParameter& parameter) {
  const std::size_t first = settings_.size();
  const auto add = [&](const auto& entry, std::string_view kind, std::function<std::string()> value,
                       std::function<bool(std::string_view)> store, std::string wanted) {
    settings_.push_back({parameter.name, entry->name, parameter.name, kind, std::move(value),
                         std::move(store), std::move(wanted)});
  };
  for (const auto& e : parameter.realEntries) {
    add(
        e, "real", [e] { return fmt::format("{}", e->value); },
        [e](std::string_view text) { return readNumber(text, e->value); }, "a number");
  }
  for (const auto& e : parameter.vectorEntries) {
    add(
        e, "vector", [e] { return fmt::format("{} {} {}", e->value[0], e->value[1], e->value[2]); },
        [e](std::string_view text) { return readVector(text, e->value); }, "three numbers");
  }
  for (const auto& e : parameter.integerEntries) {
    add(
        e, "integer", [e] { return std::to_string(e->value); },
        [e](std::string_view text) { return readNumber(text, e->value); }, "a whole number");
  }
  for (const auto& e : parameter.choiceEntries) {
    add(
        e, "choice", [e] { return choiceText(*e); },
        [e](std::string_view text) { return readChoice(text, *e); }, choicesOf(*e));
  }
  for (const auto& e : parameter.stringEntries) {
    add(
        e, "text", [e] { return std::string(e->value); },
        [e](std::string_view text) {
          if (text.find('\n') != text.npos) return false;
          e->value = text;
          return true;
        },
        "one line");
  }
  if (settings_.size() - first < 2) return;
  for (std::size_t i = first; i < settings_.size(); ++i) {
    settings_[i].name = fmt::format("{}/{}", parameter.name, settings_[i].entry);
  }
}

const TLSteeringSetting* TLSteeringSettings::find(std::string_view name, std::string& error) const {
  std::vector<const TLSteeringSetting*> found;
  std::vector<std::string_view> names;
  for (const auto& setting : settings_) {
    names.push_back(setting.name);
    if (setting.name == name) return &setting;
    if (setting.entry == name || fmt::format("{}/{}", setting.parameter, setting.entry) == name) {
      found.push_back(&setting);
    }
  }
  if (found.size() == 1) return found.front();
  if (found.empty()) {
    const auto meant = nearestWord(name, names);
    error = fmt::format("there is no setting \"{}\"", name);
    if (!meant.empty()) error += fmt::format("; was \"{}\" meant?", meant);
    return nullptr;
  }
  error = fmt::format("\"{}\" may be", name);
  for (const auto* setting : found) error += fmt::format(" \"{}\"", setting->name);
  return nullptr;
}
