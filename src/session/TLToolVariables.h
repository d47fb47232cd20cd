#pragma once

#include <string_view>

#include "textio/RWCString.h"

/// @file
/// The values that the set-up of the environment worked out, for those who hand them on: the
/// session gives them to the script, whether or not they also stand in the process environment.

/// Keeps `value` under `name`, in the place of an earlier one.
void setToolVariable(std::string_view name, RWCString value);

/// The value kept under `name`; empty when none was.
RWCString toolVariable(std::string_view name);
