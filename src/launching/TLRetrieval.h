#pragma once

#include "launching/TLFarSide.h"
#include "launching/TLTransferWatch.h"

class TLSubTask;

/// One fetching of a step's files from its host, in one of three ways. Answers whether everything
/// that was there arrived: when it did, the directory there may go.
class TLRetrieval {
 public:
  /// With `expected` the directory of the run must still be there.
  TLRetrieval(TLSubTask& step, bool expected);

  /// Any step: argument by argument.
  bool fetchArguments();
  /// An unstructured run: the directory of its computation.
  bool fetchUnstructured();
  /// The shape optimiser: the whole directory of its run.
  bool fetchSculpt();

 private:
  /// `file` there is what `local` is here.
  int retrieveProject(const RWCString& file, const RWCString& local);
  void fetchMesh(const RWCString& mesh);
  void fetchBehind(const RWCString& stem, const RWCString& local, bool expected, bool walls);
  void clearBackup(const RWCString& path);

  TLSubTask& step_;
  TLFarSide far_;
  TLTransferWatch watch_;
  bool expected_;
};
