#pragma once

#include <string>
#include <vector>

/// A host that a task needs, and the user there.
struct TLProbedHost {
  std::string host;     ///< as the task file names it
  std::string login;    ///< empty: the same user
  std::string failure;  ///< why it can't be reached, one line; empty when it can
  /// The same host and user; the failures don't count.
  bool operator==(const TLProbedHost& other) const {
    return host == other.host && login == other.login;
  }
};

/// Asks all `hosts` at once, by the suite's remote shell, whether they run a command, and notes the
/// failures in them. One that hasn't answered after `seconds` counts as unreachable.
void probeHosts(std::vector<TLProbedHost>& hosts, double seconds);
