// killsem ID: removes the semaphores that a process has left behind on this host.
#include <charconv>
#include <cstdio>
#include <cstring>

#include "platform/TLSemaphores.h"

namespace {

/// 0 when `text` is no process identifier.
int processId(const char* text) {
  int id = 0;
  const char* end = text + std::strlen(text);
  const auto [rest, error] = std::from_chars(text, end, id);
  return error == std::errc() && rest == end && id > 0 ? id : 0;
}

}  // namespace

int main(int argc, char** argv) {
  const int id = argc == 2 ? processId(argv[1]) : 0;
  if (id == 0) {
    std::fprintf(stderr, "usage: killsem ID\nID is the identifier of a process, above 0.\n");
    return 2;
  }
  const TLSemaphoreRemoval result = removeSemaphoresOf(id);
  for (const auto& failure : result.failures) {
    std::fprintf(stderr, "killsem: %d: %s\n", id, failure.c_str());
  }
  return result.failures.empty() ? 0 : 1;
}
