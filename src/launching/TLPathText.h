#pragma once

#include "textio/RWCString.h"

/// @file
/// What paths and texts go through before they stand in a command line or a script line. Pure
/// functions, the same on every host: none guesses at a shell.

/// Without all trailing "/" and "\\".
RWCString stripTrailingSlashes(const RWCString& path);
/// Turns every "/" into "\\", in place.
void toBackslashes(RWCString& path);
/// Each "\\" twice: the form of everything that goes to the script layer.
RWCString doubleBackslashes(const RWCString& text);
/// Two neighbouring "\\" become one, from left to right, in one pass.
RWCString collapseBackslashes(const RWCString& text);
/// In double quotes.
RWCString quotePlain(const RWCString& text);
/// In double quotes, with a last "*" left outside, so that a shell expands it.
RWCString quoteWithStar(const RWCString& path);
/// "!" and "$" masked for the two shells behind which a copy to a Windows host stands.
RWCString escapeForShell(const RWCString& text);
/// Every character that is no part of a plain name masked by a backslash: one word for any UNIX
/// shell. With `stars` those of a pattern stay as they are.
RWCString maskForFarShell(const RWCString& text, bool stars);
/// A path as one word of a command on a host of the given kind; what stands in it arrives as it is.
/// `pattern` follows it and keeps its stars.
RWCString wordForHost(const RWCString& path, bool win32, const RWCString& pattern = {});
/// What a UNIX host's shell would take apart, masked by a backslash each ("!" by two).
RWCString escapeForRemoteUnix(const RWCString& text);
