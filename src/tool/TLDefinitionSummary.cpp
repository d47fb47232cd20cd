#include "tool/TLDefinitionSummary.h"

#include <fmt/format.h>

#include <iostream>

#include "messaging/TLSteeringDataBase.h"
#include "messaging/TLSteeringParameters.h"
#include "parameters/TLBCDataBase.h"
#include "parameters/TLHexaParameters.h"
#include "parameters/TLParametersDataBase.h"
#include "parameters/TLUnitsDataBase.h"
#include "platform/TLConsole.h"

namespace {

bool readUnits(TLTextSource& source, TLSummary& summary) {
  TLUnitsDataBase units;
  if (units.read(source) == 0) return false;
  for (const auto& record : units.records) {
    std::string names;
    for (const auto& name : record->unitsNames) names += (names.empty() ? "" : ", ") + name;
    summary.add(record->valueUnitsName, names);
  }
  return true;
}

bool readConditions(TLTextSource& source, TLSummary& summary) {
  TLBCDataBase base;
  if (base.read(source) == 0) return false;
  summary.add("kinds", std::to_string(base.definitions().size()));
  summary.add("kinds of older versions", std::to_string(base.backwardRecords().size()));
  TLSummary& kinds = summary.section("kinds");
  for (const auto& definition : base.definitions()) {
    kinds.add(fmt::format("id {}, option {}", definition->typeId, definition->typeOpsel),
              fmt::format("{} {}", definition->type, definition->name));
  }
  return true;
}

bool readStructured(TLTextSource& source, TLSummary& summary) {
  TLParametersDataBase base;
  if (!base.readDefinition(source)) return false;
  const auto items = base.items();
  summary.add("parameters", std::to_string(items.size()));
  TLSummary& parameters = summary.section("parameters");
  for (const auto& item : items) parameters.add(item.descriptor, item.values);
  return true;
}

bool readUnstructured(TLTextSource& source, TLSummary& summary) {
  TLHexaParameters base;
  if (base.read(source) == 0) return false;
  summary.add("parameters", std::to_string(base.parameters.size()));
  TLSummary& parameters = summary.section("parameters");
  for (const auto& parameter : base.parameters) {
    TLTextSink value;
    parameter->value.write(value);
    parameters.add(parameter->name, value.text());
  }
  return true;
}

void addSteering(TLSummary& summary, const std::vector<Handle<TLSteeringParameter>>& parameters) {
  for (const auto& parameter : parameters) {
    summary.add(parameter->name, fmt::format("{}, option {}, {} values", parameter->typeName,
                                             parameter->typeOpsel, parameter->valueCount()));
  }
}

std::string writtenSteering() {
  TLTextSink sink;
  TLSteeringParameters().writeText(sink);
  return sink.take();
}

bool readSteering(TLTextSource& source, TLSummary& summary) {
  TLSteeringParameters set;
  if (set.readText(source) == 0) return false;
  summary.add("version", fmt::format("{}", set.version));
  addSteering(summary.section("parameters"), set.parameters);
  return true;
}

bool readSteeringDefinitions(TLTextSource& source, TLSummary& summary) {
  TLSteeringDataBase base;
  if (base.read(source) == 0) return false;
  addSteering(summary.section("parameters of the solver"), base.solverParameters);
  addSteering(summary.section("parameters of the interface"), base.interfaceParameters);
  return true;
}

struct Reader {
  TLFileKind kind;
  bool (*read)(TLTextSource& source, TLSummary& summary);
};
constexpr Reader kReaders[] = {
    {TLFileKind::units, &readUnits},
    {TLFileKind::conditions, &readConditions},
    {TLFileKind::structuredParameters, &readStructured},
    {TLFileKind::unstructuredParameters, &readUnstructured},
    {TLFileKind::steering, &readSteering},
    {TLFileKind::steeringDefinitions, &readSteeringDefinitions},
};

}  // namespace

bool summarizeDefinition(TLFileKind kind, const std::string& text, TLFileReport& report,
                         TLSummary& summary) {
  summary.title = nameOfKind(kind);
  for (const auto& reader : kReaders) {
    if (reader.kind != kind) continue;
    // Told at once: a definition that contradicts itself ends the process.
    const TLConsoleRedirect redirect(std::cerr);
    TLTextSource source(text);
    source.setObserver(&report);
    if (kind == TLFileKind::steering) report.allowWritten(writtenSteering());
    const bool good = reader.read(source, summary);
    if (!good && !report.hasFault()) report.stoppedAt(source, "");
    return good;
  }
  report.add(true, "is no file of the suite that this program knows");
  return false;
}
