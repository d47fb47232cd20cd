#pragma once

#include "textio/RWCString.h"

/// Evaluates a script text in the one session of the process, printing the error when it fails.
/// Answers the interpreter's result code, 0 for success; 0 without a session. Every report to the
/// user goes through here.
int evalScript(const RWCString& text);

/// The interpreter's result after the last evaluation; empty without a session.
RWCString scriptResult();

/// Tells the user of a failure: the script's `okMessage`, or a line on standard output when the
/// process has no session.
void showError(const RWCString& text);
