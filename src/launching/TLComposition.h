#pragma once

#include "launching/TLLaunchDraft.h"

/// @file
/// The composition of the command line of an ordinary step, in stages. They are run in the order in
/// which they stand here; between them a launch reads and writes the run file and carries files to
/// the host, and a dry run does neither. No stage touches a file, a process or the script.

/// `path` with the first ".run" in it replaced by `suffix`; as it stands without one.
RWCString withRunReplaced(const RWCString& path, const RWCString& suffix);
/// The name that the ".machines" file of a run has by its steering file; "unknown" for a file that
/// has not the suffix "steering".
RWCString machinesFileOf(const RWCString& steeringFile);
/// Adds ("-x", "v") as the first argument.
void putInFront(TLProcessArguments& arguments, const RWCString& type, const RWCString& value);
/// The first argument of that type, null for none.
TLProcessArgument* findArgument(const TLProcessArguments& arguments, const RWCString& type);
/// True when some entry names a local file that has to go along.
bool hasMarkedFile(const TLProcessArguments& arguments);

/// Completes what doesn't depend on the run file: the marks of the MPI family, parent and display,
/// the 64-bit test, the names of tools on a Windows host, and a flow solver's files and launcher
/// words. May replace the draft's host.
void completeArguments(TLLaunchDraft& draft, const TLLaunchSite& site);

/// The run file of a flow solver among the completed arguments; empty when there is none.
RWCString runFileOf(const TLLaunchDraft& draft);

/// After a good reading: precision, the solver's path and, for an unstructured solver, the words
/// about machines.
void adaptToRunFile(TLLaunchDraft& draft, const TLLaunchSite& site, const TLRunFileFacts& facts);

/// The words about machines of a structured solver.
void addMachineArguments(TLLaunchDraft& draft);

/// The words of the shape optimiser; makes sure of one design generation.
void completeSculptArguments(TLLaunchDraft& draft, const TLLaunchSite& site);
/// The path of the optimiser's "proc_distrib".
RWCString procDistribFile(const TLLaunchDraft& draft);

/// Which files go along before the start.
enum class TLCarriage {
  none,
  arguments,     ///< those that the arguments mark
  unstructured,  ///< those of an unstructured run: mesh, computation, run file
  sculpt         ///< those of the shape optimiser
};
/// By the kind of the step, its host and the marks of `spawnArguments`.
TLCarriage carriageOf(const TLLaunchDraft& draft, const TLLaunchSite& site,
                      const TLProcessArguments& spawnArguments);

/// Gives `executable` its final name.
void nameProgram(TLLaunchDraft& draft);

/// True when a batch file goes with this start.
bool wantsBatchFile(const TLLaunchDraft& draft);
/// Forms the names of batch and ".p4pg" file, and the quoted word of an "mpirun.exe" start in both
/// lists. `X`, from which the names are formed, is answered.
RWCString nameBatchFile(TLLaunchDraft& draft);

/// The last changes of `spawnArguments`: no display wanted, the first word of "mpirun.exe".
void finishSpawnArguments(TLLaunchDraft& draft);

/// How the process is started, by the kind of the step and its settings; `none` for a step without
/// one.
TLStartWay startWay(const TLLaunchDraft& draft);
/// The host on which the process is started.
RWCString startHost(const TLLaunchDraft& draft, const TLLaunchSite& site);
