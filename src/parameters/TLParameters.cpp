#include "parameters/TLParameters.h"

#include <algorithm>
#include <utility>

#include "parameters/TLNamedParameters.h"
#include "parameters/TLParametersDataBase.h"
#include "textio/TLNumbers.h"

namespace {

constexpr std::string_view kLast = "ISVEGL";
constexpr std::string_view kTurbulence = "ITURB";
constexpr std::string_view kQuantities = "NQUANT";
// Quantities that every computation puts out, and the one more of a turbulent flow, by place in
// the quantity table.
constexpr std::int32_t kFixedQuantities[] = {1, 2, 3, 4};
constexpr std::int32_t kTurbulentQuantity = 5;

std::string_view nameOf(std::string_view descriptor) {
  return descriptor.substr(0, descriptor.find(','));
}

std::int32_t valueFrom(std::string_view word, std::int32_t /*kind*/) {
  return integerFrom(word);
}
double valueFrom(std::string_view word, double /*kind*/) {
  return realFrom(word);
}

template <class T>
RWCString joined(const std::vector<T>& values, std::size_t count) {
  TLTextSink line;
  for (std::size_t i = 0; i < count; ++i) {
    if (i > 0) line << ' ';
    line << (i < values.size() ? values[i] : T());
  }
  return line.take();
}

// `count` values, the first of them from a word already read, the others from the stream as long as
// it lasts.
template <class T>
std::vector<T> readValues(std::size_t count, std::string_view first, TLTextSource& stream) {
  std::vector<T> values;
  for (std::size_t i = 0; i < count; ++i) {
    const auto word = i == 0 ? first : stream.readWord();
    if (word.empty()) break;
    values.push_back(valueFrom(word, T()));
  }
  values.resize(count);
  return values;
}

// The words behind the first one of a parameter that isn't taken. A text is one line; a number of
// values that no file can have isn't believed.
void dropOtherWords(const TLDescriptor& parsed, TLTextSource& stream) {
  if (parsed.type == TLParameterType::text || parsed.count > TLDescriptor::kMostValues) return;
  for (std::int32_t i = 1; i < parsed.count && !stream.atEnd(); ++i) stream.readWord();
}

// For whoever wants to know what a reading drops.
void tellDropped(const TLTextSource& stream, std::string_view descriptor) {
  static const std::vector<std::string_view> names = [] {
    std::vector<std::string_view> known;
    for (std::size_t i = 0; i < namedMemberCount(); ++i) known.push_back(namedMemberRow(i).name);
    return known;
  }();
  if (stream.observer() != nullptr) {
    stream.observer()->passedOver(stream, descriptor, "solver_parameters", names);
  }
}

// True when the next word closes a block. It is left where it stands.
bool atBlockEnd(TLTextSource& stream) {
  constexpr std::string_view kClosing = "tl_end";
  stream.skipWhitespace();
  return equalIgnoringCase(stream.text().substr(stream.position(), kClosing.size()), kClosing);
}

}  // namespace

TLParameters::TLParameters() : members_(namedMemberCount()), lists_(indexLists().size()) {}

// Generic parameters -------------------------------------------------------------------------

template <>
std::vector<TLParameters::Generic<std::int32_t>>& TLParameters::generics() {
  return ints_;
}
template <>
std::vector<TLParameters::Generic<double>>& TLParameters::generics() {
  return reals_;
}

TLParameters::Place TLParameters::find(std::string_view name) const {
  const auto found = places_.find(RWCString(name));
  return found == places_.end() ? Place() : found->second;
}

bool TLParameters::hasGeneric(std::string_view name) const {
  return find(name).found();
}

void TLParameters::index() {
  places_.clear();
  for (std::size_t i = 0; i < ints_.size(); ++i) {
    places_.try_emplace(ints_[i].name, Place{TLParameterType::integer, i});
  }
  for (std::size_t i = 0; i < reals_.size(); ++i) {
    places_.try_emplace(reals_[i].name, Place{TLParameterType::real, i});
  }
}

void TLParameters::sortByName() {
  const auto byName = [](const auto& a, const auto& b) { return a.name < b.name; };
  std::stable_sort(ints_.begin(), ints_.end(), byName);
  std::stable_sort(reals_.begin(), reals_.end(), byName);
  index();
}

void TLParameters::copyGenerics(const TLParameters& other) {
  ints_ = other.ints_;
  reals_ = other.reals_;
  places_ = other.places_;
}

