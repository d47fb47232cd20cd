#include "parameters/TLPatchEntry.h"

#include "textio/TLTokenReader.h"

int TLPatchEntry::readLine(std::string_view line) {
  return TLTokenReader().readNameIndices(line, name, block, face, patch);
}

void TLPatchEntry::write(TLTextSink& sink) const {
  sink << "\t\t\t\tPATCH_ENTRY\t\t" << name << "\t\t" << block << ' ' << face << ' ' << patch
       << '\n';
}
