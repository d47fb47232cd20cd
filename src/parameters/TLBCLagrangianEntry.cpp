#include "parameters/TLBCLagrangianEntry.h"

namespace {

constexpr std::string_view kNames[] = {"lagrangian_physical_entry"};
constexpr std::string_view kNameKeys[] = {"name"};
constexpr TLKeptField kFields[] = {
    {kNameKeys, TLKeptValue::text, "                NAME                  "}};
constexpr TLKeptForm kForm{
    kNames, " wrong physical entry header: cannot determine lagrangian entry version", "",
    "                VERSION               1.0\n", kFields};

}  // namespace

TLBCLagrangianEntry::TLBCLagrangianEntry() : TLKeptBlock(kForm) {}

RWCString TLBCLagrangianEntry::name() const {
  return text(0);
}
