#include "Steering.h"

#include <pvm3.h>

#include <optional>

namespace {

constexpr int kValues = 13;
constexpr int kNewSteering = 12;
constexpr int kAskSteering = 14;
constexpr int kPatience = 10;  // seconds
constexpr int kStringType = 7;
constexpr int kValuesType = 8;
constexpr int kSettingsType = 9;

// Takes the contents of the message that was received last apart; good() turns false for ever at
// the first thing that isn't there.
class Contents {
 public:
  Contents() {
    int tag = 0;
    int source = 0;
    good_ = pvm_bufinfo(pvm_getrbuf(), &size_, &tag, &source) >= 0;
  }

  bool good() const { return good_; }
  int integer() {
    int value = 0;
    good_ = good_ && pvm_upkint(&value, 1, 1) >= 0;
    return value;
  }
  double real() {
    float value = 0;
    good_ = good_ && pvm_upkfloat(&value, 1, 1) >= 0;
    return value;
  }
  // Never longer than the message, whatever length is announced.
  std::string text() {
    integer();
    std::string bytes(static_cast<std::size_t>(size_) + 1, '\0');
    good_ = good_ && pvm_upkstr(bytes.data()) >= 0;
    bytes.resize(good_ ? bytes.find('\0') : 0);
    return bytes;
  }

 private:
  bool good_ = false;
  int size_ = 0;
};

// The first number among the entries of a parameter, all of which have to be read.
std::optional<double> readEntries(Contents& contents) {
  std::optional<double> first;
  const auto keep = [&first](double value) {
    if (!first) first = value;
  };
  for (int n = contents.integer(); n > 0 && contents.good(); --n) keep(contents.integer());
  for (int n = contents.integer(); n > 0 && contents.good(); --n) keep(contents.real());
  for (int n = contents.integer(); n > 0 && contents.good(); --n) keep(contents.integer());
  for (int n = contents.integer(); n > 0 && contents.good(); --n) {
    for (int axis = 0; axis < 3; ++axis) contents.real();
  }
  for (int n = contents.integer(); n > 0 && contents.good(); --n) contents.text();
  return first;
}

void packFloats(const std::vector<float>& values) {
  if (!values.empty()) {
    pvm_pkfloat(const_cast<float*>(values.data()), static_cast<int>(values.size()), 1);
  }
}

void packInt(int value) {
  pvm_pkint(&value, 1, 1);
}

}  // namespace

void Steering::ask() const {
  daemon_.begin(0);
  daemon_.send(kAskSteering);
  daemon_.waitFor(kNewSteering, kPatience);  // a short run could be over before they come
}

bool Steering::readSettings(std::map<std::string, double>& settings) {
  Contents contents;
  if (contents.integer() != 2 || contents.integer() != kStringType) return false;
  contents.text();  // path of the steering file
  if (contents.integer() != kSettingsType) return false;
  contents.text();
  for (int n = contents.integer(); n > 0 && contents.good(); --n) {
    const std::string name = contents.text();
    for (int text = 0; text < 2; ++text) contents.text();
    for (int number = 0; number < 3; ++number) contents.integer();
    const auto value = readEntries(contents);
    if (value && contents.good()) settings[name] = *value;
  }
  return contents.good();
}

void Steering::report(const std::vector<Series>& values) const {
  if (!daemon_.present()) return;
  daemon_.begin(1);
  packInt(kValuesType);
  packInt(static_cast<int>(values.size()));
  for (const auto& series : values) {
    packInt(static_cast<int>(series.name.size()));
    pvm_pkstr(const_cast<char*>(series.name.c_str()));
    packInt(series.kind);
    for (int level = 0; level < 3; ++level) packInt(0);
    packInt(static_cast<int>(series.x.size()));
    packFloats(series.x);
    packFloats(series.y);
  }
  daemon_.send(kValues);
}
