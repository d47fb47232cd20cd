#pragma once

#include <array>
#include <cstdint>

#include "textio/TLTextSink.h"
#include "textio/TLTextSource.h"

/// Settings of the solver's own partition of a mesh into virtual blocks: tasks and blocks per
/// process, balance targets and penalties, iteration control, and the sizes for the solver's
/// memory estimate. Nothing is computed from them here: the record keeps every value from file to
/// file, and hands the number of tasks to the solver. A plain value, copied freely.
class VPartParameters {
 public:
  VPartParameters() = default;
  VPartParameters(const VPartParameters&) = default;
  VPartParameters& operator=(const VPartParameters&) = default;
  virtual ~VPartParameters() = default;

  /// Copies all fields of `other`.
  void assign(const VPartParameters& other) { *this = other; }

  /// Reads the lines behind the block's opening line, up to and with its closing line or the end
  /// of the text. Starts from the defaults, so that absent keys keep them. 0 when the reader
  /// refuses a value, else 1.
  int read(TLTextSource& source);

  /// Writes one line per field. The block's markers are up to the record that holds this one.
  void write(TLTextSink& stream) const;

  /// Number of tasks of the partition.
  std::int32_t nbTasks() const { return nbTasks_; }
  /// Any number; the solver gets it as it is.
  void setNbTasks(std::int32_t count) { nbTasks_ = count; }
  /// True when the virtual partition is in use.
  bool isActivated() const { return activated != 0; }
  /// 1 puts the virtual partition to use, 0 out of it.
  void setActivated(std::int32_t value) { activated = value; }

  std::int32_t nbTasks_ = 1;            ///< Tasks of the partition.
  std::int32_t nbBlocksPerProcess = 8;  ///< Virtual blocks that each process gets.
  float balancing = 0.8F;               ///< Balance that is aimed at; 1 is perfect.
  std::array<float, 4> penalties = {1.0F, 0.2F, 0.2F, 0.05F};  ///< Weights of the partition cost.
  bool redBlackTree = true;               ///< Carried, as are all that have no other remark.
  bool workOnCoarseGrid = false;          ///< The partition is made on the coarse grid.
  bool partitionedRunfile = false;        ///< The run file is written by partition.
  std::int32_t nbConstantIteration = 10;  ///< Iterations without gain after which the search ends.
  double toleranceOfConstantIteration = 0.01;  ///< Gain below which an iteration has none.
  std::int32_t runComputation = 1;             ///< 1: the computation follows the partition.
  std::int32_t automaticMemoryEstimation = 1;  ///< 1: the solver sizes its memory itself.
  double integerRelaxation = 1.5;              ///< Margin on integer memory.
  double realRelaxation = 1.2;                 ///< Margin on real memory.
  std::uint64_t sizeI = 10000;                 ///< Integer memory size.
  std::uint64_t sizeD = 10000;                 ///< Real memory size.
  std::int32_t activated = 0;                  ///< 1: in use.
  bool writeSolutionOnPartition = false;       ///< Key "WRITE_SOLUTION_ON_PARTITON", so spelt.
  bool partitionNmb = true;                    ///< Non-matching connections are cut, too.
  double projectBufferSize = 0.0;              ///< Carried.
  std::int32_t mergeVirtualTopology = 0;       ///< 0 or 1. Carried.
};
