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

/// "iteration 1200 of 20000 (6 %), residual 2.0e-05 (6.5 orders down)", as much of it as is known.
std::string progressText(const TLRunStateStep& step);

/// "copying to node18: fan.run (3 of 7, 12.3 of 40.0 MB)", or what a failed copy left; empty when
/// nothing is carried and nothing went wrong.
std::string transferText(const TLRunStateStep& step);
/// "1.5 kB", "40.0 MB".
std::string bytesText(double bytes);

/// "host, job 17 qw: why it ended", as much of it as there is; for a step without a reason the
/// host that it waits for, what is carried for it, or how far it came.
std::string placeAndReason(const TLRunStateStep& step);

/// "2 of 3 steps finished ok, 1 crashed".
std::string countText(const TLRunState& state);

/// A line for each step: position, name, status, time, host and why it ended.
std::string statusTable(const TLRunState& state, const TLTerminal& terminal);

/// "task_file", "task", "daemon", "pid", "host", "started", "live", "log", "steps".
nlohmann::json statusJson(const TLRunState& state);
