#include "tool/TLAnswer.h"

#include <fmt/format.h>
#include <CLI/CLI.hpp>

#include <cstdio>
#include <iostream>
#include <utility>

void declareJson(CLI::App& app, bool& json) {
  app.add_flag("--json", json, "answer with one JSON object, for programs");
}

void printAnswer(std::string_view command, nlohmann::json body) {
  body["version"] = kAnswerVersion;
  body["command"] = command;
  std::cout << body.dump(2, ' ', false, nlohmann::json::error_handler_t::replace) << std::endl;
}

void complain(std::string_view command, const std::string& text) {
  std::fflush(stdout);
  fmt::print(stderr, "tlctl {}: {}\n", command, text);
}
