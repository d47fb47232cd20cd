#include "parameters/TLChoice.h"

#include "textio/TLTokenReader.h"

int TLChoice::readLine(std::string_view line) {
  return TLTokenReader().readNameInteger(line, name, value);
}

void TLChoice::write(TLTextSink& sink) const {
  sink << "                CHOICE_ENTRY          " << name << ' ' << value << '\n';
}
