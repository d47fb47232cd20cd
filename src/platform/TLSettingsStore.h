#pragma once

#include <optional>
#include <string>
#include <string_view>

/// The per-machine settings: named values under keys such as
/// "Software\\TALVEN International\\mire121". The registry on a Windows host, an INI file
/// elsewhere, whose sections are the key names. Names and keys are compared without regard to case.
class TLSettingsStore {
 public:
  virtual ~TLSettingsStore() = default;

  /// True when the key exists.
  virtual bool hasKey(std::string_view key) const = 0;
  /// The value `name` under `key`; none when either is absent.
  virtual std::optional<std::string> value(std::string_view key, std::string_view name) const = 0;
};
