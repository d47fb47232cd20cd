#include "parameters/TLBCDataBase.h"

#include <cstdlib>

#include "platform/TLConsole.h"
#include "platform/TLHostForm.h"
#include "textio/TLKeyTable.h"

namespace {

constexpr std::int32_t kUnstructured = 2;
constexpr std::int32_t kAutomatic = 1;

std::string_view fileName(std::int32_t solverKind, std::int32_t mode) {
  if (solverKind != kUnstructured) return "/velstra_bc.def";
  return mode == kAutomatic ? "/lumbrake_bc_auto.def" : "/lumbrake_bc.def";
}

// Values of the old record at the places that `pairs` names, to their new places.
template <class Entry>
void passPairs(const TLBCBackwardRecord::IndexPairs& pairs, const std::vector<Handle<Entry>>& from,
               const std::vector<Handle<Entry>>& to) {
  for (const auto& [newPlace, oldPlace] : pairs) {
    if (newPlace < 0 || oldPlace < 0) continue;
    const auto receiver = static_cast<std::size_t>(newPlace);
    const auto giver = static_cast<std::size_t>(oldPlace);
    if (receiver < to.size() && giver < from.size()) passValue(*from[giver], *to[receiver]);
  }
}

// Sets a whole number in the entry called `name`, of whichever kind it is.
void setByName(const TLBCParameters& record, std::string_view name, std::int32_t value) {
  const auto entry = record.entry(name);
  if (auto* choice = dynamic_cast<TLChoiceEntry*>(entry.get())) choice->value = value;
  if (auto* number = dynamic_cast<TLIntegerEntry*>(entry.get())) number->value = value;
  if (auto* real = dynamic_cast<TLRealEntry*>(entry.get())) real->value = value;
  if (auto* physical = dynamic_cast<TLPhysicalEntry*>(entry.get())) physical->value = value;
}

}  // namespace

/// The format of the definition file.
struct TLBCDataBaseKeys {
  using B = TLBCDataBase;

  static TLKeyResult passOver(B& /*base*/, TLKeyContext& /*context*/) { return TLKeyResult::next; }

  static TLKeyResult readDefinition(B& base, TLKeyContext& context) {
    auto definition = makeHandle<TLBCParameters>();
    if (definition->read(context.source) == 0) return TLKeyResult::failed;
    base.addDefinition(definition);
    return TLKeyResult::next;
  }

  static TLKeyResult readBackward(B& base, TLKeyContext& context) {
    auto record = makeHandle<TLBCBackwardRecord>();
    if (record->read(context.source) == 0) return TLKeyResult::failed;
    return base.addBackward(record) ? TLKeyResult::next : TLKeyResult::failed;
  }

  static const TLKeyTable<B>& table() {
    static const TLKeyTable<B> keys("bc_database",
                                    {
                                        {"version", "", &passOver},
                                        {"tl_begin", "bc_parameters", &readDefinition},
                                        {"tl_begin", "", &skipBlock<B>},
                                        {"begin_backward_compatibility", "", &readBackward},
                                    });
    return keys;
  }
};

TLBCDataBase& TLBCDataBase::instance() {
  static TLBCDataBase base;
  return base;
}

void TLBCDataBase::load(std::int32_t solverKind, std::int32_t mode) {
  const char* directory = std::getenv("VELSTRA_DIR");
  if (directory == nullptr) {
    console() << "**** Cannot Start BC DataBase, Check VELSTRA_DIR env. variable \n" << std::flush;
    std::exit(0);
  }
  const RWCString path = directory + RWCString(fileName(solverKind, mode));
  auto text = hostForm().readFile(path);
  if (!text) {
    console() << "**** Cannot Open BC DataBase, Check the file '" << path << '\n' << std::flush;
    std::exit(0);
  }
  TLTextSource source(std::move(*text));
  const int result = read(source);
  if (result == 1) return;
  if (result == 0) console() << "TLBCDataBase::read File error !!!\n" << std::flush;
  std::exit(0);
}

int TLBCDataBase::read(TLTextSource& source) {
  definitions_.clear();
  backwardTargets_.clear();
  backwardRecords_.clear();
  definitionOf_.clear();
  backwardOf_.clear();
  wrongBackward_ = false;
  const int result = readBlock(*this, source, TLBCDataBaseKeys::table());
  return wrongBackward_ ? -1 : result;
}

TLBCDataBase::Kind TLBCDataBase::kindOf(std::int32_t typeId, std::int32_t typeOpsel) {
  return static_cast<Kind>(static_cast<std::uint32_t>(typeId)) << 32 |
         static_cast<std::uint32_t>(typeOpsel);
}

void TLBCDataBase::addDefinition(const Handle<TLBCParameters>& definition) {
  definitionOf_.try_emplace(kindOf(definition->typeId, definition->typeOpsel), definitions_.size());
  definitions_.push_back(definition);
}

bool TLBCDataBase::addBackward(const Handle<TLBCBackwardRecord>& record) {
  const auto definition = known(record->typeNew, record->opselNew);
  if (!definition) {
    console() << "Wrong BC backward record format id " << record->typeNew << ", opsel "
              << record->opselNew << '\n'
              << std::flush;
    wrongBackward_ = true;
    return false;
  }
  auto target = definition->clone();
  target->typeId = record->typeOld;
  target->typeOpsel = record->opselOld;
  for (const auto& [name, value] : record->newValues) setByName(*target, name, value);
  backwardOf_.try_emplace(kindOf(record->typeOld, record->opselOld), backwardTargets_.size());
  backwardTargets_.push_back(target);
  backwardRecords_.push_back(record);
  return true;
}

Handle<TLBCParameters> TLBCDataBase::known(std::int32_t typeId, std::int32_t typeOpsel) const {
  const Kind kind = kindOf(typeId, typeOpsel);
  if (const auto at = definitionOf_.find(kind); at != definitionOf_.end()) {
    return definitions_[at->second];
  }
  if (const auto at = backwardOf_.find(kind); at != backwardOf_.end()) {
    return backwardTargets_[at->second];
  }
  return nullptr;
}

Handle<TLBCParameters> TLBCDataBase::find(std::int32_t typeId, std::int32_t typeOpsel) {
  if (auto record = known(typeId, typeOpsel)) return record;
  missingTypeId_ = typeId;
  missingTypeOpsel_ = typeOpsel;
  console() << "BOUNDARY CONDITION Id = " << typeId << " OPSEL = " << typeOpsel
            << " NOT YET DEFINED\n"
            << std::flush;
  return empty_;
}

Handle<TLBCParameters> TLBCDataBase::inLine(const Handle<TLBCParameters>& record) {
  const auto definition = find(record->typeId, record->typeOpsel);
  if (definition == empty_) return record;
  auto made = definition->clone();
  made->takeValues(*record);
  const Kind kind = kindOf(record->typeId, record->typeOpsel);
  const auto backward = backwardOf_.find(kind);
  if (definitionOf_.count(kind) != 0 || backward == backwardOf_.end()) return made;
  const TLBCBackwardRecord& rules = *backwardRecords_[backward->second];
  passPairs(rules.physicalEntries, record->physicalEntries, made->physicalEntries);
  passPairs(rules.realEntries, record->realEntries, made->realEntries);
  passPairs(rules.choiceEntries, record->choiceEntries, made->choiceEntries);
  passPairs(rules.vectorEntries, record->vectorEntries, made->vectorEntries);
  passPairs(rules.integerEntries, record->integerEntries, made->integerEntries);
  return made;
}
