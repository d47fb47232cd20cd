#pragma once

#include "textio/RWCString.h"

/// The set-up of the environment, at the very start of a process of the suite: works out where the
/// suite is installed, which version this is and where the user's directories lie, and sets the
/// variables by which the tools find each other, for this process, for the script (see
/// session/TLToolVariables.h) and for everything that is started from here on, by the virtual
/// machine too.
class TLEnvironmentVariables {
 public:
  /// Does all of it; called once, before anything else is made. `argv` is searched for
  /// "-taskmanager" and "-parendId", which say that the virtual machine started this process, and
  /// for "-tlversion". The host's form decides about separators and settings; the name tells where
  /// the rules come from.
  ///
  /// An installation that the settings don't know is told on standard error; the process then
  /// waits for a line of input and ends with 0. Without PVM_TMP it ends with 0 as well.
  static void initWin32(int argc, const char* const* argv);

  /// Which product, and which version of it, a program belongs to by its path.
  struct Installation {
    RWCString product;  ///< "mire", "bramosh", ...
    RWCString version;  ///< what follows the product's name in the path; may be empty
  };
  /// The last part of the path that begins with a product's name tells both, case ignored. Without
  /// one: the first product, with the path up to "bin" as its version.
  static Installation installationOf(const RWCString& executablePath, char separator);
};