template <class T>
void TLParameters::fill(Generic<T>& entry, std::size_t count, std::string_view first,
                        TLTextSource& stream) {
  const auto values = readValues<T>(count, first, stream);
  if (entry.values.size() < values.size()) entry.values.resize(values.size());
  std::copy(values.begin(), values.end(), entry.values.begin());
}

void TLParameters::fillAt(Place place, std::size_t count, std::string_view first,
                          TLTextSource& stream) {
  if (place.type == TLParameterType::integer) {
    fill(ints_[place.index], count, first, stream);
  } else {
    fill(reals_[place.index], count, first, stream);
  }
}

bool TLParameters::addGeneric(const TLDescriptor& parsed, std::string_view descriptor,
                              const Handle<TLParametersDataBaseInfo>& info, TLTextSource& stream) {
  const auto count = static_cast<std::size_t>(parsed.count);
  const auto add = [&](auto& list) {
    auto& entry = list.emplace_back();
    entry.descriptor = descriptor;
    entry.name = parsed.name;
    entry.info = info;
    if (count > 0) fill(entry, count, stream.readWord(), stream);
    places_.try_emplace(parsed.name, Place{parsed.type, list.size() - 1});
  };
  if (parsed.type == TLParameterType::integer) {
    add(ints_);
  } else if (parsed.type == TLParameterType::real) {
    add(reals_);
  } else {
    return false;
  }
  return true;
}

// Start --------------------------------------------------------------------------------------

void TLParameters::init() {
  const TLParameters& base = TLParametersDataBase::instance();
  members_ = base.members_;
  lists_ = base.lists_;
  copyGenerics(base);
  initialised_ = true;
  applyFixedSettings();
}

void TLParameters::applyFixedSettings() {
  const auto& turbulence = members_[static_cast<std::size_t>(namedMember(kTurbulence))].integers;
  const bool turbulent = !turbulence.empty() && turbulence.front() != 0;
  auto& quantities = members_[static_cast<std::size_t>(namedMember(kQuantities))];
  quantities.integers = {turbulent ? 5 : 4, 1};
  if (quantities.descriptor.empty()) return;
  auto& list = lists_.front();
  list.assign(std::begin(kFixedQuantities), std::end(kFixedQuantities));
  if (turbulent) list.push_back(kTurbulentQuantity);
}

// Reading ------------------------------------------------------------------------------------

int TLParameters::read(TLTextSource& stream) {
  if (initialised_) {
    copyGenerics(TLParametersDataBase::instance());
  } else {
    init();
  }
  const auto former = std::exchange(lists_, std::vector<std::vector<std::int32_t>>(lists_.size()));
  told_.assign(lists_.size(), false);
  std::string_view header = stream.readLine();
  for (int field = 0; field < 4; ++field) {
    const auto comma = header.find(',');
    header = comma == std::string_view::npos ? std::string_view() : header.substr(comma + 1);
  }
  const std::int32_t count = integerFrom(header);
  for (std::int32_t i = 0; i < count && !atBlockEnd(stream) && !stream.atEnd(); ++i) {
    readOne(stream);
  }
  restoreUntoldLists(former);
  return 1;
}

// A file that says nothing of a list leaves it as it was.
void TLParameters::restoreUntoldLists(const std::vector<std::vector<std::int32_t>>& former) {
  for (std::size_t i = 0; i < lists_.size(); ++i) {
    if (!told_[i]) lists_[i] = former[i];
  }
}

void TLParameters::readOne(TLTextSource& stream) {
  const std::string_view descriptor = stream.readWord();
  const TLDescriptor parsed = TLDescriptor::parse(descriptor);
  const std::string_view first =
      parsed.type == TLParameterType::text ? stream.readLine() : stream.readWord();
  remembered_ = find(parsed.name);
  if (remembered_.found() && readChanged(remembered_, descriptor, parsed, first, stream)) return;
  setByDescriptor(descriptor, first, stream);
}

// A generic parameter whose descriptor differs from the definition's: only fewer values than that
// has are taken. False when it is the same.
bool TLParameters::readChanged(Place place, std::string_view descriptor, const TLDescriptor& parsed,
                               std::string_view first, TLTextSource& stream) {
  const bool isInteger = place.type == TLParameterType::integer;
  const RWCString& known =
      isInteger ? ints_[place.index].descriptor : reals_[place.index].descriptor;
  if (known == descriptor) return false;
  const bool hasWords =
      parsed.type == TLParameterType::integer || parsed.type == TLParameterType::real;
  if (hasWords && parsed.count < TLDescriptor::parse(known).count) {
    fillAt(place, static_cast<std::size_t>(parsed.count), first, stream);
    return true;
  }
  dropOtherWords(parsed, stream);
  tellDropped(stream, descriptor);
  return true;
}

