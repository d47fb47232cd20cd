#pragma once

#include "launching/TLLaunchDraft.h"

/// @file
/// The files that stand beside the run file of a parallel run and are made here. Of the others, the
/// ".p4pg" and the ".machines" file, only the names are formed.

/// The text of a batch file: one line of words that starts the program, ending in a blank.
RWCString batchFileText(const TLLaunchDraft& draft, const RWCString& suiteDirectory,
                        char separator);
/// Writes `text` to `path`. 1, or 0 when that isn't possible. `base` is the path that the name was
/// formed from: where it is the very same file, its former bytes are kept as "<name>.orig".
int writeBatchFile(const RWCString& path, const RWCString& base, const RWCString& text);

/// The text of "proc_distrib": the processes of each design generation, one group for each tool of
/// the design loop.
RWCString procDistribText(const TLLoadBalancing& loadBalancing);
/// Writes it; a failure is not told.
void writeProcDistrib(const RWCString& path, const TLLoadBalancing& loadBalancing);

/// Every line of the file with a single line feed at its end. A missing or empty file leaves an
/// empty one.
void normaliseLineEnds(const RWCString& path);
/// What normaliseLineEnds makes of a text.
RWCString withLineFeeds(const RWCString& text);
