#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "balancing/VPartParameters.h"
#include "parameters/TLBCParameters.h"
#include "parameters/TLFile.h"
#include "parameters/TLFluid.h"
#include "parameters/TLFluidProperties.h"
#include "parameters/TLParameters.h"
#include "project/TLAcoustic.h"
#include "project/TLAnsys.h"
#include "project/TLB2BParameters.h"
#include "project/TLChemistryParameters.h"
#include "project/TLGrid.h"
#include "project/TLInitSol.h"
#include "project/TLInjectionSector.h"
#include "project/TLModal.h"
#include "project/TLOutputs.h"
#include "project/TLUncertaintyEntry.h"
#include "textio/Handle.h"
#include "textio/RWCString.h"
#include "textio/RefCounted.h"
#include "textio/TLTextSink.h"
#include "textio/TLTextSource.h"

/// What a computation's process does at the moment.
enum class TLRunningMode : std::int32_t { stopped = 0, foreground = 1, background = 2 };

/// A real with its spread, as an uncertainty study finds it.
struct TLSpreadValue {
  double value = 0.0;     ///< Of the computation itself.
  double mean = 0.0;      ///< Over the computations of a study.
  double variance = 0.0;  ///< Over the same, in the value's unit squared.
};

/// One computation of a project (block "computation"): its settings, its solver parameters, fluids,
/// conditions, initial solutions, and the grid with its blocks. A computation may contain others
/// ("non_deterministic_computation").
///
/// Reading brings older files up to date (see TLComputationConversions); writing always gives the
/// current form, with the version 1210.
class TLSubProject : public RefCounted {
 public:
  /// An empty computation of a project of type `projectType`, with an empty grid. Its solver
  /// parameters come with the read.
  explicit TLSubProject(std::int32_t projectType);

  /// Reads the block's lines behind its opening line, up to and with its closing line. Solver
  /// parameters that the block lacks are those of the database. 1, or 0 with a complaint on the
  /// console when a value or a child can't be read.
  int read(TLTextSource& source);

  /// Writes the block without its opening and closing line. Settings of the solver parameters that
  /// depend on the fluid or on the injection sectors are brought in line first.
  void write(TLTextSink& sink) const;

  /// The file of the project that holds this computation: paths are told relative to it.
  void setProjectFile(const TLFile& file) { projectFile_ = file; }
  /// "/usr/unknown" as long as none was set.
  const TLFile& projectFile() const { return projectFile_; }

  /// Index of the unit in which values of the quantity `name` ("length") are; 0 when it has none.
  std::int32_t unitIndex(const RWCString& name) const;

  /// Takes name and type of the fluid over from that of the first block, if it has one.
  void takeFluidOfFirstBlock();

  /// An empty computation within this one, of its project and settings.
  Handle<TLSubProject> makeChild() const;

  /// How many computations this one stands in; more than 32 are refused in reading.
  int depth() const { return depth_; }

  /// True for a computation of an uncertainty study.
  bool isNonDeterministic() const { return nonDeterministicActive != 0; }

  /// Printed when the computation's version line holds no number.
  static constexpr const char* kVersionFailure =
      " wrong computation header: cannot determine computation version";
  /// The version that is written; older ones are converted.
  static constexpr double kCurrentVersion = 1210.0;

  double version = kCurrentVersion;  ///< what the file said
  std::int32_t projectType;          ///< A TLProjectType, passed on to the grid.
  std::int32_t subProjectFlag = 0;   ///< of the project; not 0: its directory lies a level deeper
  std::int32_t solverMode = 0;  ///< of the project; 1: automatic mode of the unstructured solver
  /// Whether conditions are brought in line with the definitions of the solver, which are loaded
  /// from VELSTRA_DIR when they aren't; without, conditions stay as they were read.
  bool usesDefinitions = true;
  std::int32_t lastUsed = 0;  ///< 1 for the computation that was used last

