#pragma once

class TLSubTask;

/// Carries the files of a step to its host and back. All operations read the marks of the step's
/// `spawnArguments` and rewrite their values to paths on the far side.
class TLTransfer {
 public:
  virtual ~TLTransfer() = default;

  /// @name Before the start. transferStep and transferHexa_: 0 when the start may go on, else it
  /// has failed.
  /// @{
  virtual int transferStep(TLSubTask& step) = 0;   ///< any step, argument by argument
  virtual int transferHexa_(TLSubTask& step) = 0;  ///< an unstructured run
  /// The shape optimiser; 1 when the start may go on.
  virtual int transferSculpt(TLSubTask& step) = 0;
  /// @}

  /// @name Afterwards; answers as in taskengine/TLLauncher.h.
  /// @{

  /// Any step.
  virtual int retrieveResults(TLSubTask& step) = 0;
  /// An unstructured run.
  virtual int retrieveHexa_(TLSubTask& step) = 0;
  /// Nothing is brought back.
  virtual void removeRemoteDir(TLSubTask& step) = 0;
  /// The shape optimiser.
  virtual int removeRemoteResults(TLSubTask& step) = 0;
  /// @}
};

/// The one transfer of the process; before one is set, one that carries nothing: a step whose files
/// would have to go along fails to start.
TLTransfer& transfer();

/// Sets it. Not owned, must outlive its use; null for the one that carries nothing.
void setTransfer(TLTransfer* transfer);
