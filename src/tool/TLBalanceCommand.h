#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "tool/TLCommand.h"

/// What "tlctl balance" is asked for.
struct TLBalanceOptions {
  std::string runFile;            ///< Path of a run file or a project file.
  std::int32_t processors = 0;    ///< To distribute over; at least 1.
  std::int32_t adjust = 1;        ///< 1: the number of processors may be lowered
  bool json = false;              ///< one JSON object instead of the trace
  bool summary = false;           ///< a table instead of the trace
  bool write = false;             ///< store the distribution in the run file
  bool verify = false;            ///< check the distribution by other means
  std::string method = "growth";  ///< "growth" or "metis"
};

/// Distributes the blocks of a run file over processors, as a launch would. Prints the trace and a
/// last line "OWNERS" with the process of each block, from 0, on standard output. Answers one of
/// TLExitCode.
int runBalance(const TLBalanceOptions& options);

std::vector<TLCommand> balanceCommands();  ///< balance
