#pragma once

#include "launching/TLLaunchDraft.h"
#include "taskengine/TLLauncher.h"

/// The launcher of the task engine: composes the command line of a step (TLComposition.h,
/// TLMarineComposition.h), makes the files of its start, and starts it (TLStarter.h). Changes the
/// step's `arguments` (completed), `spawnArguments`, `status` and `children`; its `executable`
/// holds the name of the started program only while a start runs.
class TLLaunching : public TLLauncher {
 public:
  int startStep(TLSubTask& step) override;
  int startMarineStep(TLSubTask& step) override;
  int startProbesTool(TLSubTask& step) override;

  int retrieveResults(TLSubTask& step) override;
  int retrieveHexa_(TLSubTask& step) override;
  void removeRemoteDir(TLSubTask& step) override;
  int removeRemoteResults(TLSubTask& step) override;
  int stopSubTask(TLSubTask& step) override;
};

/// The launcher of this process; registered by installLaunching.
TLLaunching& launching();
/// Makes it the one that the task engine calls.
void installLaunching();

/// The machine that this process runs on.
TLLaunchSite launchSite();
/// The draft of a launch of `step`, before any stage.
TLLaunchDraft draftOf(const TLSubTask& step);
