#include "parameters/TLBCParameters.h"

#include <algorithm>

#include "parameters/TLEntryKeys.h"
#include "platform/TLConsole.h"

namespace {

constexpr char kWrongHeader[] =
    " wrong bc parameters header: cannot determine bc parameters version";

// Kinds whose acoustic impedance also stands in two real entries.
constexpr std::int32_t kImpedanceOpsel = 2;
constexpr std::int32_t kImpedanceIds[] = {13, 113, 16};
constexpr std::string_view kResistance = "Resistance (real part)";
constexpr std::string_view kReactance = "Reactance (imaginary part)";
constexpr std::string_view kImpedance = "acoustic_impedance";

template <class Entry>
Handle<Entry> named(const std::vector<Handle<Entry>>& list, std::string_view name) {
  const auto found = std::find_if(list.begin(), list.end(),
                                  [name](const auto& entry) { return entry->name == name; });
  return found == list.end() ? nullptr : *found;
}

template <class Entry>
void copyEach(std::vector<Handle<Entry>>& list) {
  for (auto& entry : list) {
    const auto copy = makeHandle<Entry>(*entry);
    entry = copy;
  }
}

template <class Entry>
void passEach(const std::vector<Handle<Entry>>& from, const std::vector<Handle<Entry>>& to) {
  for (const auto& receiver : to) {
    if (const auto giver = named(from, receiver->name)) passValue(*giver, *receiver);
  }
}

// Between kinds whose numbers go into each other without loss.
template <class From, class To>
void passNumbers(const std::vector<Handle<From>>& from, const std::vector<Handle<To>>& to) {
  for (const auto& receiver : to) {
    if (const auto giver = named(from, receiver->name)) receiver->value = giver->value;
  }
}

}  // namespace

/// The format of the record: one row a key, in the order of test.
struct TLBCParametersKeys {
  using P = TLBCParameters;
  using R = TLTokenReader;

  template <auto List>
  static TLKeyResult appendText(P& record, TLKeyContext& context) {
    RWCString text;
    if (context.reader.readStrings(context.line, text) == 0) return TLKeyResult::failed;
    (record.*List).push_back(text);
    return TLKeyResult::next;
  }

  static TLKeyResult appendSubType(P& record, TLKeyContext& context) {
    RWCString text;
    if (context.reader.readString(context.line, text) == 0) return TLKeyResult::failed;
    record.subType.push_back(text);
    return TLKeyResult::next;
  }

  // A new entry of the list with the next running number. One that stays "unknown" is left out, and
  // so is a physical one called "Phi".
  template <auto List>
  static TLKeyResult readEntry(P& record, TLKeyContext& context) {
    if (R::lineHasToken(context.line, "tl_end")) return TLKeyResult::next;
    auto& list = record.*List;
    using Entry = std::remove_reference_t<decltype(*list.front())>;
    auto entry = makeHandle<Entry>();
    entry->position = record.entriesRead_++;
    if (readEitherForm(*entry, context) == 0) return TLKeyResult::failed;
    const bool dropped = entry->name == "unknown" ||
                         (std::is_same_v<Entry, TLPhysicalEntry> && entry->name == "Phi");
    if (!dropped) list.push_back(entry);
    return TLKeyResult::next;
  }

  static TLKeyResult readLagrangian(P& record, TLKeyContext& context) {
    auto entry = makeHandle<TLBCLagrangianEntry>();
    if (entry->read(context.source) == 0) return TLKeyResult::failed;
    record.lagrangianEntries.push_back(entry);
    return TLKeyResult::next;
  }

  static void writeType(const P& record, TLTextSink& sink, std::string_view literal) {
    if (record.bcType != "UNDEFINED") sink << literal << record.bcType << '\n';
  }

  static const TLKeyTable<P>& table();
};

namespace {

// Places of the lines that only solids have.
constexpr int kFrame = 10;

}  // namespace

