#pragma once

#include "textio/RWCString.h"

/// @file
/// Paths as the task engine puts them together.

/// Path of the file `name` in `directory`, which may lack its closing separator or be empty.
RWCString joinPath(const RWCString& directory, const RWCString& name);
