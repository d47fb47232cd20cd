#pragma once

#include <string>
#include <vector>

/// What came of a process that was run to its end.
struct TLCommandResult {
  bool started = false;  ///< False when the program wasn't found or couldn't be run.
  /// Exit code, 128 and the signal's number after a death by signal, the errno when not started.
  int code = 0;
};

/// Starts `program` (found along PATH when it names no directory) with `words` as its whole
/// argument vector, waits for it, and tells its end. Standard input is this process's; standard
/// output and error go to `outputFile`, created or emptied, unless that is empty; a
/// symbolic link in its place is refused (ELOOP).
TLCommandResult runToEnd(const std::string& program, const std::vector<std::string>& words,
                         const std::string& outputFile);

/// The words of a command line by the rules of a Windows program: blanks and tabs divide, double
/// quotes hold together, a backslash is plain unless a run of them stands before a quote.
std::vector<std::string> splitWin32CommandLine(const std::string& line);
