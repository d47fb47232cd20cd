// An interface that can be killed: starts the daemon by the words of its command line, writes its
// tid into the file named first, and then only exists.
#include <pvm3.h>
#include <unistd.h>

#include <cstdio>
#include <string>

int main(int argc, char** argv) {
  if (argc < 3 || pvm_mytid() < 0) return 1;
  int daemon = 0;
  if (pvm_spawn(argv[2], argv + 3, PvmTaskDefault, nullptr, 1, &daemon) != 1) return 1;
  const std::string beside = std::string(argv[1]) + ".new";
  std::FILE* file = std::fopen(beside.c_str(), "w");
  if (file == nullptr) return 1;
  std::fprintf(file, "%d", daemon);
  std::fclose(file);
  std::rename(beside.c_str(), argv[1]);
  for (;;) pause();
}
