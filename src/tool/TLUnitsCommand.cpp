#include <fmt/format.h>
#include <CLI/CLI.hpp>

#include <charconv>
#include <iostream>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "parameters/TLUnitsDataBase.h"
#include "platform/TLConsole.h"
#include "platform/TLHostForm.h"
#include "textio/TLNumbers.h"
#include "tool/TLAnswer.h"
#include "tool/TLCommands.h"
#include "tool/TLExitCode.h"
#include "tool/TLFileReport.h"

namespace {

struct UnitsOptions {
  double value = 0.0;
  std::string from;
  std::string to;
  std::string quantity;
  bool json = false;
};

int refuse(const std::string& reason) {
  complain("units", reason);
  return TLExitCode::kStepFailed;
}

// Reads the units of VELSTRA_DIR without ending the process when there are none.
bool readUnits(TLUnitsDataBase& units) {
  const std::string path = hostForm().variableOrEmpty("VELSTRA_DIR") + "/velstra.uni";
  auto text = hostForm().readFile(path);
  if (!text) {
    refuse(path + " can't be read; set VELSTRA_DIR to the flow solver's directory");
    return false;
  }
  TLFileReport report(path);
  TLTextSource source(std::move(*text));
  source.setObserver(&report);
  const TLConsoleRedirect redirect(std::cerr);
  if (units.read(source) == 1) return true;
  fmt::print(stderr, "{}", report.text());
  return false;
}

std::string namesOf(const TLUnits& units) {
  std::string names;
  for (const auto& name : units.unitsNames) names += (names.empty() ? "" : ", ") + name;
  return names;
}

RWCString nameOf(const TLUnits& units, std::int32_t system) {
  return units.unitsName(system - units.firstSystem);
}

// Number of a unit, told by its name or by that number. Files count from 0 or from 1.
std::optional<std::int32_t> systemOf(const TLUnits& units, const std::string& unit) {
  const std::int32_t first = units.firstSystem;
  const std::int32_t behind = first + static_cast<std::int32_t>(units.unitsNames.size());
  for (std::int32_t i = first; i < behind; ++i) {
    if (nameOf(units, i) == unit) return i;
  }
  std::int32_t system = 0;
  const auto* end = unit.data() + unit.size();
  const auto [rest, error] = std::from_chars(unit.data(), end, system);
  if (error == std::errc() && rest == end && system >= first && system < behind) return system;
  return std::nullopt;
}

int convert(const UnitsOptions& options) {
  TLUnitsDataBase base;
  if (!readUnits(base)) return TLExitCode::kStepFailed;
  const auto units = base.find(options.quantity);
  if (!units) {
    std::string known;
    for (const auto& record : base.records) {
      known += (known.empty() ? "" : ", ") + record->valueUnitsName;
    }
    return refuse(fmt::format("no quantity \"{}\"; there are: {}", options.quantity, known));
  }
  const auto from = systemOf(*units, options.from);
  const auto to = systemOf(*units, options.to);
  if (!from || !to) {
    return refuse(fmt::format("\"{}\" is no unit of {}; there are: {}",
                              !from ? options.from : options.to, options.quantity,
                              namesOf(*units)));
  }
  const double factor = units->factor(*from, *to);
  if (factor == 0.0) {
    return refuse(fmt::format("the units file has no factor from {} to {}", nameOf(*units, *from),
                              nameOf(*units, *to)));
  }
  const double result = options.value * factor;
  if (options.json) {
    printAnswer("units", {{"quantity", options.quantity},
                          {"from", nameOf(*units, *from)},
                          {"to", nameOf(*units, *to)},
                          {"factor", factor},
                          {"value", options.value},
                          {"result", result}});
  } else {
    fmt::print("{:.10g} {}\n", result, nameOf(*units, *to));
  }
  return TLExitCode::kOk;
}

}  // namespace

std::vector<TLCommand> unitsCommands() {
  return {{"units",
           "Convert a value between the units of a quantity",
           {"tlctl units 25.4 mm m --quantity length", "tlctl units 3000 1 0 --quantity length"},
           [](CLI::App& app) -> std::function<int()> {
             auto options = std::make_shared<UnitsOptions>();
             app.add_option("VALUE", options->value, "the value")->required();
             app.add_option("FROM", options->from, "its unit: name, or number")->required();
             app.add_option("TO", options->to, "the unit to give it in")->required();
             app.add_option("--quantity", options->quantity, "the quantity, such as length")
                 ->required();
             declareJson(app, options->json);
             return [options] { return convert(*options); };
           }}};
}
