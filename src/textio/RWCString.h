#pragma once

#include <string>

/// The string of all records: empty by default, compared exactly unless an operation says
/// otherwise.
using RWCString = std::string;
