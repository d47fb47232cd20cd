#include "parameters/TLFileEntry.h"

#include "textio/TLTokenReader.h"

int TLFileEntry::readLine(std::string_view line) {
  RWCString path;
  if (TLTokenReader().readStringPair(line, name, path) == 0) return 0;
  file = TLFile(path);
  return 1;
}

void TLFileEntry::write(TLTextSink& sink) const {
  sink << "\t\t\t\tFILENAME_ENTRY\t\t" << name << "\t\t" << file.path() << '\n';
}
