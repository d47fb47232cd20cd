#include "project/TLBanner.h"

#include <string>

void writeBanner(TLTextSink& sink, std::string_view line) {
  static const std::string full(78, '#');
  static const std::string stars = '#' + std::string(77, '*');
  sink << full << '\n' << stars << '\n' << line << '\n' << stars << '\n' << full << '\n';
}
