// A definition file of any contents is read, whole or up to a fault; what was read can be asked and
// written, and what was written can be read. The first byte of the input chooses the kind of file.
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <ostream>
#include <vector>

#include <unistd.h>

#include "messaging/TLSteeringDataBase.h"
#include "messaging/TLSteeringParameters.h"
#include "parameters/TLBCDataBase.h"
#include "parameters/TLHexaParameters.h"
#include "parameters/TLParametersDataBase.h"
#include "parameters/TLUnitsDataBase.h"
#include "platform/TLConsole.h"

namespace {

void require(bool holds) {
  if (!holds) std::abort();
}

template <class Record>
std::string written(const Record& record) {
  TLTextSink sink;
  record.write(sink);
  return sink.take();
}

void readUnits(TLTextSource& source) {
  TLUnitsDataBase base;
  base.read(source);
  for (const auto& units : base.records) {
    for (int from = -1; from < 4; ++from) units->factor(from, units->size);
    require(static_cast<bool>(base.find(units->valueUnitsName)));
  }
}

void readConditions(TLTextSource& source) {
  TLBCDataBase base;
  base.read(source);
  for (const auto& definition : base.definitions()) {
    auto record = makeHandle<TLBCParameters>();
    TLTextSource again(written(*definition));
    record->read(again);
    written(*base.inLine(record));
  }
}

void readSolverDefinition(TLTextSource& source) {
  TLParametersDataBase base;
  base.readDefinition(source);
  TLTextSource again(written(base));
  TLParameters parameters;
  parameters.read(again);
}

void readSolverBlock(TLTextSource& source) {
  TLParameters parameters;
  parameters.read(source);
  const std::string first = written(parameters);
  TLTextSource again(first);
  TLParameters second;
  second.read(again);
  written(second);
}

void readHexa(TLTextSource& source) {
  TLHexaParameters parameters;
  if (parameters.read(source) == 0) return;
  TLTextSource again(written(parameters));
  TLHexaParameters second;
  second.read(again);
}

void readSteering(TLTextSource& source) {
  TLSteeringParameters set;
  set.readText(source);
  std::string_view bytes = source.text();
  for (const auto& parameter : set.parameters) {
    parameter->readValues(bytes);
    if (parameter->capacity() == 0) continue;
    const std::vector<float> x(parameter->xValues(),
                               parameter->xValues() + parameter->valueCount());
    parameter->mergeValues(parameter->valueCount(), x.data(), x.data());
  }
  TLTextSink sink;
  set.writeText(sink);
  TLTextSource again(sink.take());
  TLSteeringParameters().readText(again);
}

void readSteeringDefinition(TLTextSource& source) {
  TLSteeringDataBase base;
  base.read(source);
  for (int kind = 0; kind < 23; ++kind) base.makeParameter(kind);
}

using Reader = void (*)(TLTextSource&);
constexpr std::array<Reader, 7> kReaders = {
    readUnits, readConditions, readSolverDefinition,  readSolverBlock,
    readHexa,  readSteering,   readSteeringDefinition};

constexpr const char* kDefinition =
    "START_READING_OPERATION\nITURB,I,1,1,0\n1\nNQUANT,I,1,2,0\n4 1\nIGAMTE,R,1,9,0\n"
    "1 2 3 4 5 6 7 8 9\nALPHA,I,1,3,0\n1 2 3\n*OBSOLETE\nBETA,R,1,2,0\n1 2\n";

}  // namespace

// The solver parameters of a run file need a definition.
extern "C" int LLVMFuzzerInitialize(int* /*count*/, char*** /*arguments*/) {
  const auto directory =
      std::filesystem::temp_directory_path() / ("definition_fuzz." + std::to_string(getpid()));
  std::filesystem::create_directories(directory);
  std::ofstream(directory / "velstra.def") << kDefinition;
  setenv("VELSTRA_DIR", directory.c_str(), 1);
  TLParametersDataBase::instance();
  std::filesystem::remove_all(directory);
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  static std::ostream silence(nullptr);
  const TLConsoleRedirect redirect(silence);
  TLTextSource source(std::string(reinterpret_cast<const char*>(data) + 1, size - 1));
  kReaders[data[0] % kReaders.size()](source);
  return 0;
}
