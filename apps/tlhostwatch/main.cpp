/// @file
/// The companion of a daemon: asks the virtual machine about tasks on another host, where an answer
/// may take minutes. Questions come in on the standard input; see messaging/TLCompanion.h.

#include <iostream>

#include "messaging/TLCompanion.h"

int main() {
  return answerQuestions(std::cin, std::cout);
}
