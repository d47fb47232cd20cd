#include "platform/TLConsole.h"

#include <iostream>

namespace {
std::ostream* gConsole = nullptr;
}

std::ostream& console() {
  return gConsole == nullptr ? std::cout : *gConsole;
}

TLConsoleRedirect::TLConsoleRedirect(std::ostream& target) : previous_(gConsole) {
  gConsole = &target;
}

TLConsoleRedirect::~TLConsoleRedirect() {
  gConsole = previous_;
}
