#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <ostream>
#include <string>

#include "parameters/TLFluid.h"
#include "platform/TLConsole.h"
#include "project/TLGrid.h"
#include "project/TLProjectType.h"

// Meshes and fluids from any bytes: reading must not harm, what was written must be readable, and
// from then on reading and writing must not change it.

namespace {

template <class Record, class... Args>
bool rewrite(const std::string& text, std::string& result, Args... arguments) {
  TLTextSource source(text);
  Record record(arguments...);
  if (record.read(source) == 0) return false;
  TLTextSink sink;
  record.write(sink);
  result = sink.take();
  return true;
}

template <class Record, class... Args>
void check(const std::string& text, Args... arguments) {
  std::string once;
  std::string twice;
  std::string thrice;
  if (!rewrite<Record>(text, once, arguments...)) return;
  if (!rewrite<Record>(once, twice, arguments...)) std::abort();
  if (!rewrite<Record>(twice, thrice, arguments...)) std::abort();
  if (twice != thrice) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static std::ostream silence(nullptr);
  static const TLConsoleRedirect redirect(silence);
  if (size == 0) return 0;
  const std::string text(reinterpret_cast<const char*>(data) + 1, size - 1);
  switch (data[0]) {
    case 's':
      check<TLGrid>(text, TLProjectType::structured);
      break;
    case 'h':
      check<TLGrid>(text, TLProjectType::hexa);
      break;
    default:
      check<TLFluid>(text);
      break;
  }
  return 0;
}
