#pragma once

#include <nlohmann/json.hpp>

#include <string>
#include <string_view>

namespace CLI {
class App;
}

/// Version of the JSON that all commands print. It grows when a field goes or changes its meaning;
/// new fields leave it as it is.
constexpr int kAnswerVersion = 1;

/// Declares --json, which every command has.
void declareJson(CLI::App& app, bool& json);

/// Prints the answer of `command` as one JSON object: "version", "command", and the fields of
/// `body`. Bytes of names that are no UTF-8 are replaced, as JSON has no other text.
void printAnswer(std::string_view command, nlohmann::json body);

/// Says on standard error that `command` can't do what was asked: what, where, what to do.
void complain(std::string_view command, const std::string& text);
