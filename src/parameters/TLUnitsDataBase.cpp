#include "parameters/TLUnitsDataBase.h"

#include <algorithm>
#include <cstdlib>

#include "platform/TLConsole.h"
#include "platform/TLHostForm.h"
#include "textio/TLKeyTable.h"

namespace {

TLKeyResult passOver(TLUnitsDataBase& /*base*/, TLKeyContext& /*context*/) {
  return TLKeyResult::next;
}

TLKeyResult readDefaultSystem(TLUnitsDataBase& base, TLKeyContext& context) {
  RWCString system;
  if (context.reader.readStrings(context.line, system) == 0) return TLKeyResult::failed;
  base.defaultSystems.push_back(system);
  return TLKeyResult::next;
}

TLKeyResult readRecord(TLUnitsDataBase& base, TLKeyContext& context) {
  auto units = makeHandle<TLUnits>();
  if (units->read(context.source) == 0) {
    console() << "TLUnitsDataBase::read File error from TLUnits object\n" << std::flush;
    return TLKeyResult::failed;
  }
  base.records.push_back(units);
  return TLKeyResult::next;
}

}  // namespace

TLUnitsDataBase& TLUnitsDataBase::instance() {
  static TLUnitsDataBase base;
  return base;
}

int TLUnitsDataBase::start() {
  const char* directory = std::getenv("VELSTRA_DIR");
  if (directory == nullptr) {
    console() << "**** Cannot Start Units DataBase, Check VELSTRA_DIR env. variable \n"
              << std::flush;
    std::exit(0);
  }
  const RWCString path = RWCString(directory) + "/velstra.uni";
  if (!hostForm().canRead(path)) {
    console() << "**** Cannot Open Units DataBase, Check the file " << path << '\n' << std::flush;
    std::exit(0);
  }
  auto text = hostForm().readFile(path);
  if (!text) {
    console() << "*** Cannot open " << path << '\n' << std::flush;
    return 0;
  }
  TLTextSource source(std::move(*text));
  return read(source);
}

int TLUnitsDataBase::read(TLTextSource& source) {
  using B = TLUnitsDataBase;
  static const TLKeyTable<B> keys(
      "units_database",
      {
          {"version", "", &passOver},
          {"default_system", "", &readDefaultSystem},
          valueKey<&B::newProjectDefaultSystem, &TLTokenReader::readStrings>(
              "new_project_default_system"),
          {"tl_begin", "units_record", &readRecord},
          {"tl_begin", "units_database", &passOver},
          {"tl_begin", "", &skipBlock<B>},
      },
      {"units_database"});
  records.clear();
  defaultSystems.clear();
  newProjectDefaultSystem.clear();
  return readBlock(*this, source, keys);
}

Handle<TLUnits> TLUnitsDataBase::find(std::string_view name) const {
  const auto found = std::find_if(records.begin(), records.end(), [name](const auto& units) {
    return TLTokenReader::sameTokens(units->valueUnitsName, name);
  });
  return found == records.end() ? nullptr : *found;
}
