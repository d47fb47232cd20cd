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
  double value = 0.0;
  double mean = 0.0;
  double variance = 0.0;
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
  const TLFile& projectFile() const { return projectFile_; }

  /// Index of the unit in which values of the quantity `name` ("length") are; 0 when it has none.
  std::int32_t unitIndex(const RWCString& name) const;

  /// Takes name and type of the fluid over from that of the first block, if it has one.
  void takeFluidOfFirstBlock();

  /// An empty computation within this one, of its project and settings.
  Handle<TLSubProject> makeChild() const;

  bool isNonDeterministic() const { return nonDeterministicActive != 0; }

  static constexpr const char* kVersionFailure =
      " wrong computation header: cannot determine computation version";
  static constexpr double kCurrentVersion = 1210.0;

  double version = kCurrentVersion;  ///< what the file said
  std::int32_t projectType;
  std::int32_t subProjectFlag = 0;  ///< of the project; not 0: its directory lies a level deeper
  std::int32_t solverMode = 0;  ///< of the project; 1: automatic mode of the unstructured solver
  /// Whether conditions are brought in line with the definitions of the solver, which are loaded
  /// from VELSTRA_DIR when they aren't; without, conditions stay as they were read.
  bool usesDefinitions = true;
  std::int32_t lastUsed = 0;  ///< 1 for the computation that was used last

  /// @name Plain values, in the order of their keys.
  /// @{
  TLFile referenceRunFile;
  std::int32_t position = 0;
  std::int32_t active = 0;
  std::int32_t nonDeterministicActive = 0;
  std::int32_t generalisedTransitionModel = 0;
  std::int32_t gridLevelI = 0;
  double pointer = 0.0;
  RWCString name = "unknown";
  std::int32_t gridLevelJ = 0;
  std::int32_t gridLevelK = 0;
  std::array<std::int32_t, 3> coarseFlag{};  ///< written, never read
  std::int32_t numberOfGridLevel = 1;        ///< written, never read
  std::int32_t axisymmetric = 0;
  std::int32_t autoGridMesh = 0;
  std::array<double, 3> axisymmetricAxis{};
  TLSpreadValue efficiency;
  TLSpreadValue pressureRatio;
  TLSpreadValue perfCurvePressure;
  TLSpreadValue massFlow;
  double uncertaintyWeightFactor = 0.0;  ///< written for non-deterministic computations only
  std::int32_t uncertaintyGridType = 0;  ///< written for non-deterministic computations only
  RWCString fluidName = "unknown";
  RWCString fluidType = "unknown";
  RWCString subtaskStatus = "unknown";
  RWCString steamTablesPath = "unknown";
  std::int32_t fluidTime = 0;  ///< read, never written
  std::int32_t startFromInitialSolutionFile = 0;
  std::int32_t resetConvergenceHistory = 0;
  RWCString initialResidualFile = "unknown";
  RWCString initialSolutionFile = "unknown";
  std::int32_t userSolverPrecision = 0;  ///< 1: double precision
  std::int32_t multiRankUpdate = 0;
  std::int32_t maximumRank = 0;
  std::int32_t multirkPartial = 0;
  std::int32_t maximumHarmonicsNumber = 0;
  /// Read from "all_hamonics_on", written as "ALL_HARMONICS_ON": lost by a save and a reload.
  std::int32_t allHarmonicsOn = 0;
  std::int32_t multiRankInteraction = 0;
  std::int32_t maxOrderInteraction = 0;
  double memoryEstimationReal = 0.0;
  double memoryEstimationInteger = 0.0;
  std::int32_t automaticMemoryEstimation = 0;
  std::int32_t residualsPerGroup = 0;
  std::int32_t lastUsedFluidRecord = 0;
  std::int32_t timeStepsChoice = 0;
  std::int32_t sweepsDefinition = 0;
  TLRunningMode runningMode = TLRunningMode::stopped;
  /// Units of this computation's values: names of quantities, and the index of each one's unit.
  std::vector<RWCString> valueUnitsNames;
  std::vector<std::int32_t> valueUnitsIndices;
  std::vector<std::int32_t> nbHarmonicsPerRank;
  std::int32_t acousticConfiguration = 0;
  /// @}

  /// @name Children. Handles are null until their block is read, apart from `grid`.
  /// @{
  Handle<TLGrid> grid;
  Handle<TLParameters> parameters;
  std::vector<Handle<TLInjectionSector>> injectionSectors;
  Handle<TLAcoustic> acoustic;
  VPartParameters virtualPartition;
  std::vector<Handle<TLInitSol>> initialSolutions;
  std::vector<Handle<TLBCParameters>> bcParameters;
  Handle<TLB2BParameters> b2b;
  Handle<TLChemistryParameters> chemistry;
  Handle<TLOutputs> outputs;
  std::vector<Handle<TLFluid>> fluids;
  Handle<TLFluidProperties> fluidProperties;
  Handle<TLAnsys> ansys;
  std::vector<Handle<TLSubProject>> nonDeterministicChildren;
  Handle<TLModal> modal;
  std::vector<Handle<TLUncertaintyEntry>> uncertaintyEntries;
  /// @}

 private:
  void finishRead();
  void bringConditionsInLine();

  TLFile projectFile_;
};
