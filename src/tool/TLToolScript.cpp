// tlctl has no script session: what the layers below would tell a user's window, it says itself.

#include "platform/TLConsole.h"
#include "session/TLScript.h"

int evalScript(const RWCString& /*text*/) {
  return 0;
}

RWCString scriptResult() {
  return {};
}

void showError(const RWCString& text) {
  console() << text << '\n' << std::flush;
}
