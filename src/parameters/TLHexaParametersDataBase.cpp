#include "parameters/TLHexaParametersDataBase.h"

#include <cstdlib>

#include "platform/TLConsole.h"
#include "platform/TLHostForm.h"

RWCString TLHexaParametersDataBase::definitionPath(std::int32_t kind) {
  const char* directory = std::getenv("VELSTRA_DIR");
  return RWCString(directory == nullptr ? "" : directory) + hostForm().separator() +
         (kind == 1 ? "lumbrake_auto.def" : "lumbrake.def");
}

TLHexaParametersDataBase::TLHexaParametersDataBase(std::int32_t kind) {
  const RWCString path = definitionPath(kind);
  auto text = hostForm().readFile(path);
  if (!text) {
    console() << "ERROR! ...\n The file " << path << " can not be found.\n" << std::flush;
    std::exit(0);
  }
  TLTextSource source(std::move(*text));
  read(source);
}
