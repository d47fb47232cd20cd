#pragma once

#include <nlohmann/json.hpp>

#include <cstddef>
#include <string>

#include "taskengine/TLRunState.h"
#include "tool/TLTerminal.h"

/// @file
/// A run as tlctl shows it, whoever asks: table for people, JSON for programs.

/// Seconds that a step has taken so far, or took; 0 before its start.
double elapsedOf(const TLRunStateStep& step, double now);

/// "host, job 17 qw: why it ended", as much of it as there is.
std::string placeAndReason(const TLRunStateStep& step);

/// A line for each step: position, name, status, time, host and why it ended.
std::string statusTable(const TLRunState& state, const TLTerminal& terminal);

/// "task_file", "task", "daemon", "pid", "host", "started", "live", "log", "steps".
nlohmann::json statusJson(const TLRunState& state);
