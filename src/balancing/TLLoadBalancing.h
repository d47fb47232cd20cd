#pragma once

#include <cstdint>
#include <map>
#include <string_view>
#include <vector>

#include "balancing/TLCoarsening.h"
#include "textio/Handle.h"
#include "textio/RWCString.h"
#include "textio/RefCounted.h"
#include "textio/TLTextSink.h"
#include "textio/TLTextSource.h"

class TLBlock;
class TLGrid;
class TLOutputs;
class TLParameters;
class TLProject;

/// Says on which processes a step's parallel computation runs: the names of the processes, the
/// process of each block, the queuing system to go through, and, for a design loop, the processes
/// of each design generation. Every sub-task embeds one; the task file keeps it as the block
/// "load_balancing". Processes and blocks count from 0.
class TLLoadBalancing : public RefCounted {
 public:
  /// One list of processes per design generation.
  using Generations = std::vector<std::vector<RWCString>>;

  /// Blocks that share processors, and these processors; all from 0.
  using DistributionMap = std::map<std::vector<std::int32_t>, std::vector<std::int32_t>>;

  TLLoadBalancing();
  /// Copies the lists by element; the mesh and the other records of `setup` are shared.
  TLLoadBalancing(const TLLoadBalancing& other);
  TLLoadBalancing& operator=(const TLLoadBalancing& other);  ///< As the copy.
  ~TLLoadBalancing() override;

  /// Copies all of `other`, the lists by element.
  virtual void assign(const TLLoadBalancing& other) { *this = other; }

  /// Reads the lines behind the block's opening line, up to and with its closing line or the end
  /// of the text. The lists are emptied first; scalars that the block doesn't tell keep their
  /// value. 0 when a value is refused or a list line has fewer items than its count; what was read
  /// until then stays.
  virtual int read(TLTextSource& source);

  /// Writes the lines of the block, without its markers.
  virtual void write(TLTextSink& stream) const;

  /// @name Distributing
  /// @{

  /// Takes mesh, coarsening and settings from a project file (or a run file). For an unstructured
  /// mesh also its map of partitions, as the mesh tool left it in the blocks' parameters, to which
  /// the processes are fitted; the map is traced on the console. False when the file can't be
  /// read; the record then is without mesh.
  bool setup(const RWCString& projectFile);
  /// The same from a project that has been read; false when it has no computation.
  bool setup(const TLProject& project);
  /// Distributes the blocks of the mesh over the processors of the queuing system, with the trace
  /// of TLPartition on the console. Does nothing unless a queuing system and the automatic balance
  /// are active and `setup` has found a mesh; a mesh that can't be distributed leaves the record
  /// as it was.
  void balance();
  /// Puts the blocks where `owners` says: processors from 1, by block. Blocks that this record or
  /// its mesh doesn't know are left out.
  void takeOwners(const std::vector<std::int32_t>& owners);
  /// Weight of `block` (from 0) in the distribution: its cells over all grid levels. 0 without a
  /// mesh, or for a block that it doesn't have.
  std::int32_t nbCells(std::int32_t block) const;
  /// How the computation coarsens the mesh.
  TLCoarsening coarsening() const;
  /// Processors to distribute over: those of the queuing system when it is active, else as many as
  /// there are names.
  std::int32_t nbProcessors() const;
  /// @}

  /// @name Processes
  /// @{

  /// Name of process `index`; "Undefined" when there is none.
  RWCString processName(std::int32_t index) const;
  /// Adds a process; its number is the count of names before.
  void addProcessName(const RWCString& name) { processNames.push_back(name); }
  /// Takes a process away. With a queuing system it is always the last one, and its blocks go to
  /// the one before. Without, it is process `index`, which must be at least 1: its blocks go to
  /// process 0, and the later processes move down one; another index does nothing.
  void removeProcess(std::int32_t index);
  /// Process of `block`; 0 for a block that the list doesn't know.
  std::int32_t processOfBlock(std::int32_t block) const;
  /// Puts `block` on `process`, and grows the list to reach it. Does nothing for a negative block,
  /// or for a process below 0 or above the number of processes (of the queuing system, when one is
  /// active, else of names).
  void setProcessOfBlock(std::int32_t block, std::int32_t process);
  /// Fits the list of blocks to `count`: new blocks are on process 0.
  void setNbBlocks(std::int32_t count);
  /// @}