const TLKeyTable<TLBCParameters>& TLBCParametersKeys::table() {
  using K = TLBCParametersKeys;
  constexpr auto words = &R::readStrings;
  constexpr auto word = &R::readString;
  constexpr auto number = &R::readInteger;
  static const TLKeyTable<P> keys(
      "bc_parameters",
      {
          versionKey<&P::version, kWrongHeader>(1, "              VERSION                 3.0"),
          valueKey<&P::bcParametersIndex, number>("bc_parameters_index"),
          {"TLBCtype", "", &readMember<&P::bcType, word, P>, 2,
           "              TLBCTYPE                ", &K::writeType},
          valueKey<&P::type, word>("type", 3, "              TYPE                    "),
          {"subtype1", "", &K::appendText<&P::subType1>},
          {"subtype2", "", &K::appendText<&P::subType2>},
          valueKey<&P::name, words>("name"),
          valueKey<&P::condition, words>("condition", 6, "              CONDITION               "),
          valueKey<&P::expertMode, number>("expert_mode"),
          {"subtype", "", &K::appendSubType},
          valueKey<&P::typeId, number>("type_id", 4, "              TYPE_ID                 "),
          valueKey<&P::typeOpsel, number>("type_opsel", 5,
                                          "              TYPE_OPSEL              "),
          valueKey<&P::localSystem, number>("local_system", kFrame,
                                            "              LOCAL_SYSTEM              "),
          valueKey<&P::localLiftDirection, &readArray3>("local_lift_direction", kFrame + 1,
                                                        "              LOCAL_LIFT_DIRECTION      "),
          valueKey<&P::localDragDirection, &readArray3>("local_drag_direction", kFrame + 2,
                                                        "              LOCAL_DRAG_DIRECTION      "),
          valueKey<&P::localMomentDirection, &readArray3>(
              "local_moment_direction", kFrame + 3, "              LOCAL_MOMENT_DIRECTION    "),
          valueKey<&P::localMomentCenter, &readArray3>("local_moment_center", kFrame + 4,
                                                       "              LOCAL_MOMENT_CENTER       "),
          {"real_entry", "", &K::readEntry<&P::realEntries>},
          {"vector_entry", "", &K::readEntry<&P::vectorEntries>},
          {"integer_entry", "", &K::readEntry<&P::integerEntries>},
          {"choice_entry", "", &K::readEntry<&P::choiceEntries>},
          {"string_entry", "", &K::readEntry<&P::stringEntries>},
          {"single_choice", "", &K::readEntry<&P::choiceEntries>},
          {"tl_begin", "multy_choice", &K::readEntry<&P::choiceEntries>},
          {"tl_begin", "physical_entry", &K::readEntry<&P::physicalEntries>},
          {"tl_begin", "chemical_physical_entry", &K::readEntry<&P::chemicalEntries>},
          {"tl_begin", "real_entry_def", &K::readEntry<&P::realEntriesDef>},
          {"tl_begin", "real_entry_full", &K::readEntry<&P::realEntries>},
          {"tl_begin", "vector_entry_def", &K::readEntry<&P::vectorEntriesDef>},
          {"tl_begin", "integer_entry_def", &K::readEntry<&P::integerEntriesDef>},
          {"tl_begin", "single_choice_def", &K::readEntry<&P::choiceEntriesDef>},
          {"tl_begin", "string_entry_def", &K::readEntry<&P::stringEntriesDef>},
          {"tl_begin", "lagrangian_physical_entry", &K::readLagrangian},
          {"tl_begin", "", &skipBlock<P>},
      },
      {"bc_parameters", "control_surface"});
  return keys;
}

namespace {

template <class Entry>
void writeBlocks(TLTextSink& sink, const std::vector<Handle<Entry>>& entries,
                 std::string_view blockName) {
  for (const auto& entry : entries) {
    sink << "              TL_BEGIN " << blockName << '\n';
    entry->write(sink);
    sink << "              TL_END   " << blockName << '\n';
  }
}

template <class Entry>
void writeLines(TLTextSink& sink, const std::vector<Handle<Entry>>& entries) {
  for (const auto& entry : entries) entry->write(sink);
}

}  // namespace

