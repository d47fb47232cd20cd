#include "launching/TLCommands.h"

namespace {

constexpr const char* kKey = "Software\\TALVEN International";
constexpr const char* kPackagedPvm = "/usr/lib/pvm3";

}  // namespace

void loadPvmEnvironment() {
  TLHostForm& form = hostForm();
  for (const char* name : {"PVM_ROOT", "PVM_TMP", "PVM_RSH"}) {
    if (const auto value = form.settings().value(kKey, name)) form.setVariable(name, *value);
  }
  if (form.kind() == TLHostKind::posix && form.variableOrEmpty("PVM_ROOT").empty()) {
    form.setVariable("PVM_ROOT", kPackagedPvm);
  }
  form.setVariable("PVM_ARCH", form.architecture());
}
