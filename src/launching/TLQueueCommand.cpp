#include "launching/TLQueueCommand.h"

#include "launching/TLCommands.h"
#include "platform/TLConsole.h"
#include "textio/TLTextSource.h"

std::optional<RWCString> askQueue(const RWCString& host, const RWCString& command,
                                  const RWCString& login, const RWCString& name) {
  TLHostForm& form = hostForm();
  const RWCString file = form.join(form.variableOrEmpty("TMP_DIR"), name);
  if (form.isLink(file)) {
    console() << file << " is a symbolic link: refused, \"" << command << "\" was not run\n"
              << std::flush;
    return std::nullopt;
  }
  remoteExec(host, command, login, file);
  auto answer = form.readFile(file);
  if (answer) removeLocal(file);
  return answer;
}

RWCString firstLineOf(const RWCString& answer) {
  TLTextSource lines(answer);
  const RWCString line(lines.readLine());
  return line.empty() ? "nothing" : line.substr(0, line.find_last_not_of(" \t\r") + 1);
}
