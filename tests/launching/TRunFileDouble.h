#pragma once

#include <string>
#include <vector>

#include "launching/TLRunFile.h"

/// The run file of a launch test, linked in place of the real one: answers `facts`, and writes down
/// what is done with it.
struct TRunFileDouble {
  TLRunFileFacts facts;
  std::int32_t blocks = 0;
  std::vector<std::string> calls;  ///< "read PATH", "write", "NTASK 3", "processes 1 2 2", ...
};

TRunFileDouble& runFileDouble();