int TLBCParameters::read(TLTextSource& source) {
  clearEntries();
  if (readBlock(*this, source, TLBCParametersKeys::table()) == 0) return 0;
  copyImpedance();
  setShortWords();
  return 1;
}

void TLBCParameters::write(TLTextSink& sink) const {
  const auto& keys = TLBCParametersKeys::table();
  keys.write(*this, sink, 1, kFrame - 1);
  writeBlocks(sink, physicalEntries, "physical_entry");
  writeBlocks(sink, chemicalEntries, "chemical_physical_entry");
  for (const auto& entry : realEntries) {
    sink << "              TL_BEGIN real_entry_full\n";
    entry->writeFull(sink);
    sink << "              TL_END   real_entry\n";
  }
  const bool impedanceInReals = hasImpedanceReals();
  for (const auto& entry : vectorEntries) {
    if (!impedanceInReals || entry->name != kImpedance) entry->write(sink);
  }
  writeLines(sink, integerEntries);
  writeLines(sink, choiceEntries);
  writeLines(sink, stringEntries);
  if (type == "INLET" || type == "SOLID" || type == "CONNECTION") {
    writeBlocks(sink, lagrangianEntries, "lagrangian_physical_entry");
  }
  if (type == "SOLID") keys.write(*this, sink, kFrame);
}

void TLBCParameters::clearEntries() {
  subType.clear();
  subType1.clear();
  subType2.clear();
  physicalEntries.clear();
  chemicalEntries.clear();
  realEntries.clear();
  vectorEntries.clear();
  integerEntries.clear();
  choiceEntries.clear();
  stringEntries.clear();
  lagrangianEntries.clear();
  realEntriesDef.clear();
  vectorEntriesDef.clear();
  integerEntriesDef.clear();
  choiceEntriesDef.clear();
  stringEntriesDef.clear();
  entriesRead_ = 0;
}

bool TLBCParameters::hasImpedanceReals() const {
  return typeOpsel == kImpedanceOpsel && std::ranges::count(kImpedanceIds, typeId) != 0 &&
         named(realEntries, kResistance) && named(realEntries, kReactance);
}

void TLBCParameters::copyImpedance() {
  if (!hasImpedanceReals()) return;
  const auto impedance = named(vectorEntries, kImpedance);
  if (!impedance) return;
  impedance->value[0] = named(realEntries, kResistance)->value;
  impedance->value[1] = named(realEntries, kReactance)->value;
}

void TLBCParameters::setShortWords() {
  if (type != "INLET" && type != "SOLID") return;
  shortWord = type.substr(0, 3);
  for (const auto& entry : lagrangianEntries) entry->shortWord = shortWord;
}

// Entries by name ----------------------------------------------------------------------------

Handle<TLEntry> TLBCParameters::entry(std::string_view entryName) const {
  Handle<TLEntry> found;
  const auto search = [&](const auto& list) {
    if (!found) found = named(list, entryName);
  };
  search(physicalEntries);
  search(chemicalEntries);
  search(realEntries);
  search(vectorEntries);
  search(integerEntries);
  search(choiceEntries);
  search(stringEntries);
  search(realEntriesDef);
  search(vectorEntriesDef);
  search(integerEntriesDef);
  search(choiceEntriesDef);
  search(stringEntriesDef);
  return found;
}

Handle<TLChoiceEntry> TLBCParameters::choiceEntry(std::string_view entryName) const {
  auto found = named(choiceEntries, entryName);
  if (!found) {
    console() << "ERROR !!\nTLBCParameters::choiceEntryPtr\nRWCString " << entryName
              << " not found.\n"
              << std::flush;
  }
  return found;
}

// Copies and values --------------------------------------------------------------------------

