#pragma once

#include <map>
#include <string>

#include "platform/TLSettingsStore.h"

/// Settings that stand in memory only: the registry of a win32 form that runs elsewhere.
class TLMemorySettings : public TLSettingsStore {
 public:
  /// Makes `key` when it is new.
  void addKey(std::string_view key);
  /// Sets one value, making its key when that is new.
  void set(std::string_view key, std::string_view name, std::string_view value);

  bool hasKey(std::string_view key) const override;
  std::optional<std::string> value(std::string_view key, std::string_view name) const override;

 private:
  // lower-cased key, then lower-cased name
  std::map<std::string, std::map<std::string, std::string>> keys_;
};
