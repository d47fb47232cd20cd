#pragma once

#include <cstdint>
#include <memory>

#include "platform/TLLockFile.h"
#include "textio/RWCString.h"

/// @file
/// The status file "status.dat" that the tools of the marine chain and the daemon share, beside the
/// computation: one block per tool with lines "KEY = value", changed in place under the lock file
/// "lockStatus". A `path` is any file in the directory in question, or the directory with its
/// closing separator. docs/status-file.md tells the format.

/// Answers of readStatusEntry when there is no value.
/// @{
constexpr const char* kStatusFileAbsent = "file_absence";
/// The file lacks the entry.
constexpr const char* kStatusEntryNotFound = "not_found";
/// @}

/// The value of `key` in `block`, blanks cut; kStatusFileAbsent when the file can't be made;
/// kStatusEntryNotFound (with a line on the console) when it lacks the entry. A missing file is
/// made first. With `lock` true it waits for the lock, however long another process holds it.
RWCString readStatusEntry(const RWCString& block, const RWCString& key, const RWCString& path,
                          bool lock);

/// Puts `value` in the place of the entry's value, under the lock. 1, or 0 when the file or the
/// entry is missing. A value longer than the field overruns what follows.
int writeStatusEntry(const RWCString& value, const RWCString& block, const RWCString& key,
                     const RWCString& path);

/// True when the file is missing or its first line isn't that of a status file.
bool statusFileInvalid(const RWCString& path);

/// Makes the file with every step pending. 1 on success.
int createStatusFile(const RWCString& path);

/// Tries once to take the lock. Null when another process holds it or it can't be made.
std::unique_ptr<TLLockFile> acquireStatusLock(const RWCString& path);

/// A date of the status file as seconds of the system's clock; 1 for a text that is no date.
std::int64_t parseStatusDate(const RWCString& text);
/// The same form written: "day/month/year hour:minute:second", local time, no leading zeros.
RWCString formatStatusDate(std::int64_t seconds);
