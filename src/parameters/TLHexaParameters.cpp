#include "parameters/TLHexaParameters.h"

#include <algorithm>

#include "textio/TLKeyTable.h"

namespace {

using H = TLHexaParameters;

constexpr char kWrongHeader[] =
    " wrong HexaParameters header: cannot determine HexaParameters version";

TLKeyResult readParameter(H& record, TLKeyContext& context) {
  auto parameter = makeHandle<TLParameter>();
  if (parameter->read(context.source) == 0) return TLKeyResult::failed;
  record.parameters.push_back(parameter);
  return TLKeyResult::next;
}

// A definition file may hold its list in a block of its own.
TLKeyResult enterBlock(H& /*record*/, TLKeyContext& /*context*/) {
  return TLKeyResult::next;
}

const TLKeyTable<H>& hexaKeys() {
  static const TLKeyTable<H> keys(
      "hexa_parameters",
      {
          versionKey<&H::version, kWrongHeader>(1, "          VERSION                     1.0"),
          {"tl_begin", "tlparameter", &readParameter},
          {"tl_begin", "hexa_parameters", &enterBlock},
          {"tl_begin", "", &skipBlock<H>},
      },
      {"hexa_parameters"});
  return keys;
}

}  // namespace

int TLHexaParameters::read(TLTextSource& source) {
  parameters.clear();
  return readBlock(*this, source, hexaKeys());
}

void TLHexaParameters::write(TLTextSink& sink) const {
  hexaKeys().write(*this, sink);
  for (const auto& parameter : parameters) {
    sink << "          TL_BEGIN tlparameter\n";
    parameter->write(sink);
    sink << "          TL_END   tlparameter\n";
  }
}

TLParameter* TLHexaParameters::find(std::string_view name) const {
  const auto found = std::ranges::find_if(
      parameters, [name](const auto& parameter) { return parameter->name == name; });
  return found == parameters.end() ? nullptr : found->get();
}
