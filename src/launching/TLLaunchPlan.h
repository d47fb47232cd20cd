#pragma once

#include <functional>
#include <vector>

#include "launching/TLLaunchDraft.h"
#include "launching/TLMarineComposition.h"

class TLSubTask;

/// Something that a launch does on the step's host, or carries there.
struct TLPlannedAction {
  /// What it does.
  enum class Kind {
    command,  ///< `target` is run there
    copy,     ///< the file or pattern `source` goes to `target` there
    tree      ///< the directory `source` with all in it goes into `target` there
  };
  Kind kind = Kind::command;  ///< Decides whether `source` counts.
  RWCString source;           ///< Path of this host; empty for a command.
  RWCString target;           ///< Path of the step's host, or the command.
  std::int64_t bytes = 0;     ///< of what goes
};

/// A path of this host that stands in the words by another name.
struct TLMappedPath {
  RWCString here;   ///< As this host knows it.
  RWCString there;  ///< As the step's host knows it.
};

/// What a launch of one step would do, without doing any of it: the dry run. Nothing is started and
/// no file is changed; the words are those of a later launch from the same files.
struct TLLaunchPlan {
  TLStartWay way = TLStartWay::none;       ///< `none` also for a step that the task file disables.
  RWCString host;                          ///< on which the process is started
  RWCString farHost;                       ///< the step's host and login as copies have them
  bool win32 = false;                      ///< kind of the step's host
  RWCString program;                       ///< Its name as it is given to whoever starts it.
  std::vector<RWCString> words;            ///< Its arguments, one a word, without the program.
  RWCString runFile;                       ///< of a flow solver; empty for none
  std::vector<TLLaunchFile> written;       ///< files made here; `text` empty where it is a record's
  std::vector<RWCString> carried;          ///< local files that go to the host first
  std::vector<TLPlannedAction> actions;    ///< on the step's host or towards it, in their order
  std::vector<TLMappedPath> mapped;        ///< paths that the host knows by another name
  std::vector<RWCString> scriptLines;      ///< told to the script before the start
  std::vector<std::int32_t> blockProcess;  ///< process of each block, from 1; empty when not told
  std::vector<RWCString> notes;            ///< what is worth knowing about this start
  RWCString submission;                    ///< command line of a job; empty for none
  TLLaunchFile jobScript;                  ///< as it would be filled; no text when it can't be
};

/// Stands for the number of a run's directory, which the start draws.
constexpr const char* kPlannedNumber = "NNN";

/// A word for people: "pvm", "mpi launcher", "queue", "local tool", "none".
const char* startWayWord(TLStartWay way);

/// The facts of a run file and the number of its blocks, for a plan. Must not change anything.
using TLRunFileReader = std::function<TLRunFileFacts(const RWCString& path, bool unstructuredTables,
                                                     std::int32_t& blocks)>;

/// True for a Windows host. A step may move to another host than its own.
using TLHostKindTest = std::function<bool(const RWCString& hostName)>;

/// The plan of one step.
TLLaunchPlan planLaunch(const TLSubTask& step, const TLHostKindTest& isWin32,
                        const TLLaunchSite& site, const TLRunFileReader& readRunFile,
                        TLMappingStrategy& mapping);

/// Reads through the launch's own reader of run files.
TLRunFileFacts readRunFileFacts(const RWCString& path, bool unstructuredTables,
                                std::int32_t& blocks);
