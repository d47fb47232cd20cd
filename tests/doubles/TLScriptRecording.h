#pragma once

#include <functional>
#include <vector>

#include "textio/RWCString.h"

/// The script session of a unit test: keeps what is evaluated, answers what the test asks for.
/// Linked (target tl_script_recording) in place of the real session.
struct TLScriptRecording {
  std::vector<RWCString> lines;   ///< every text that went through evalScript, in order
  std::vector<RWCString> errors;  ///< every text that went through showError
  /// Result code of a line; null: 0 for every line.
  std::function<int(const RWCString& line)> answer;
  /// What scriptResult answers. `answer` may set it.
  RWCString result;
};

/// The one recording of the process.
TLScriptRecording& recordedScript();
/// Forgets all records and answers; for the set-up of a test.
void resetRecordedScript();
