#include "parameters/TLFluid.h"

#include <algorithm>
#include <array>
#include <utility>

#include "platform/TLHostForm.h"
#include "textio/TLKeyTable.h"
#include "textio/TLNumbers.h"

struct TLFluidFormat {
  using R = TLFluid;
  using T = TLTokenReader;

  static TLKeyResult readOldTables(R& fluid, TLKeyContext& context) {
    fluid.hasOldTablesKey_ = true;
    return nextIf(context.reader.readStrings(context.line, fluid.thermodynamicTablesPath));
  }
  static TLKeyResult readProperties(R& fluid, TLKeyContext& context) {
    auto properties = makeHandle<TLFluidProperties>();
    if (properties->read(context.source) == 0) return TLKeyResult::failed;
    fluid.properties = std::move(properties);
    return TLKeyResult::next;
  }
  static TLKeyResult readSpecies(R& fluid, TLKeyContext& context) {
    auto species = makeHandle<TLMultiSpecies>();
    if (species->read(context.source) == 0) return TLKeyResult::failed;
    fluid.multiSpecies = std::move(species);
    return TLKeyResult::next;
  }

  static const TLKeyTable<R>& table() {
    static const TLKeyTable<R> keys(
        "fluid_parameters",
        {
            versionKey<&R::version, R::kVersionFailure>(1, "VERSION                   4.0"),
            valueKey<&R::fluidName, &T::readStrings>("fluid_name", 2,
                                                     "FLUID_NAME                                 "),
            valueKey<&R::fluidType, &T::readStrings>("fluid_type", 3,
                                                     "FLUID_TYPE                                 "),
            valueKey<&R::fluidOwner, &T::readString>("fluid_owner", 4,
                                                     "FLUID_OWNER                                "),
            valueKey<&R::viscLawChoice, &T::readInteger>(
                "visc_law_choice", 5, "VISC_LAW_CHOICE                            "),
            valueKey<&R::heatCondLawChoice, &T::readInteger>(
                "heat_cond_law_choice", 6, "HEAT_COND_LAW_CHOICE                       "),
            valueKey<&R::cpLawChoice, &T::readInteger>(
                "cp_law_choice", 7, "CP_LAW_CHOICE                              "),
            valueKey<&R::baroLawChoice, &T::readInteger>(
                "baro_law_choice", 8, "BARO_LAW_CHOICE                            "),
            {"steam_tables_path", "", &readOldTables},
            valueKey<&R::thermodynamicTablesPath, &T::readStrings>(
                "thermodynamic_tables_path", 9, "THERMODYNAMIC_TABLES_PATH                  "),
            {"tl_begin", "fluid_properties", &readProperties},
            {"tl_begin", "multispecies_properties", &readSpecies},
            {"tl_begin", "", &skipBlock<R>},
            {"tl_end", "fluid_parameters", &endBlock<R>},
        });
    return keys;
  }
};

namespace {

struct TableSuffix {
  std::string_view word;
  TLTableKind kind;
};
constexpr std::array<TableSuffix, 4> kTableSuffixes{{{"ber", TLTableKind::ber},
                                                     {"bhp", TLTableKind::bhp},
                                                     {"ker", TLTableKind::ker},
                                                     {"mer", TLTableKind::mer}}};

const TableSuffix* suffixOf(std::string_view fileName) {
  const auto point = fileName.rfind('.');
  const auto suffix = point == std::string_view::npos ? fileName : fileName.substr(point + 1);
  const auto* row = std::find_if(
      kTableSuffixes.begin(), kTableSuffixes.end(),
      [suffix](const TableSuffix& known) { return equalIgnoringCase(known.word, suffix); });
  return row == kTableSuffixes.end() ? nullptr : row;
}

}  // namespace

int TLFluid::read(TLTextSource& source) {
  hasOldTablesKey_ = false;
  if (readBlock(*this, source, TLFluidFormat::table()) == 0) return 0;
  if (hasOldTablesKey_) settleOldTablesPath();
  return 1;
}

// The old key named the directory of all fluids' tables.
void TLFluid::settleOldTablesPath() {
  if (fluidType == "Condensable Gas") {
    thermodynamicTablesPath += fluidName + hostForm().separator();
  } else {
    thermodynamicTablesPath = kNoTables;
  }
}

void TLFluid::write(TLTextSink& sink) const {
  TLFluidFormat::table().write(*this, sink);
  sink << "     TL_BEGIN FLUID_PROPERTIES\n";
  properties->write(sink);
  sink << "     TL_END   FLUID_PROPERTIES\n";
  if (!multiSpecies) return;
  sink << "     TL_BEGIN MULTISPECIES_PROPERTIES\n";
  multiSpecies->write(sink);
  sink << "     TL_END   MULTISPECIES_PROPERTIES\n";
}

bool TLFluid::isCondensable() const {
  return fluidType == "Condensable Gas" || fluidType == "Condensable Fluid";
}

std::vector<TLThermodynamicTable> TLFluid::thermodynamicTables() const {
  std::vector<TLThermodynamicTable> tables;
  if (!isCondensable()) return tables;
  std::vector<std::string> names;
  hostForm().listDirectory(hostForm().directoryOf(thermodynamicTablesPath), names);
  for (const auto& name : names) {
    if (const TableSuffix* suffix = suffixOf(name)) tables.push_back({name, suffix->kind});
  }
  std::sort(tables.begin(), tables.end(),
            [](const auto& a, const auto& b) { return a.fileName < b.fileName; });
  return tables;
}
