// What stands on top of the virtual machine's operations without calling PVM itself; goes with
// either form of the layer, the real one and the recording one.
#include <algorithm>
#include <optional>

#include "messaging/TLVirtualMachine.h"
#include "platform/TLHostForm.h"
#include "taskengine/TLProcessArguments.h"

std::vector<RWCString> commandWords(const TLProcessArguments& arguments) {
  std::vector<RWCString> words;
  for (const auto& argument : arguments.entries()) {
    const RWCString& type = argument->type();
    const RWCString& value = argument->value();
    if (value == "undefined") continue;
    if (type != "none") words.push_back(type);
    if (type == "none" || value != "none") words.push_back(value);
  }
  return words;
}

namespace {

std::optional<TLVirtualMachineHost> hostNamed(const RWCString& name) {
  const TLVirtualMachineHost* own = TL_virtual_machine_own_host();
  if (own != nullptr && own->name == name) return *own;
  std::int32_t hostCount = 0;
  std::int32_t archCount = 0;
  std::vector<TLVirtualMachineHost> hosts;
  if (TL_virtual_machine_config(hostCount, archCount, hosts) < 0) return std::nullopt;
  const auto host = std::find_if(hosts.begin(), hosts.end(),
                                 [&](const TLVirtualMachineHost& h) { return h.name == name; });
  if (host == hosts.end()) return std::nullopt;
  return *host;
}

}  // namespace

bool hostIsKnown(const RWCString& hostName) {
  return hostNamed(hostName).has_value();
}

std::int32_t hostIsWin32(const RWCString& hostName) {
  const auto host = hostNamed(hostName);
  return !host || host->arch == "WIN32" ? 1 : 0;
}

RWCString companionProgram() {
  TLHostForm& form = hostForm();
  return form.realPath(form.join(form.directoryOf(form.executablePath()), "tlhostwatch"));
}
