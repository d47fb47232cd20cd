#pragma once

#include <cstdint>
#include <functional>
#include <memory>

#include "launching/TLLaunchDraft.h"
#include "messaging/TLSteeringParameters.h"
#include "textio/Handle.h"

/// The run file of a flow solver as a launch needs it: read once, changed in memory, written back
/// as a whole. Before a good reading it stands for an empty project.
class TLRunFile {
 public:
  virtual ~TLRunFile() = default;

  /// Reads the project from `path`, with the parameter tables of an unstructured one if asked for.
  /// `good` of the answer is false when that failed.
  virtual TLRunFileFacts read(const RWCString& path, bool unstructuredTables) = 0;

  /// @name Changes. They do nothing to a project without a computation.
  /// @{
  virtual void setTaskCount(std::int32_t count) = 0;      ///< solver parameter NTASK
  virtual void setCommunication(std::int32_t value) = 0;  ///< solver parameter ICOMP
  /// Blocks of the first computation's grid.
  virtual std::int32_t blockCount() const = 0;
  /// Has the blocks distributed anew over the processes of `balancing`.
  virtual void balance(TLLoadBalancing& balancing) = 0;
  /// Each block's process number by its position from 0.
  virtual void setProcesses(const std::function<std::int32_t(std::int32_t)>& processOfBlock) = 0;
  /// What the solver makes room for, in integers and in reals.
  virtual void setMemory(std::int64_t integerSize, std::int64_t realSize) = 0;
  /// Keeps the step's set with the project; null for none. Not part of the file.
  virtual void storeSteering(const Handle<TLSteeringParameters>& steering) = 0;
  /// @}

  /// Writes the project to the path of the reading, in the place of the file as a whole.
  virtual void write() = 0;
};

/// One on the project records.
std::unique_ptr<TLRunFile> makeRunFile();
