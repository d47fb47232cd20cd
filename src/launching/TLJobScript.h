#pragma once

#include <cstdint>
#include <string_view>

#include "textio/RWCString.h"

class TLLoadBalancing;

/// @file
/// The script of a step's job. Its template stands beside the run file, made by whoever prepared
/// the run; here it is filled in, in its place.

/// Path of the script of a run file; the path as it stands for an unknown queuing system.
RWCString jobScriptPath(std::int32_t kind, const RWCString& runFile);

/// What a template is filled with.
struct TLJobScriptValues {
  std::int32_t kind = 0;        ///< 1 SGE, 2 PBS, 3 LSF
  RWCString hostName;           ///< to which the job is submitted
  RWCString runFile;            ///< as the job will find it
  RWCString precision;          ///< "sp", "hp", "dp" or empty
  RWCString queue;              ///< queue or parallel environment
  std::int32_t processors = 1;  ///< To ask for, at least 1; see jobSlots().
  RWCString executable;         ///< decides on the slots
  RWCString number;             ///< behind the "comp" of the job's name
  bool win32 = false;           ///< Kind of the host; Windows paths stand as they are there.
};

/// The slots to ask for: the structured solver's launcher takes one of its own in a parallel run.
std::int32_t jobSlots(std::int32_t processors, const RWCString& executable);
/// The text of a job's number: three digits at least.
RWCString jobNumberText(std::int32_t number);
/// Why these values can't stand in a script; empty when they can.
RWCString jobScriptFault(const TLJobScriptValues& values);
/// The template filled: the lines of the queuing system at its first empty line, the block of
/// settings in the place of each line that asks for it. Values go in as data: what a shell would
/// act on is quoted.
RWCString filledJobScript(const RWCString& text, const TLJobScriptValues& values);
/// The name that a script gives its job; empty for none.
RWCString jobNameIn(const RWCString& script, std::int32_t kind);
/// True for a script that has its block of settings already.
bool isFilledJobScript(const RWCString& script);

/// What to do about a template that isn't there, in one sentence that names it.
RWCString missingTemplateText(const RWCString& scriptFile);

/// Fills the template `scriptFile` and gives its path in `path`. The untouched template is kept as
/// "<name>.orig", unless that is there already. False, with the reason on the console, when the
/// values can't stand in a script or the files can't be written: the template then is as it was.
/// Without TMP_DIR the process exits; without a template it aborts.
bool createQueuingSystemScript(const TLLoadBalancing& record, RWCString& path,
                               const RWCString& executable, const RWCString& runFile,
                               const RWCString& precisionWord, const RWCString& scriptFile);
