#pragma once

#include <vector>

#include "platform/TLHostForm.h"
#include "textio/RWCString.h"

/// @file
/// The lowest layer of the launching: run a command and wait, here or on another host; copy files
/// between hosts; copy, move and remove local files. Every call blocks until its command has
/// ended. A command is one line of text. Failures are told as each operation says; a command that
/// can't be started is shown to the user.

/// Fills the table of local file commands, once for the process; later calls only count.
void initFileCommands();
/// The table; initFileCommands has run.
const TLFileCommands& fileCommandTable();

/// Runs a command line and waits; its output goes to `outputFile`, made or emptied, unless that is
/// empty. The exit code of the process, or the error code of a start that failed.
int runRedirected(const RWCString& command, const RWCString& outputFile);

/// Runs `command` on `host` as `login` (empty: the same user), here when that is this host whatever
/// the domains say. `outputFile` as above. The exit code as above; of a command on another host it
/// is what the remote shell of the suite passes on.
int remoteExec(const RWCString& host, const RWCString& command, const RWCString& login,
               const RWCString& outputFile);
/// True when commands on `host`, of the kind that the virtual machine says, are read as on a
/// Windows host. A host that nobody knows counts as one, and may be this one after all.
bool readsWin32Words(const RWCString& host, bool win32);
/// A path as one word of a command for remoteExec.
RWCString wordForRemoteExec(const RWCString& host, const RWCString& path, bool win32);

/// Copies a file, or what a last "*" stands for, between this host and another. The host of the
/// local side is empty, the other one's is "host" or "host.login". `system` is "WIN32" or "UNIX",
/// the kind of the far side. 0 when the copy printed nothing, else 1.
int remoteCopy(const RWCString& srcHost, const RWCString& srcPath, const RWCString& dstHost,
               const RWCString& dstPath, const RWCString& system);
/// The same for a directory with all in it. Always 1.
int remoteCopyTree(const RWCString& srcHost, const RWCString& srcPath, const RWCString& dstHost,
                   const RWCString& dstPath, const RWCString& system);

/// How the last remoteCopy or remoteCopyTree went.
struct TLCopyReport {
  bool failed = false;  ///< it said something, or could not be run
  RWCString words;      ///< all that the tool said
};
/// Valid until the next copy.
const TLCopyReport& lastCopyReport();

/// @name Local files. What fails in a copy or a move isn't told.
/// @{

/// Copies a file; an existing one is replaced.
void copyLocal(const RWCString& src, const RWCString& dst);
/// Moves or renames a file; an existing one is replaced.
void moveLocal(const RWCString& src, const RWCString& dst);
/// 1 when the file was removed; 0, with the reason on standard output, when it can't be written.
int removeLocal(const RWCString& path);
/// Appends the names in `dir`, "." and ".." included; a directory that doesn't exist adds nothing.
void listDirectory(const RWCString& dir, std::vector<RWCString>& names);
/// The working directory, in a buffer that all callers share.
const char* currentDirectory();
/// @}

/// Puts PVM_ROOT, PVM_TMP and PVM_RSH from the settings, and PVM_ARCH, into the environment. A
/// value that is absent leaves its variable as it was; PVM_ROOT then falls back to where the
/// system's package has it, on hosts that have one.
void loadPvmEnvironment();
