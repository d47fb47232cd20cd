#pragma once

#include <optional>

#include "textio/RWCString.h"

/// Runs a queuing system's command on `host` as `login` and answers what it printed, errors
/// included. The answer passes through the file `name` in TMP_DIR, which is gone afterwards. None
/// when there is no such file to read; a symbolic link that stands in its place is refused, told
/// on the console, and nothing is run.
std::optional<RWCString> askQueue(const RWCString& host, const RWCString& command,
                                  const RWCString& login, const RWCString& name);

/// The first line of an answer that isn't blank, for a message; "nothing" for none.
RWCString firstLineOf(const RWCString& answer);
