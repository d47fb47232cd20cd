#pragma once

#include <nlohmann/json.hpp>
#include <optional>
#include <string>

#include "platform/TLHostForm.h"

/// What `convert` makes of the JSON object in the file `path`. Nothing when the file can't be read,
/// holds no JSON, has another number than `version` at "version", or lacks what is asked of it.
template <class Convert>
auto readVersionedJson(const std::string& path, int version, Convert convert)
    -> std::optional<decltype(convert(nlohmann::json()))> {
  const auto text = hostForm().readFile(path);
  if (!text) return std::nullopt;
  try {
    const auto json = nlohmann::json::parse(*text);
    if (json.value("version", 0) != version) return std::nullopt;
    return convert(json);
  } catch (const nlohmann::json::exception&) {
    return std::nullopt;
  }
}
