#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "parameters/TLEntry.h"
#include "parameters/TLFluid.h"
#include "parameters/TLHexaParameters.h"
#include "parameters/TLPhysicalEntry.h"
#include "parameters/TLRealEntry.h"
#include "project/TLBlockDependent.h"
#include "project/TLChildKeys.h"
#include "project/TLFace.h"
#include "project/TLHarmonicData.h"
#include "project/TLHexaPartition.h"
#include "project/TLOutputs.h"
#include "project/TLThroughflowBlock.h"
#include "project/TLVolumicHeatSource.h"
#include "textio/Handle.h"
#include "textio/RWCString.h"
#include "textio/RefCounted.h"
#include "textio/TLTextSink.h"
#include "textio/TLTextSource.h"

enum class TLBlockType { fluid, solid, throughflow };
enum class TLDirection { none = 0, reverseI = 1, reverseJ = 2, reverseK = 3 };
enum class TLRepetition { none, rotation, translation, mirror };
enum class TLVelocityFitting { none, vm };
enum class TLPressureField { constant, radialEquilibrium };

/// One block of a mesh with its sizes, faces and settings ("block"). The settings of the
/// unstructured solver (hexa parameters, fluid, heat sources, outputs, partitions, mesh quality)
/// are written for HEXA projects, and for
/// MARINE ones where a block has any.
class TLBlock : public RefCounted {
 public:
  explicit TLBlock(std::int32_t projectType) : projectType(projectType) {}

  /// Reads the block's lines behind its opening line. 0 with a complaint on the console on failure.
  int read(TLTextSource& source);
  /// Complains on the console of a rotation speed or solid property that is missing, and goes on.
  void write(TLTextSink& sink) const;

  /// The first group of the block, or "unknown".
  RWCString groupName() const { return groupNames.empty() ? "unknown" : groupNames.front(); }

  static constexpr char kVersionFailure[] = " wrong block header: cannot determine block version";

  double version = 3.0;
  std::int32_t projectType;
  RWCString name = "unknown";
  RWCString oldName = "unknown";
  std::vector<RWCString> groupNames;
  TLBlockType blockType = TLBlockType::fluid;
  std::int32_t imax = 9;  ///< numbers of nodes
  std::int32_t jmax = 9;
  std::int32_t kmax = 9;
  TLDirection streamwiseDirection = TLDirection::reverseJ;
  TLDirection spanwiseDirection = TLDirection::reverseK;
  TLDirection azimutalDirection = TLDirection::none;
  TLDirection initialFlowDirection = TLDirection::none;
  TLDirection averageDirection = TLDirection::none;
  std::int32_t averageToggle = 0;
  TLRepetition repetition = TLRepetition::none;
  std::int32_t numberOfBlades = 0;
  std::int32_t numberOfRepetition = 1;
  std::int32_t periodicity = 0;
  std::int32_t initialSolutionIndex = -1;  ///< -1: none
  std::int32_t processId = -1;             ///< -1: not yet distributed
  std::int32_t nbChannels = 1;
  double pitchDisplacement = 0.0;
  std::int32_t clockVar = 0;
  std::int32_t initialSolutionTurbomachinery = 0;
  double initialTemperature = 0.0;
  double initialPressure = 0.0;
  std::array<double, 3> initialVelocity{};
  TLVelocityFitting initialVelocityFitting = TLVelocityFitting::none;
  TLPressureField initialPressureField = TLPressureField::constant;
  double radialEquilibriumFactor = 0.0;

  /// @name Mesh quality of an unstructured block.
  /// @{
  RWCString fluidName = "unknown";
  std::int32_t nbCells = 0;
  std::int32_t nbLeafCells = 0;
  std::int32_t nbVertices = 0;
  std::int32_t nbAggloLevelsMax = 0;
  double minimumNormalizedEdgeLength = 0.0;
  std::int32_t nbNegativeCells = 0;
  std::int32_t nbConcaveCells = 0;
  std::int32_t nbTwistedCells = 0;
  std::int32_t nbRelaxedCells = 0;
  std::array<double, 3> skewnessValues{};
  std::array<double, 3> expansionRatioValues{};
  std::array<double, 3> aspectRatioValues{};
  std::int32_t is2D = 0;
  /// @}

  std::vector<Handle<TLFace>> faces;
  std::vector<Handle<TLEntry>> entries;
  Handle<TLHexaParameters> hexaParameters;
  Handle<TLFluid> fluid;
  Handle<TLOutputs> hexaOutputs;
  std::vector<TLNamedChild<TLVolumicHeatSource>> heatSources;
  std::vector<Handle<TLHexaPartition>> hexaPartitions;
  std::vector<Handle<TLBlockDependent>> blockDependents;
  Handle<TLThroughflowBlock> throughflow;
  std::vector<TLNamedChild<TLHarmonicData>> harmonics;
  Handle<TLRealEntry> rotationSpeed;  ///< named "Block_Rotation_Speed"
  Handle<TLPhysicalEntry> solidConductivity;
  Handle<TLPhysicalEntry> solidDensity;
  Handle<TLPhysicalEntry> solidHeatCapacity;

 private:
  bool hasHexaSections() const;
  void writeHexaSections(TLTextSink& sink) const;
  void writeRotationAndSolid(TLTextSink& sink) const;
};
