#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <string>

#include "messaging/TLHostQuestions.h"
#include "messaging/TLVirtualMachine.h"

/// The other hosts of the virtual machine, as far as this process has asked about them: a companion
/// process each, started by the first question (TLHostQuestions).
///
/// While PVM waits for one host its questions to all others wait, too, for up to a minute: only the
/// host that is waited for first is called silent then, and nothing is started on any other.
class TLOtherHosts {
 public:
  /// Asks PVM itself, and waits as long as that takes.
  using Question = std::function<std::int32_t()>;
  /// Name of the host whose daemon has the identifier `host`.
  using Naming = std::function<RWCString(std::int32_t host)>;

  /// `program` is the companion's path.
  void useProgram(const std::string& program) { program_ = program; }
  /// False until a program was told: every question then goes to PVM itself.
  bool inUse() const { return !program_.empty(); }
  /// True once another host was asked about.
  bool asked() const { return !hosts_.empty(); }

  /// PVM's code for a task, or what was known before as long as its host is silent.
  std::int32_t status(std::int32_t host, std::int32_t tid, const Naming& naming,
                      const Question& direct);
  /// The host, when it is to be shown as silent.
  TLSilentHost silence(std::int32_t host);
  /// The host that keeps a process from being started on `host`. Asks that one.
  TLSilentHost obstacle(std::int32_t host, const Naming& naming);

 private:
  TLHostQuestions& at(std::int32_t host, const Naming& naming);
  /// The host that has been silent longest; null when none is.
  TLHostQuestions* longestSilent();

  std::string program_;
  std::map<std::int32_t, TLHostQuestions> hosts_;
};
