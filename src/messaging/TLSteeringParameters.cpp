#include "messaging/TLSteeringParameters.h"

#include "messaging/TLSteeringDataBase.h"
#include "platform/TLConsole.h"
#include "platform/TLHostForm.h"
#include "textio/TLKeyTable.h"

namespace {

// Numbers of the kinds that every set begins with.
constexpr std::int32_t kDefaultKinds[] = {1, 2, 3, 4, 5, 6, 7, 21, 22};

constexpr std::string_view kBinarySuffix = ".binary";

TLKeyResult readVersionNumber(TLSteeringParameters& set, TLKeyContext& context) {
  return nextIf(context.reader.readFloat(context.line, set.version));
}

TLKeyResult readParameter(TLSteeringParameters& set, TLKeyContext& context) {
  auto parameter = makeHandle<TLSteeringParameter>();
  if (parameter->read(context.source) == 0) return TLKeyResult::failed;
  set.parameters.push_back(parameter);
  return TLKeyResult::next;
}

const TLKeyTable<TLSteeringParameters>& setKeys() {
  using S = TLSteeringParameters;
  static const TLKeyTable<S> keys(
      "steering file",
      {
          {"version", "", &readVersionNumber},
          valueKey<&S::updateInBatch, &TLTokenReader::readInteger>("updateinbatch"),
          {"tl_begin", "TL_steering_parameter", &readParameter},
          {"tl_begin", "", &skipBlock<S>},
      },
      {"TL_steering_parameter_database"});
  return keys;
}

}  // namespace

TLSteeringParameters::TLSteeringParameters() {
  for (const std::int32_t kind : kDefaultKinds) {
    auto parameter = TLSteeringDataBase::instance().makeParameter(kind);
    if (parameter) parameters.push_back(parameter);
  }
}

bool TLSteeringParameters::read(std::string_view path) {
  name = path;
  const auto text = hostForm().readFile(path);
  if (!text) return false;
  TLTextSource source(*text);
  return readText(source) != 0 && readBinary(name + RWCString(kBinarySuffix));
}

int TLSteeringParameters::readText(TLTextSource& source) {
  parameters.clear();
  return readBlock(*this, source, setKeys());
}

void TLSteeringParameters::writeText(TLTextSink& sink) const {
  sink << "          VERSION                     1.0\n"
       << "          NAME                       " << name << '\n'
       << "          updateInBatch                       " << updateInBatch << '\n';
  for (const auto& parameter : parameters) {
    sink << "          TL_BEGIN TL_steering_parameter\n";
    parameter->write(sink);
    sink << "          TL_END   TL_steering_parameter\n";
  }
}

bool TLSteeringParameters::readBinary(std::string_view path) {
  const auto bytes = hostForm().readFile(path);
  if (!bytes) {
    console() << "ERROR: file: " << path << " does not exist\n" << std::flush;
    return false;
  }
  std::string_view rest = *bytes;
  for (const auto& parameter : parameters) parameter->readValues(rest);
  return true;
}

int TLSteeringParameters::writeBinary(std::string_view path) const {
  TLTextSink sink;
  for (const auto& parameter : parameters) parameter->writeValues(sink);
  return hostForm().replaceFile(path, sink.text());
}

void TLSteeringParameters::save() {
  saveAs(name);
  modified = 0;
}

int TLSteeringParameters::saveAs(std::string_view path) const {
  if (path == "unknown" || updateInBatch == 1) return 0;
  TLTextSink text;
  writeText(text);
  const int error = hostForm().replaceFile(path, text.text());
  return error != 0 ? error : writeBinary(RWCString(path) + RWCString(kBinarySuffix));
}

void TLSteeringParameters::clearAllValues() {
  for (const auto& parameter : parameters) parameter->clearValues();
}

Handle<TLSteeringParameter> TLSteeringParameters::parameter(int position) {
  if (position < 0 || position > TL_STEERING_MOST_PARAMETERS) return nullptr;
  while (parameters.size() <= static_cast<std::size_t>(position)) {
    parameters.push_back(makeHandle<TLSteeringParameter>());
  }
  return parameters[static_cast<std::size_t>(position)];
}
