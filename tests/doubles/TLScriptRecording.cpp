#include "doubles/TLScriptRecording.h"

#include "session/TLScript.h"

TLScriptRecording& recordedScript() {
  static TLScriptRecording recording;
  return recording;
}

void resetRecordedScript() {
  recordedScript() = {};
}

int evalScript(const RWCString& text) {
  recordedScript().lines.push_back(text);
  return recordedScript().answer ? recordedScript().answer(text) : 0;
}

RWCString scriptResult() {
  return recordedScript().result;
}

void showError(const RWCString& text) {
  recordedScript().errors.push_back(text);
}
