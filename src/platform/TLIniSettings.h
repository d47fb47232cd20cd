#pragma once

#include <functional>
#include <string>

#include "platform/TLMemorySettings.h"

/// Settings kept in an INI file, whose sections are the keys:
/// @verbatim
///   [Software\TALVEN International\mire71]
///   TALVEN_DIR = /opt/suite/mire71
/// @endverbatim
/// A value may hold "${NAME}", the environment's variable of that name, "${NAME:-text}", the same
/// with a text for the case that it isn't set, and "${SETTINGS_DIR}", the file's own directory, so
/// that an installation can be moved with its settings.
///
/// Lines that begin with ";" or "#" are comments; blanks around a name and its value are cut. The
/// file is read anew at each question (start-up asks a handful), so that it is never stale. A file
/// that can't be read has no keys.
class TLIniSettings : public TLSettingsStore {
 public:
  /// `locate` answers the file's path, empty for none; it is asked at each question.
  explicit TLIniSettings(std::function<std::string()> locate);

  bool hasKey(std::string_view key) const override;
  std::optional<std::string> value(std::string_view key, std::string_view name) const override;

  /// The keys and values of an INI text. Lines that are none of section, value and comment are
  /// passed over.
  static TLMemorySettings parse(std::string_view text);

  /// `value` with its "${...}" replaced, for a file in `directory`. What has no closing brace
  /// stays.
  static std::string expanded(std::string_view value, const std::string& directory);

 private:
  TLMemorySettings load() const;

  std::function<std::string()> locate_;
};