void TLParameters::setByDescriptor(std::string_view descriptor, std::string_view firstValue,
                                   TLTextSource& stream) {
  if (const auto* row = findNamedParameter(descriptor)) {
    auto& member = members_[static_cast<std::size_t>(namedMember(row->name))];
    const auto count = static_cast<std::size_t>(row->count);
    member.descriptor = descriptor;
    switch (row->type) {
      case TLParameterType::integer:
        member.integers = readValues<std::int32_t>(count, firstValue, stream);
        break;
      case TLParameterType::real:
        member.reals = readValues<double>(count, firstValue, stream);
        break;
      default:
        member.text = firstValue;
    }
    for (std::size_t i = 0; i < told_.size(); ++i) {
      if (indexLists()[i].countedBy == row->name) told_[i] = true;
    }
    return;
  }
  const TLDescriptor parsed = TLDescriptor::parse(descriptor);
  const int list = findIndexList(parsed.name);
  if (list >= 0 && parsed.type == TLParameterType::integer) {
    const auto place = static_cast<std::size_t>(list);
    lists_[place] =
        readValues<std::int32_t>(static_cast<std::size_t>(parsed.count), firstValue, stream);
    if (place < told_.size()) told_[place] = true;
    return;
  }
  readValue(descriptor, firstValue, stream);
}

// Parameters of one value that this program sets itself: a file that has them keeps them, although
// a definition may lack them.
constexpr std::string_view kOwnParameters[] = {"IMUWAL", "IRSMCH", "IMOVQS", "QSAMPY",
                                               "QSOMGZ", "BCKFLO", "NTASK"};

void TLParameters::readValue(std::string_view descriptor, std::string_view firstValue,
                             TLTextSource& stream) {
  const TLDescriptor parsed = TLDescriptor::parse(descriptor);
  const Place place = std::exchange(remembered_, Place());
  if (place.found()) {
    fillAt(place, static_cast<std::size_t>(parsed.count), firstValue, stream);
    return;
  }
  const bool own = parsed.count == 1 &&
                   std::find(std::begin(kOwnParameters), std::end(kOwnParameters), parsed.name) !=
                       std::end(kOwnParameters);
  if (own && parsed.type == TLParameterType::integer) {
    setIntegers(descriptor, {integerFrom(firstValue)});
    return;
  }
  if (own && parsed.type == TLParameterType::real) {
    setReals(descriptor, {realFrom(firstValue)});
    return;
  }
  dropOtherWords(parsed, stream);
  tellDropped(stream, descriptor);
}

// Writing ------------------------------------------------------------------------------------

void TLParameters::addMemberItem(std::size_t member, std::vector<Item>& items) const {
  const Member& held = members_[member];
  if (held.descriptor.empty()) return;
  const TLDescriptor parsed = TLDescriptor::parse(held.descriptor);
  const auto count = static_cast<std::size_t>(parsed.count);
  switch (parsed.type) {
    case TLParameterType::integer:
      items.push_back({held.descriptor, joined(held.integers, count)});
      break;
    case TLParameterType::real:
      items.push_back({held.descriptor, joined(held.reals, count)});
      break;
    default:
      items.push_back({held.descriptor, held.text});
  }
}

void TLParameters::addListItems(std::string_view countedBy, std::vector<Item>& items) const {
  for (std::size_t i = 0; i < lists_.size(); ++i) {
    const TLIndexList& list = indexLists()[i];
    if (list.countedBy != countedBy || lists_[i].empty()) continue;
    const TLDescriptor descriptor{RWCString(list.name), TLParameterType::integer,
                                  static_cast<std::int32_t>(lists_[i].size())};
    items.push_back({descriptor.text(), joined(lists_[i], lists_[i].size())});
  }
}

template <class T>
void TLParameters::addGenericItems(const std::vector<Generic<T>>& generics,
                                   std::vector<Item>& items) {
  for (const auto& entry : generics) {
    if (entry.values.empty() || (entry.info && entry.info->isObsolete())) continue;
    items.push_back({entry.descriptor, joined(entry.values, entry.values.size())});
  }
}

