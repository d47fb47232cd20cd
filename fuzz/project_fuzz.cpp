#include <cstdint>
#include <cstdlib>
#include <sstream>
#include <string>

#include "platform/TLConsole.h"
#include "project/TLProject.h"
#include "support/Definitions.h"

// Reads any bytes as a project file; what was read must be writable, readable again, and then come
// out the same.

namespace {

std::string written(const TLProject& project) {
  TLTextSink sink;
  project.write(sink);
  return sink.take();
}

int readText(TLProject& project, const std::string& text) {
  project.projectFile = TLFile("/study/comp/comp.run");
  TLTextSource source(text);
  return project.read(source);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const Definitions definitions;
  std::ostringstream unheard;
  const TLConsoleRedirect redirect(unheard);
  const std::string text(reinterpret_cast<const char*>(data), size);
  TLProject first;
  if (readText(first, text) != 1) return 0;
  TLProject second;
  if (readText(second, written(first)) != 1) std::abort();
  TLProject third;
  const std::string settled = written(second);
  if (readText(third, settled) != 1 || written(third) != settled) std::abort();
  return 0;
}
