#include "messaging/TLCompanion.h"

#include <pvm3.h>
#include <stdlib.h>

#include <algorithm>
#include <cstdint>
#include <istream>
#include <ostream>
#include <string>

#include "platform/TLHelperProcess.h"

namespace {

std::int32_t askHost(int host) {
  int count = 0;
  pvmtaskinfo* tasks = nullptr;
  return std::min(pvm_tasks(host, &count, &tasks), 0);
}

}  // namespace

int answerQuestions(std::istream& in, std::ostream& out) {
  if (!endWithParent()) return 1;
  // What a process that the virtual machine started finds in its environment is not for those that
  // it starts.
  for (const char* name : {"PVMEPID", "PVMTMASK", "PVMTRCBUF", "PVMTRCOPT", "PVMCTX"}) {
    unsetenv(name);
  }
  pvm_setopt(PvmAutoErr, 0);
  if (pvm_mytid() < 0) return 1;
  std::string what;
  for (int tid = 0; in >> what >> tid;) {
    out << (what == "host" ? askHost(tid) : pvm_pstat(tid)) << std::endl;
  }
  pvm_exit();
  return 0;
}
