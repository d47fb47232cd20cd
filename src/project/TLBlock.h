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

/// What fills a block: a fluid, a solid with conduction only, or a throughflow model of a row.
enum class TLBlockType { fluid, solid, throughflow };
/// An index direction of a block, counted backwards; the codes are those of the solvers.
enum class TLDirection { none = 0, reverseI = 1, reverseJ = 2, reverseK = 3 };
/// How the mesh repeats beyond its periodic sides.
enum class TLRepetition { none, rotation, translation, mirror };
/// How the initial velocity is fitted: as given, or to the meridional velocity ("Vm").
enum class TLVelocityFitting { none, vm };
/// How the initial pressure varies: not at all, or with the radius by radial equilibrium.
enum class TLPressureField { constant, radialEquilibrium };

/// One block of a mesh with its sizes, faces and settings ("block"). The settings of the
/// unstructured solver (hexa parameters, fluid, heat sources, outputs, partitions, mesh quality)
/// are written for HEXA projects, and for
/// MARINE ones where a block has any.
class TLBlock : public RefCounted {
 public:
  /// An empty fluid block for a project of this type (a TLProjectType).
  explicit TLBlock(std::int32_t projectType) : projectType(projectType) {}

  /// Reads the block's lines behind its opening line. 0 with a complaint on the console on failure.
  int read(TLTextSource& source);
  /// Complains on the console of a rotation speed or solid property that is missing, and goes on.
  void write(TLTextSink& sink) const;

  /// The first group of the block, or "unknown".
  RWCString groupName() const { return groupNames.empty() ? "unknown" : groupNames.front(); }

  /// Printed when the block's version line holds no number.
  static constexpr char kVersionFailure[] = " wrong block header: cannot determine block version";

  double version = 3.0;               ///< As read; 3.0 is what is written.
  std::int32_t projectType;           ///< A TLProjectType: decides which sections are written.
  RWCString name = "unknown";         ///< "unknown" as long as no line tells it.
  RWCString oldName = "unknown";      ///< Name before the last renaming, or "unknown".
  std::vector<RWCString> groupNames;  ///< Groups that the block belongs to, one a line of the file.
  /// A solid counts a third of its cells in the balance.
  TLBlockType blockType = TLBlockType::fluid;
  std::int32_t imax = 9;  ///< numbers of nodes
  std::int32_t jmax = 9;  ///< Nodes along J.
  std::int32_t kmax = 9;  ///< Nodes along K.
  /// Index direction that follows the flow.
  TLDirection streamwiseDirection = TLDirection::reverseJ;
  TLDirection spanwiseDirection = TLDirection::reverseK;  ///< Index direction from hub to shroud.
  TLDirection azimutalDirection = TLDirection::none;      ///< Index direction around the axis.
  /// Index direction of the initial velocity.
  TLDirection initialFlowDirection = TLDirection::none;
  TLDirection averageDirection = TLDirection::none;  ///< Index direction of averages. Carried.
  std::int32_t averageToggle = 0;  ///< 0 or 1. Carried, as is all of the repetition.
  /// How the mesh goes on beyond its periodic sides.
  TLRepetition repetition = TLRepetition::none;
  std::int32_t numberOfBlades = 0;         ///< Blades of the row; 0: not told.
  std::int32_t numberOfRepetition = 1;     ///< 1: the block stands for itself.
  std::int32_t periodicity = 0;            ///< 0: not told.
  std::int32_t initialSolutionIndex = -1;  ///< -1: none
  std::int32_t processId = -1;             ///< -1: not yet distributed
  std::int32_t nbChannels = 1;             ///< Blade passages that the block stands for.
  double pitchDisplacement = 0.0;          ///< Shift against the neighbour row. Carried.
  std::int32_t clockVar = 0;               ///< Code of the row's clocking. Carried.
  /// 1: from turbomachinery data. See initialSolutionIndex.
  std::int32_t initialSolutionTurbomachinery = 0;
  double initialTemperature = 0.0;          ///< In the computation's units, as the next two.
  double initialPressure = 0.0;             ///< One value for all of the block.
  std::array<double, 3> initialVelocity{};  ///< Components x, y, z.
  TLVelocityFitting initialVelocityFitting = TLVelocityFitting::none;  ///< Carried, as is the next.
  /// Whether the factor below holds.
  TLPressureField initialPressureField = TLPressureField::constant;
  double radialEquilibriumFactor = 0.0;  ///< Weight of the radial equilibrium; 0: none.

  /// @name Mesh quality of an unstructured block.
  /// @{
  RWCString fluidName = "unknown";  ///< Name of the block's fluid, or "unknown".
  std::int32_t nbCells = 0;         ///< Cells; the weight of an unstructured block.
  std::int32_t nbLeafCells = 0;     ///< Those of its cells that aren't refined further.
  std::int32_t nbVertices = 0;      ///< Mesh vertices.
  /// Most levels of agglomeration (multigrid) that the mesh allows.
  std::int32_t nbAggloLevelsMax = 0;
  double minimumNormalizedEdgeLength = 0.0;      ///< Shortest edge, without unit.
  std::int32_t nbNegativeCells = 0;              ///< Cells of negative volume.
  std::int32_t nbConcaveCells = 0;               ///< Cells that aren't convex.
  std::int32_t nbTwistedCells = 0;               ///< Cells with faces crossed.
  std::int32_t nbRelaxedCells = 0;               ///< Cells that the mesher moved off its ideal.
  std::array<double, 3> skewnessValues{};        ///< Three figures, as the mesher computed them.
  std::array<double, 3> expansionRatioValues{};  ///< Likewise.
  std::array<double, 3> aspectRatioValues{};     ///< Likewise.
  /// 1: one layer of cells, a plane mesh.
  std::int32_t is2D = 0;
  /// @}

  std::vector<Handle<TLFace>> faces;  ///< In the order of the file; a structured block has six.
  /// From the lines "real_entry", "integer_entry", "vector_entry".
  std::vector<Handle<TLEntry>> entries;
  Handle<TLHexaParameters> hexaParameters;  ///< Settings of the unstructured solver; null: none.
  Handle<TLFluid> fluid;                    ///< The unstructured block's own fluid; null: none.
  Handle<TLOutputs> hexaOutputs;  ///< What the unstructured solver gives out here; null: none.
  /// Each with the name of its kind of block.
  std::vector<TLNamedChild<TLVolumicHeatSource>> heatSources;
  /// Partitions that the mesh tool cut the block into.
  std::vector<Handle<TLHexaPartition>> hexaPartitions;
  std::vector<Handle<TLBlockDependent>> blockDependents;  ///< Carried.
  /// Null unless the block is of that type or has its settings.
  Handle<TLThroughflowBlock> throughflow;
  /// Each with the name of its kind of block, three of which share this class.
  std::vector<TLNamedChild<TLHarmonicData>> harmonics;
  Handle<TLRealEntry> rotationSpeed;  ///< named "Block_Rotation_Speed"
  /// Named "Solid Conductivity", as the next two are; null: none.
  Handle<TLPhysicalEntry> solidConductivity;
  Handle<TLPhysicalEntry> solidDensity;       ///< "Solid Density".
  Handle<TLPhysicalEntry> solidHeatCapacity;  ///< "Solid Heat Capacity".

 private:
  bool hasHexaSections() const;
  void writeHexaSections(TLTextSink& sink) const;
  void writeRotationAndSolid(TLTextSink& sink) const;
};