  /// @name Plain values, in the order of their keys.
  /// @{
  TLFile referenceRunFile;                  ///< Run of which this one is a variant; unknown: none.
  std::int32_t position = 0;                ///< In the interface's list. Carried.
  std::int32_t active = 0;                  ///< 1: chosen in the interface. Carried.
  std::int32_t nonDeterministicActive = 0;  ///< Not 0: part of an uncertainty study.
  std::int32_t generalisedTransitionModel = 0;  ///< Carried.
  std::int32_t gridLevelI = 0;  ///< Grid level that is computed on, along I; 0: the finest.
  double pointer = 0.0;         ///< An identification for the interface. Carried.
  RWCString name = "unknown";   ///< One word; tells computations apart.
  std::int32_t gridLevelJ = 0;  ///< The same along J.
  std::int32_t gridLevelK = 0;  ///< The same along K.
  std::array<std::int32_t, 3> coarseFlag{};  ///< written, never read
  std::int32_t numberOfGridLevel = 1;        ///< written, never read
  std::int32_t axisymmetric = 0;             ///< 0 or 1. Carried.
  std::int32_t autoGridMesh = 0;             ///< 0 or 1. Carried.
  std::array<double, 3> axisymmetricAxis{};  ///< Direction x, y, z.
  TLSpreadValue efficiency;                  ///< Figures of performance, 0 until known.
  TLSpreadValue pressureRatio;               ///< Without unit, as is the efficiency.
  TLSpreadValue perfCurvePressure;           ///< Pressure of its point on a performance curve.
  TLSpreadValue massFlow;                    ///< In the computation's units, as the pressure.
  double uncertaintyWeightFactor = 0.0;      ///< written for non-deterministic computations only
  std::int32_t uncertaintyGridType = 0;      ///< written for non-deterministic computations only
  RWCString fluidName = "unknown";           ///< Of the first fluid, when there is one.
  RWCString fluidType = "unknown";      ///< "Perfect Gas", "Incompressible", "Real Gas" and others.
  RWCString subtaskStatus = "unknown";  ///< How its last step ended. Carried.
  RWCString steamTablesPath = "unknown";          ///< Directory of thermodynamic tables, for steam.
  std::int32_t fluidTime = 0;                     ///< read, never written
  std::int32_t startFromInitialSolutionFile = 0;  ///< 0 or 1; see `initialSolutions`.
  std::int32_t resetConvergenceHistory = 0;       ///< 0 or 1. Carried.
  RWCString initialResidualFile = "unknown";      ///< Path; "unknown": none.
  RWCString initialSolutionFile = "unknown";      ///< Likewise; see `initialSolutions`.
  std::int32_t userSolverPrecision = 0;           ///< 1: double precision
  std::int32_t multiRankUpdate = 0;               ///< Carried, as are all of the harmonic method's.
  std::int32_t maximumRank = 0;                   ///< Most ranks of interaction between rows.
  std::int32_t multirkPartial = 0;                ///< A code of the solver.
  std::int32_t maximumHarmonicsNumber = 0;        ///< Most harmonics of all ranks.
  /// Read from "all_hamonics_on", written as "ALL_HARMONICS_ON": lost by a save and a reload.
  std::int32_t allHarmonicsOn = 0;
  std::int32_t multiRankInteraction = 0;       ///< A code of the solver.
  std::int32_t maxOrderInteraction = 0;        ///< Highest order of such an interaction.
  double memoryEstimationReal = 0.0;           ///< Real numbers that the solver makes place for.
  double memoryEstimationInteger = 0.0;        ///< Integers likewise.
  std::int32_t automaticMemoryEstimation = 0;  ///< 1: the solver finds both itself.
  std::int32_t residualsPerGroup = 0;          ///< 1: told by group of blocks. Carried.
  std::int32_t lastUsedFluidRecord = 0;        ///< Index of a fluid in the interface. Carried.
  std::int32_t timeStepsChoice = 0;            ///< Carried.
  std::int32_t sweepsDefinition = 0;           ///< Carried.
  /// As the file says; the running of a task doesn't change it.
  TLRunningMode runningMode = TLRunningMode::stopped;
  /// Units of this computation's values: names of quantities, and the index of each one's unit.
  std::vector<RWCString> valueUnitsNames;
  std::vector<std::int32_t> valueUnitsIndices;   ///< As many as there are names.
  std::vector<std::int32_t> nbHarmonicsPerRank;  ///< One line each; none is written as one 0.
  /// Code of the acoustic method; 0: none.
  std::int32_t acousticConfiguration = 0;
  /// @}

  /// @name Children. Handles are null until their block is read, apart from `grid`.
  /// @{
  Handle<TLGrid> grid;                                      ///< Never null.
  Handle<TLParameters> parameters;                          ///< Null before read().
  std::vector<Handle<TLInjectionSector>> injectionSectors;  ///< Cooling holes and slots.
  Handle<TLAcoustic> acoustic;       ///< Carried, as are all records kept as they stand.
  VPartParameters virtualPartition;  ///< Defaults until its block is read.
  /// Blocks point at them by index. Old files told them by block.
  std::vector<Handle<TLInitSol>> initialSolutions;
  /// Conditions of the grid point at them by index.
  std::vector<Handle<TLBCParameters>> bcParameters;
  Handle<TLB2BParameters> b2b;                ///< Inputs of a blade-to-blade computation.
  Handle<TLChemistryParameters> chemistry;    ///< Species and reactions.
  Handle<TLOutputs> outputs;                  ///< What the solver writes besides its solution.
  std::vector<Handle<TLFluid>> fluids;        ///< The first one is the computation's.
  Handle<TLFluidProperties> fluidProperties;  ///< Fluid of old files.
  Handle<TLAnsys> ansys;                      ///< Link to a structural code.
  /// Computations of the study that this one stands for.
  std::vector<Handle<TLSubProject>> nonDeterministicChildren;
  Handle<TLModal> modal;  ///< Deformation of structures by their modes.
  /// What varies in a study.
  std::vector<Handle<TLUncertaintyEntry>> uncertaintyEntries;
  /// @}

 private:
  void finishRead();
  void bringConditionsInLine();

  TLFile projectFile_;
  int depth_ = 0;
};
