#pragma once

#include "textio/RWCString.h"

/// @file
/// Paths and names as the task engine puts them together.

/// Path of the file `name` in `directory`, which may lack its closing separator or be empty.
RWCString joinPath(const RWCString& directory, const RWCString& name);

/// A name as a word of a command line: as it stands when no shell would read more into it (and
/// always in the win32 form), else quoted.
RWCString shellWord(const RWCString& name);