  std::int32_t mpiSgi664 = 0;       ///< A launcher variant.
  std::int32_t nbGridLevels = 1;    ///< Grid levels summed for a block's load.
  std::int32_t multigridI = 1;      ///< Whether the direction coarsens with the level; J, K alike.
  std::int32_t multigridJ = 1;      ///< As `multigridI`.
  std::int32_t multigridK = 1;      ///< As `multigridI`.
  Handle<TLGrid> mesh;              ///< Set by `setup`, as are the next two.
  Handle<TLOutputs> outputs;        ///< What the computation gives out; null without.
  Handle<TLParameters> parameters;  ///< Solver parameters; null without.
  RWCString projectFile;            ///< The file that the distribution was set up from.
  float tolerance = 0.0F;           ///< Overload that the automatic balance allows at first.
  std::int32_t parallel = 0;        ///< 1 for a parallel run.
  std::int32_t gridLevelI = 0;      ///< Coarsening of the computation; J, K alike.
  std::int32_t gridLevelJ = 0;      ///< As `gridLevelI`.
  std::int32_t gridLevelK = 0;      ///< As `gridLevelI`.
  std::int32_t userSolverPrecision = 0;        ///< Of the computation: 1 double precision. Carried.
  std::int32_t maximumHarmonicsNumber = 0;     ///< Written, but never read back.
  std::int32_t mpiType = 2;                    ///< The MPI family.
  RWCString fluidType = "unknown";             ///< Of the computation ("Perfect Gas", ...).
  RWCString steamTablesPath = "unknown";       ///< Directory of the thermodynamic tables.
  std::int32_t nbQueuingSystemProcessor = 1;   ///< Processors asked of the queuing system.
  std::int32_t queuingSystemActivated = 0;     ///< 0 none, 1 SGE, 2 PBS, 3 LSF.
  RWCString queuingSystemQueue = "Undefined";  ///< Queue or parallel environment.
  RWCString queuingTemplate = "default_ompi";  ///< Name of the job script's template.
  std::int32_t compilerChoice = 0;             ///< 2: the "_mpich2" builds of the solver.
  std::int32_t automaticLoadBalancing = 1;     ///< 1: balance() may distribute the blocks.
  std::int32_t adjustProcessors = 1;  ///< 1: the balance may lower the number of processors.

  /// Copies of the owning step's host and login, which aren't part of the block.
  RWCString hostName;
  RWCString remoteLogin;  ///< Empty: the user's own name.

  std::vector<RWCString> processNames;     ///< Host or process name of each process.
  std::vector<std::int32_t> blockProcess;  ///< Process of each block.

  /// Partitions of an unstructured mesh; only `setup` fills these three.
  DistributionMap distributionMap;
  std::vector<std::int32_t> ncell_;  ///< Cells of the partition on each processor,
  std::vector<RWCString> partName_;  ///< and its name.

  std::vector<RWCString> designGenerations;  ///< Name of each design generation.
  Generations geomGeneration;                ///< Processes that make the geometry, per generation.
  Generations meshGeneration;                ///< Processes that make the mesh.
  Generations flowSolverGeneration;          ///< Processes of the flow solver.
  Generations postTreatmentGeneration;       ///< Processes that evaluate the flow.
  Generations feaMeshGeneration;             ///< Processes that mesh the structure.
  Generations feaSolverGeneration;           ///< Processes of the structural solver.
  Generations feaPostTreatmentGeneration;    ///< Processes that evaluate the structure.

 private:
  void removeLastQueuedProcess();
  bool readPartitions();
  void enterBlock(std::int32_t block, const std::vector<std::int32_t>& processors);
  void namePartitions();
  void splitBlock(std::int32_t block, std::size_t nbPartitions);
  void mergeBlocks(const std::vector<std::int32_t>& blocks);
  void addPartition(std::int32_t cells, const RWCString& name);
  void fitProcesses();
};
