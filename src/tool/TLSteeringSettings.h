#pragma once

#include <array>
#include <functional>
#include <iosfwd>
#include <string>
#include <string_view>
#include <vector>

#include "messaging/TLSteeringParameters.h"

/// Reads a steering file and its binary file. Null, with `error` saying where and why in whole
/// lines, when either can't be read. What the reader itself has to say goes to `console`.
Handle<TLSteeringParameters> readSteeringSet(const std::string& path, std::string& error,
                                             std::ostream& console);
/// The same with the reader's own words unheard.
Handle<TLSteeringParameters> readSteeringSet(const std::string& path, std::string& error);

/// One value of a steering set that a user may change.
struct TLSteeringSetting {
  std::string name;       ///< of the parameter; "parameter/entry" where that has several
  std::string entry;      ///< of the entry alone
  std::string parameter;  ///< Name of the parameter that has the entry.
  std::string_view kind;  ///< "real", "integer", "choice", "vector", "text"
  std::function<std::string()> value;           ///< as text
  std::function<bool(std::string_view)> store;  ///< false, with nothing changed, for a wrong text
  std::string wanted;                           ///< what a right text is: "a number"
};

/// All settings of a set by name.
class TLSteeringSettings {
 public:
  /// Shares the set, which changes by what is stored.
  explicit TLSteeringSettings(const Handle<TLSteeringParameters>& set);

  /// In the order of the set.
  const std::vector<TLSteeringSetting>& all() const { return settings_; }
  /// By the name, by "parameter/entry", or by the entry's name where that is the only one. Null,
  /// with `error` saying what is there instead, when nothing or more than one fits.
  const TLSteeringSetting* find(std::string_view name, std::string& error) const;

 private:
  void addParameter(TLSteeringParameter& parameter);

  Handle<TLSteeringParameters> set_;
  std::vector<TLSteeringSetting> settings_;
};