std::vector<TLParameters::Item> TLParameters::items() const {
  std::vector<Item> items;
  for (std::size_t member = 0; member < members_.size(); ++member) {
    const auto name = namedMemberRow(member).name;
    if (name == kLast) continue;
    addMemberItem(member, items);
    addListItems(name, items);
  }
  addGenericItems(ints_, items);
  addGenericItems(reals_, items);
  addMemberItem(static_cast<std::size_t>(namedMember(kLast)), items);
  return items;
}

void TLParameters::write(TLTextSink& sink) const {
  const auto all = items();
  sink << "VELSTRA,L,1,0, " << all.size() << '\n';
  for (const auto& item : all) sink << item.descriptor << '\n' << item.values << '\n';
}

// Single parameters --------------------------------------------------------------------------

RWCString TLParameters::descriptorOf(std::string_view descriptor) const {
  const auto name = nameOf(descriptor);
  if (const int member = namedMember(name); member >= 0) {
    return members_[static_cast<std::size_t>(member)].descriptor;
  }
  const Place place = find(name);
  if (!place.found()) return {};
  return place.type == TLParameterType::integer ? ints_[place.index].descriptor
                                                : reals_[place.index].descriptor;
}

bool TLParameters::has(std::string_view descriptor) const {
  return !descriptorOf(descriptor).empty();
}

std::vector<std::int32_t> TLParameters::integers(std::string_view descriptor) const {
  if (!has(descriptor)) return {};
  const auto name = nameOf(descriptor);
  if (const int member = namedMember(name); member >= 0) {
    return members_[static_cast<std::size_t>(member)].integers;
  }
  const Place place = find(name);
  return place.type == TLParameterType::integer ? ints_[place.index].values
                                                : std::vector<std::int32_t>();
}

std::vector<double> TLParameters::reals(std::string_view descriptor) const {
  if (!has(descriptor)) return {};
  const auto name = nameOf(descriptor);
  if (const int member = namedMember(name); member >= 0) {
    return members_[static_cast<std::size_t>(member)].reals;
  }
  const Place place = find(name);
  return place.type == TLParameterType::real ? reals_[place.index].values : std::vector<double>();
}

RWCString TLParameters::text(std::string_view descriptor) const {
  const int member = namedMember(nameOf(descriptor));
  return member < 0 ? RWCString() : members_[static_cast<std::size_t>(member)].text;
}

template <class T>
void TLParameters::setValues(std::string_view descriptor, TLParameterType type,
                             std::vector<T> values) {
  const TLDescriptor parsed = TLDescriptor::parse(descriptor);
  if (parsed.type != type) return;
  values.resize(static_cast<std::size_t>(parsed.count));
  auto& list = generics<T>();
  const Place place = find(parsed.name);
  if (place.type == type) {
    list[place.index].descriptor = descriptor;
    list[place.index].values = std::move(values);
  } else if (!place.found()) {
    list.push_back({RWCString(descriptor), parsed.name, std::move(values), nullptr});
    sortByName();
  }
}

void TLParameters::setIntegers(std::string_view descriptor, std::vector<std::int32_t> values) {
  const auto* row = findNamedParameter(descriptor);
  if (row == nullptr) {
    setValues(descriptor, TLParameterType::integer, std::move(values));
    return;
  }
  if (row->type != TLParameterType::integer) return;
  auto& member = members_[static_cast<std::size_t>(namedMember(row->name))];
  member.descriptor = descriptor;
  member.integers = std::move(values);
  member.integers.resize(static_cast<std::size_t>(row->count));
}

void TLParameters::setReals(std::string_view descriptor, std::vector<double> values) {
  const auto* row = findNamedParameter(descriptor);
  if (row == nullptr) {
    setValues(descriptor, TLParameterType::real, std::move(values));
    return;
  }
  if (row->type != TLParameterType::real) return;
  auto& member = members_[static_cast<std::size_t>(namedMember(row->name))];
  member.descriptor = descriptor;
  member.reals = std::move(values);
  member.reals.resize(static_cast<std::size_t>(row->count));
}

void TLParameters::setText(std::string_view descriptor, std::string_view value) {
  const auto* row = findNamedParameter(descriptor);
  if (row == nullptr || row->type != TLParameterType::text) return;
  auto& member = members_[static_cast<std::size_t>(namedMember(row->name))];
  member.descriptor = descriptor;
  member.text = value;
}
