#include "project/TLMeridionnalPatch.h"

#include "project/TLIntegerLine.h"

int TLMeridionnalPatch::readLine(std::string_view line) {
  return readIntegers(line, indices,
                      " wrong TLMeridionnalPatch indices: cannot determine bc indices");
}

void TLMeridionnalPatch::write(TLTextSink& sink) const {
  writeIntegers(sink, "        MERIDIONNAL_PATCH            ", indices);
}
