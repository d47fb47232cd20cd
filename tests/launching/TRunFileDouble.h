#pragma once

#include "launching/TLRunFile.h"

/// The run file of a launch test, linked in place of the real one: answers `facts` and drops what
/// it is given.
struct TRunFileDouble {
  TLRunFileFacts facts;
};

TRunFileDouble& runFileDouble();