Handle<TLBCParameters> TLBCParameters::clone() const {
  auto copy = makeHandle<TLBCParameters>(*this);
  copyEach(copy->physicalEntries);
  copyEach(copy->chemicalEntries);
  copyEach(copy->realEntries);
  copyEach(copy->vectorEntries);
  copyEach(copy->integerEntries);
  copyEach(copy->choiceEntries);
  copyEach(copy->stringEntries);
  copyEach(copy->lagrangianEntries);
  copyEach(copy->realEntriesDef);
  copyEach(copy->vectorEntriesDef);
  copyEach(copy->integerEntriesDef);
  copyEach(copy->choiceEntriesDef);
  copyEach(copy->stringEntriesDef);
  return copy;
}

void TLBCParameters::takeValues(const TLBCParameters& other) {
  bcParametersIndex = other.bcParametersIndex;
  name = other.name;
  if (bcType == "UNDEFINED") bcType = other.bcType;
  if (type == "UNDEFINED") type = other.type;
  if (condition == "none") condition = other.condition;
  localSystem = other.localSystem;
  localLiftDirection = other.localLiftDirection;
  localDragDirection = other.localDragDirection;
  localMomentDirection = other.localMomentDirection;
  localMomentCenter = other.localMomentCenter;
  // A definition may have changed an entry's kind; one of the same kind goes first.
  passNumbers(other.integerEntries, realEntries);
  passNumbers(other.integerEntries, physicalEntries);
  passNumbers(other.integerEntries, choiceEntries);
  passNumbers(other.choiceEntries, integerEntries);
  passNumbers(other.physicalEntries, realEntries);
  passNumbers(other.realEntries, physicalEntries);
  passEach(other.physicalEntries, physicalEntries);
  passEach(other.chemicalEntries, chemicalEntries);
  passEach(other.realEntries, realEntries);
  passEach(other.vectorEntries, vectorEntries);
  passEach(other.integerEntries, integerEntries);
  passEach(other.choiceEntries, choiceEntries);
  passEach(other.stringEntries, stringEntries);
  for (auto& entry : lagrangianEntries) {
    for (const auto& giver : other.lagrangianEntries) {
      if (giver->name() != entry->name()) continue;
      entry = giver;
      break;
    }
  }
  copyImpedance();
}

void passValue(const TLPhysicalEntry& from, TLPhysicalEntry& to) {
  to.nonDeterministic = from.nonDeterministic;
  to.nonDeterministicData = from.nonDeterministicData;
  to.type = from.type;
  to.value = from.value;
  to.variableType = from.variableType;
  to.timeProfile = from.timeProfile;
  to.spaceProfile = from.spaceProfile;
  to.polynom = from.polynom;
  to.frequencyProfile = from.frequencyProfile;
  to.externalProfile = from.externalProfile;
}

void passValue(const TLRealEntry& from, TLRealEntry& to) {
  to.value = from.value;
  to.nonDeterministic = from.nonDeterministic;
  to.nonDeterministicData = from.nonDeterministicData;
}

void passValue(const TLVectorEntry& from, TLVectorEntry& to) {
  to.value = from.value;
}
void passValue(const TLIntegerEntry& from, TLIntegerEntry& to) {
  to.value = from.value;
}
void passValue(const TLChoiceEntry& from, TLChoiceEntry& to) {
  to.value = from.value;
}
void passValue(const TLStringEntry& from, TLStringEntry& to) {
  to.value = from.value;
}

// Control surfaces ---------------------------------------------------------------------------

Handle<TLBCParameters> TLBCParameters::makeControlSurface(std::int32_t number) {
  auto surface = makeHandle<TLBCParameters>();
  for (const RWCString& entryName :
       {"outlet_" + std::to_string(number), RWCString("Reference_Control_Surface")}) {
    auto entry = makeHandle<TLIntegerEntry>();
    entry->name = entryName;
    entry->position = static_cast<std::int32_t>(surface->integerEntries.size());
    surface->integerEntries.push_back(entry);
  }
  return surface;
}

int TLBCParameters::rotationalSpeed(std::string_view speedName) {
  if (TLTokenReader::sameTokens(speedName, "rotational_speed_1")) return 1;
  return TLTokenReader::sameTokens(speedName, "rotational_speed_2") ? 2 : 0;
}
