#pragma once

#include <vector>

#include "taskengine/TLProcessArguments.h"
#include "textio/RWCString.h"

/// @file
/// The lines that a launch evaluates in the script layer. Names in them arrive as they are: what
/// the script would take for a substitution is masked.

/// A text as it stands between double quotes of a script line; backslashes are left to the caller.
RWCString scriptQuoted(const RWCString& text);

/// "Try to spawn ..."
RWCString spawnLine(const RWCString& executable, const RWCString& hostName, bool win32,
                    const RWCString& remoteLogin);
/// "Argument 1: ...", one line for each.
std::vector<RWCString> argumentLines(const TLProcessArguments& arguments);

/// "task_manager_receive_message " and a word of the vocabulary, or a phrase in double quotes.
RWCString messageLine(const RWCString& word);

/// Evaluates a line, then has the screen redrawn.
void tellScript(const RWCString& line);

/// Shows a phrase to the user, whatever stands in it.
void sayToScript(const RWCString& phrase);
