#include "messaging/TLSteeringDataBase.h"

#include <algorithm>
#include <cstdlib>

#include "platform/TLConsole.h"
#include "platform/TLHostForm.h"
#include "textio/TLKeyTable.h"

namespace {

constexpr std::int32_t kHexaProject = 2;
constexpr std::int32_t kMarineProject = 4;

// File of a project type and solver mode; empty for none.
std::string_view fileName(std::int32_t projectType, std::int32_t solverMode) {
  if (projectType == kMarineProject) return "/quorel_steering.def";
  if (projectType != kHexaProject) return "/velstra_steering.def";
  switch (solverMode) {
    case 0:
    case 2:
      return "/lumbrake_steering.def";
    case 1:
      return "/lumbrake_steering_auto.def";
    default:
      return {};
  }
}

template <auto List>
TLKeyResult readInto(TLSteeringDataBase& base, TLKeyContext& context) {
  auto parameter = makeHandle<TLSteeringParameter>();
  if (parameter->read(context.source) == 0) return TLKeyResult::failed;
  (base.*List).push_back(parameter);
  return TLKeyResult::next;
}

const TLKeyTable<TLSteeringDataBase>& baseKeys() {
  using B = TLSteeringDataBase;
  static const TLKeyTable<B> keys(
      "steering database",
      {
          {"tl_begin", "TL_steering_parameter_interface", &readInto<&B::interfaceParameters>},
          {"tl_begin", "TL_steering_parameter", &readInto<&B::solverParameters>},
          {"tl_begin", "", &skipBlock<B>},
          {"tl_end", "", &endBlock<B>},
      });
  return keys;
}

template <class Entry>
void appendCopies(const std::vector<Handle<Entry>>& from, std::vector<Handle<Entry>>& to) {
  for (const auto& entry : from) to.push_back(makeHandle<Entry>(*entry));
}

}  // namespace

TLSteeringDataBase& TLSteeringDataBase::instance() {
  static TLSteeringDataBase base;
  return base;
}

void TLSteeringDataBase::load(std::int32_t projectType, std::int32_t solverMode) {
  const char* directory = std::getenv("VELSTRA_DIR");
  if (directory == nullptr) {
    console() << "**** Cannot Start BC DataBase, Check VELSTRA_DIR env. variable\n" << std::flush;
    return;
  }
  const std::string_view file = fileName(projectType, solverMode);
  if (file.empty()) return;
  const RWCString path = directory + RWCString(file);
  auto text = hostForm().readFile(path);
  if (!text) {
    console() << "**** Cannot Open Steering DataBase, Check the file \n"
              << path << '\n'
              << std::flush;
    std::exit(0);
  }
  TLTextSource source(std::move(*text));
  read(source);
}

int TLSteeringDataBase::read(TLTextSource& source) {
  solverParameters.clear();
  interfaceParameters.clear();
  return readBlock(*this, source, baseKeys());
}

Handle<TLSteeringParameter> TLSteeringDataBase::makeParameter(std::int32_t typeOpsel) const {
  const auto solver = std::find_if(
      solverParameters.begin(), solverParameters.end(),
      [typeOpsel](const auto& parameter) { return parameter->typeOpsel == typeOpsel; });
  const auto shown = std::find_if(interfaceParameters.begin(), interfaceParameters.end(),
                                  [](const auto& parameter) { return parameter->typeId == 1; });
  if (solver == solverParameters.end() || shown == interfaceParameters.end()) return nullptr;
  auto made = makeHandle<TLSteeringParameter>();
  made->name = (*solver)->name;
  made->valueUnitsName = (*solver)->valueUnitsName;
  made->typeName = (*shown)->typeName;
  made->type = (*shown)->type;
  made->typeId = 1;
  made->typeOpsel = typeOpsel;
  appendCopies((*shown)->choiceEntries, made->choiceEntries);
  appendCopies((*shown)->realEntries, made->realEntries);
  appendCopies((*shown)->integerEntries, made->integerEntries);
  appendCopies((*shown)->vectorEntries, made->vectorEntries);
  appendCopies((*shown)->stringEntries, made->stringEntries);
  return made;
}
