#pragma once

#include <set>

#include "launching/TLCarryList.h"
#include "launching/TLTransfer.h"

/// Carries files by the copy tool and the remote shell of the suite.
///
/// What could not be fetched stays on the host: after a retrieval in which a copy failed, and after
/// one while the solver still runs, the directory of the run is not removed, and the user is told
/// where it is.
class TLHostTransfer : public TLTransfer {
 public:
  int transferStep(TLSubTask& step) override;
  int transferHexa_(TLSubTask& step) override;
  int transferSculpt(TLSubTask& step) override;
  int retrieveResults(TLSubTask& step) override;
  int retrieveHexa_(TLSubTask& step) override;
  void removeRemoteDir(TLSubTask& step) override;
  int removeRemoteResults(TLSubTask& step) override;

 private:
  void prepareRemoteDir(TLSubTask& step);
  bool isFilled(const TLSubTask& step) const;
  int retrieveArguments(TLSubTask& step);
  int retrieveUnstructured(TLSubTask& step, bool stillRuns);
  /// Removes the directory of the run behind a retrieval, or says that it stays.
  void settle(TLSubTask& step, bool complete, bool stillRuns = false);

  /// Set while a retrieval runs: an "update" of the script may lead to another one.
  bool retrieving_ = false;
  std::set<RWCString> keptDirectories_;  ///< "host:directory" with what could not be fetched
  /// Directories in which a transfer of this process has put something and that weren't removed.
  std::set<RWCString> filledDirectories_;
  std::set<RWCString> usedDirectories_;
};

/// Makes the directory of the run on `host` by `command`, with what the remote shell needs to know
/// in the environment. 0, or what refused it.
int makeRemoteDir(const TLFarSide& far, const RWCString& host, const RWCString& command);

/// Does what stands on the list; 0, or 1 when something that is needed failed.
int carry(TLSubTask& step, const TLCarryList& list);

/// The one of the process.
TLHostTransfer& hostTransfer();
