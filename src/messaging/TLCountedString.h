#pragma once

#include "textio/RWCString.h"

/// @file
/// A text on the wire: its length in bytes without a terminator, then PVM's string.

/// Appends `text` to the send buffer.
bool packCountedString(const RWCString& text);
/// Reads a text from the active receive buffer. False, `text` standing as it was, when the two
/// lengths don't fit each other or the buffer.
bool unpackCountedString(RWCString& text);
