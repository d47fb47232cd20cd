#pragma once

#include "launching/TLLaunchDraft.h"
#include "launching/TLMappingStrategy.h"

/// @file
/// The composition of the command line of a marine step, in stages, to be run in their order. Pure,
/// like those of launching/TLComposition.h.

/// Where the computation of a task lies. The two are put together as they stand.
struct TLComputationPlace {
  RWCString directory;  ///< with its closing separator
  RWCString fileName;   ///< Without directory.
};

/// True for a partitioning step that has only one part to make: it is finished without a process.
bool isIdlePartition(const RWCString& name, const TLProcessArguments& arguments);

/// Parent and display.
void completeMarineArguments(TLLaunchDraft& draft, const TLLaunchSite& site);
/// True for the marine solver, whose "-np" decides about its parallel run.
bool isMarineSolver(const RWCString& executable);
/// Lets "-np" decide.
void settleMarineProcesses(TLLaunchDraft& draft);
/// The parallel program and its "-machinefile".
void nameParallelMarineProgram(TLLaunchDraft& draft, const TLLaunchSite& site);
/// Takes `spawnArguments` from the arguments and completes them; `executable` loses its ".exe" for
/// a UNIX host. False when the step is of a kind for which no path can be mapped.
bool finishMarineArguments(TLLaunchDraft& draft, const TLComputationPlace& place,
                           TLMappingStrategy& mapping);

/// Puts paths as `hostName` sees them into `spawnArguments`. `changed` tells whether the
/// computation lies elsewhere there. False for a kind of step without a rule.
bool mapMarineArguments(const RWCString& name, const RWCString& hostName,
                        const TLComputationPlace& place, TLMappingStrategy& mapping,
                        TLProcessArguments& spawnArguments, bool& changed);

/// The log that the script follows while the step runs, as it stands in the script line; empty when
/// there is none.
RWCString marineLogFile(const TLLaunchDraft& draft, const TLComputationPlace& place,
                        char separator);
