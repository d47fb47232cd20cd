#pragma once

#include "session/TLScript.h"
#include "textio/RWCString.h"

/// @file
/// What the user gets to see of the engine's doings.

/// A word of the fixed vocabulary.
inline void reportWord(const RWCString& word) {
  evalScript("task_manager_receive_message " + word);
}

/// A phrase, which goes in double quotes.
inline void reportPhrase(const RWCString& phrase) {
  evalScript("task_manager_receive_message \"" + phrase + "\"");
}
