#include "project/TLBlock.h"

#include <utility>

#include "parameters/TLIntegerEntry.h"
#include "parameters/TLVectorEntry.h"
#include "platform/TLConsole.h"
#include "project/TLBanner.h"
#include "project/TLBlockFluid.h"
#include "project/TLProjectType.h"
#include "textio/TLKeyTable.h"
#include "textio/TLVocabulary.h"

namespace {

using R = TLBlock;
using T = TLTokenReader;

constexpr std::string_view kRotationSpeed = "Block_Rotation_Speed";

constexpr TLVocabulary<TLBlockType, 3> kBlockTypes{
    " wrong Direction: cannot determine block type",
    {{{"fluid", "FLUID", TLBlockType::fluid},
      {"solid", "SOLID", TLBlockType::solid},
      {"throughflow", "THROUGHFLOW", TLBlockType::throughflow}}}};

constexpr TLVocabulary<TLDirection, 4> kDirections{
    " wrong Direction: cannot determine block Direction",
    {{{"none", "NONE", TLDirection::none},
      {"reverse_i", "REVERSE_I", TLDirection::reverseI},
      {"reverse_j", "REVERSE_J", TLDirection::reverseJ},
      {"reverse_k", "REVERSE_K", TLDirection::reverseK}}}};

constexpr TLVocabulary<TLRepetition, 4> kRepetitions{
    " wrong Repetition: cannot determine block Repetition",
    {{{"none", "NONE", TLRepetition::none},
      {"rotation", "ROTATION", TLRepetition::rotation},
      {"translation", "TRANSLATION", TLRepetition::translation},
      {"mirror", "MIRROR", TLRepetition::mirror}}}};

constexpr TLVocabulary<TLVelocityFitting, 2> kVelocityFittings{
    " wrong VelocityFitting: cannot determine block VelocityFitting",
    {{{"none", "NONE", TLVelocityFitting::none}, {"vm", "Vm", TLVelocityFitting::vm}}}};

constexpr TLVocabulary<TLPressureField, 2> kPressureFields{
    " wrong PressureField: cannot determine block PressureField",
    {{{"constant", "CONSTANT", TLPressureField::constant},
      {"radialequilibrium", "RADIALEQUILIBRIUM", TLPressureField::radialEquilibrium}}}};

// The order of the lines in the block; the gaps are other parts of it (see TLBlock::write).
enum Place {
  kVersion = 1,
  kName,
  kOldName,
  kBlockType,
  kGroups,
  kInitialSolutionIndex,
  kHexaFirst,
  kHexaLast = kHexaFirst + 20,
  kSizesFirst,
  kSizesLast = kSizesFirst + 30
};

TLKeyResult readGroup(R& block, TLKeyContext& context) {
  RWCString group;
  if (context.reader.readStrings(context.line, group) == 0) return TLKeyResult::failed;
  block.groupNames.push_back(std::move(group));
  return TLKeyResult::next;
}

void writeGroups(const R& block, TLTextSink& sink, std::string_view literal) {
  for (const auto& group : block.groupNames) sink << literal << group << '\n';
}

// "rotation_speed" of old files: the value alone.
TLKeyResult readOldRotationSpeed(R& block, TLKeyContext& context) {
  auto entry = makeHandle<TLRealEntry>();
  entry->name = kRotationSpeed;
  if (context.reader.readReal(context.line, entry->value) == 0) return TLKeyResult::failed;
  block.rotationSpeed = std::move(entry);
  return TLKeyResult::next;
}

// "solid_conductivity" of old files: the value alone, which is a constant.
TLKeyResult readOldConductivity(R& block, TLKeyContext& context) {
  auto entry = makeHandle<TLPhysicalEntry>("Solid Conductivity");
  entry->type = "constant";
  if (context.reader.readReal(context.line, entry->value) == 0) return TLKeyResult::failed;
  block.solidConductivity = std::move(entry);
  return TLKeyResult::next;
}

TLKeyResult readRotationSpeedLine(R& block, TLKeyContext& context) {
  auto entry = makeHandle<TLRealEntry>();
  if (entry->readLine(context.line) == 0) return TLKeyResult::failed;
  entry->name = kRotationSpeed;
  block.rotationSpeed = std::move(entry);
  return TLKeyResult::next;
}

void keepEntry(R& block, Handle<TLRealEntry> entry) {
  if (entry->name == kRotationSpeed) {
    block.rotationSpeed = std::move(entry);
  } else {
    block.entries.emplace_back(entry);
  }
}

template <class Entry>
TLKeyResult readEntryLine(R& block, TLKeyContext& context) {
  auto entry = makeHandle<Entry>();
  if (entry->readLine(context.line) == 0) return TLKeyResult::failed;
  if constexpr (std::is_same_v<Entry, TLRealEntry>) {
    keepEntry(block, std::move(entry));
  } else {
    block.entries.emplace_back(entry);
  }
  return TLKeyResult::next;
}

TLKeyResult readFullEntry(R& block, TLKeyContext& context) {
  auto entry = makeHandle<TLRealEntry>();
  if (entry->readBlock(context.source) == 0) return TLKeyResult::failed;
  keepEntry(block, std::move(entry));
  return TLKeyResult::next;
}

// The solid properties, in the order in which they are written, with the complaint of each.
struct SolidProperty {
  std::string_view name;
  Handle<TLPhysicalEntry> R::*member;
  const char* missing;
};
constexpr SolidProperty kSolidProperties[] = {
    {"Solid Conductivity", &R::solidConductivity, "TLBlock::write: solidConductivityPtr ZERO"},
    {"Solid Density", &R::solidDensity, "TLBlock::write: solidDensityPtr ZERO"},
    {"Solid Heat Capacity", &R::solidHeatCapacity, "TLBlock::write: solidHeatCapacityPtr ZERO"},
};

TLKeyResult readSolidProperty(R& block, TLKeyContext& context) {
  auto entry = makeHandle<TLPhysicalEntry>();
  if (entry->read(context.source) == 0) return TLKeyResult::failed;
  for (const auto& property : kSolidProperties) {
    if (entry->name == property.name) block.*property.member = entry;
  }
  return TLKeyResult::next;
}

constexpr char kHarmonicData[] = "harmonic_data";
constexpr char kHarmonicDisturber[] = "harmonic_disturber";
constexpr char kHarmonicInner[] = "harmonic_inner_perturbation";
constexpr char kSphere[] = "spherical_heat_source";
constexpr char kCylinder[] = "cylindrical_heat_source";
constexpr char kBrick[] = "brick_heat_source";
constexpr char kDomain[] = "domain_heat_source";

template <auto Member>
constexpr TLKey<R> integerKey(std::string_view word, int place, std::string_view literal) {
  return valueKey<Member, &T::readInteger>(word, place, literal);
}
template <auto Member>
constexpr TLKey<R> realKey(std::string_view word, int place, std::string_view literal) {
  return valueKey<Member, &T::readReal>(word, place, literal);
}
template <auto Member>
constexpr TLKey<R> vectorKey(std::string_view word, int place, std::string_view literal) {
  return valueKey<Member, &readArray3>(word, place, literal);
}
template <auto Member>
constexpr TLKey<R> directionKey(std::string_view word, int place, std::string_view literal) {
  return wordKey<Member, kDirections>(word, place, literal);
}

const TLKeyTable<R>& table() {
  constexpr int h = kHexaFirst;
  constexpr int s = kSizesFirst;
  static const TLKeyTable<R> keys(
      "block",
      {
          versionKey<&R::version, R::kVersionFailure>(kVersion,
                                                      "        VERSION                      3.0"),
          wordKey<&R::blockType, kBlockTypes>("block_type", kBlockType,
                                              "        BLOCK_TYPE                   "),
          {"group_name", "", &readGroup, kGroups, "        GROUP_NAME                   ",
           &writeGroups},
          valueKey<&R::fluidName, &T::readStrings>("fluid_name", h,
                                                   "        FLUID_NAME                     "),
          integerKey<&R::nbCells>("nb_cells", h + 1, "        NB_CELLS                       "),
          integerKey<&R::nbLeafCells>("nb_leaf_cells", h + 2,
                                      "        NB_LEAF_CELLS                  "),
          integerKey<&R::nbVertices>("nb_vertices", h + 3,
                                     "        NB_VERTICES                    "),
          integerKey<&R::nbAggloLevelsMax>("nb_agglo_levels_max", h + 4,
                                           "        NB_AGGLO_LEVELS_MAX            "),
          integerKey<&R::nbNegativeCells>("nb_negative_cells", h + 6,
                                          "        NB_NEGATIVE_CELLS              "),
          integerKey<&R::nbConcaveCells>("nb_concave_cells", h + 7,
                                         "        NB_CONCAVE_CELLS               "),
          integerKey<&R::nbTwistedCells>("nb_twisted_cells", h + 8,
                                         "        NB_TWISTED_CELLS               "),
          integerKey<&R::nbRelaxedCells>("nb_relaxed_cells", h + 9,
                                         "        NB_RELAXED_CELLS               "),
          integerKey<&R::is2D>("is_2d", h + 13, "        IS_2D                          "),
          realKey<&R::minimumNormalizedEdgeLength>("minimum_normalized_edge_length", h + 5,
                                                   "        MINIMUM_NORMALIZED_EDGE_LENGTH "),
          vectorKey<&R::skewnessValues>("skewness_values", h + 10,
                                        "        SKEWNESS_VALUES                "),
          vectorKey<&R::expansionRatioValues>("expansion_ratio_values", h + 11,
                                              "        EXPANSION_RATIO_VALUES         "),
          vectorKey<&R::aspectRatioValues>("aspect_ratio_values", h + 12,
                                           "        ASPECT_RATIO_VALUES            "),
          integerKey<&R::initialSolutionIndex>("initial_solution_index", kInitialSolutionIndex,
                                               "        INITIAL_SOLUTION_INDEX       "),
          integerKey<&R::nbChannels>("nb_channels", s + 22,
                                     "        NB_CHANNELS                  "),
          integerKey<&R::clockVar>("clock_var", s + 24, "        CLOCK_VAR                    "),
          integerKey<&R::periodicity>("periodicity", s + 11,
                                      "        PERIODICITY                  "),
          integerKey<&R::numberOfBlades>("number_of_blades", s + 9,
                                         "        NUMBER_OF_BLADES             "),
          integerKey<&R::numberOfRepetition>("number_of_repetition", s + 10,
                                             "        NUMBER_OF_REPETITION         "),
          integerKey<&R::imax>("imax", s, "        IMAX                         "),
          integerKey<&R::jmax>("jmax", s + 1, "        JMAX                         "),
          integerKey<&R::kmax>("kmax", s + 2, "        KMAX                         "),
          integerKey<&R::processId>("process_id", s + 21, "        PROCESS_ID                   "),
          realKey<&R::pitchDisplacement>("pitch_displacement", s + 23,
                                         "        PITCH_DISPLACEMENT           "),
          realKey<&R::initialTemperature>("initial_temperature", s + 13,
                                          "        INITIAL_TEMPERATURE          "),
          realKey<&R::initialPressure>("initial_pressure", s + 14,
                                       "        INITIAL_PRESSURE             "),
          realKey<&R::radialEquilibriumFactor>("radial_equilibrium_factor", s + 19,
                                               "        RADIAL_EQUILIBRIUM_FACTOR    "),
          valueKey<&R::name, &T::readStrings>("name", kName,
                                              "        NAME                         "),
          valueKey<&R::oldName, &T::readString>("old_name", kOldName,
                                                "        OLD_NAME\t\t       "),
          valueKey<&R::averageToggle, &T::readToggle>("average_toggle", s + 6,
                                                      "        AVERAGE_TOGGLE               "),
          valueKey<&R::initialSolutionTurbomachinery, &T::readToggle>(
              "initial_solution_turbomachinery", s + 12,
              "        INITIAL_SOLUTION_TURBOMACHINERY "),
          directionKey<&R::averageDirection>("average_direction", s + 7,
                                             "        AVERAGE_DIRECTION            "),
          directionKey<&R::streamwiseDirection>("streamwise_direction", s + 3,
                                                "        STREAMWISE_DIRECTION         "),
          directionKey<&R::spanwiseDirection>("spanwise_direction", s + 4,
                                              "        SPANWISE_DIRECTION           "),
          directionKey<&R::azimutalDirection>("azimutal_direction", s + 5,
                                              "        AZIMUTAL_DIRECTION           "),
          directionKey<&R::initialFlowDirection>("initial_flow_direction", s + 16,
                                                 "        INITIAL_FLOW_DIRECTION       "),
          {"rotation_speed", "", &readOldRotationSpeed},
          {"block_rotation_speed", "", &readRotationSpeedLine},
          {"solid_conductivity", "", &readOldConductivity},
          vectorKey<&R::initialVelocity>("initial_velocity", s + 15,
                                         "        INITIAL_VELOCITY             "),
          wordKey<&R::initialVelocityFitting, kVelocityFittings>(
              "initial_velocity_fitting", s + 17, "        INITIAL_VELOCITY_FITTING     "),
          wordKey<&R::initialPressureField, kPressureFields>(
              "initial_pressure_field", s + 18, "        INITIAL_PRESSURE_FIELD       "),
          wordKey<&R::repetition, kRepetitions>("repetition", s + 8,
                                                "        REPETITION                   "),
          {"vector_entry", "", &readEntryLine<TLVectorEntry>},
          {"real_entry", "", &readEntryLine<TLRealEntry>},
          {"integer_entry", "", &readEntryLine<TLIntegerEntry>},
          childKey<&R::faces>("face"),
          {"tl_begin", "real_entry_full", &readFullEntry},
          namedChildKey<&R::harmonics, kHarmonicData>(),
          namedChildKey<&R::harmonics, kHarmonicDisturber>(),
          namedChildKey<&R::harmonics, kHarmonicInner>(),
          childKey<&R::hexaParameters>("hexa_parameters"),
          childKey<&R::fluid>("fluid_parameters"),
          namedChildKey<&R::heatSources, kSphere>(),
          namedChildKey<&R::heatSources, kCylinder>(),
          namedChildKey<&R::heatSources, kBrick>(),
          namedChildKey<&R::heatSources, kDomain>(),
          childKey<&R::hexaOutputs>("hexa_outputs"),
          childKey<&R::hexaPartitions>("hexa_partition"),
          childKey<&R::blockDependents>("block_dependent"),
          childKey<&R::throughflow>("throughflow_parameters"),
          {"tl_begin", "physical_entry", &readSolidProperty},
          {"tl_begin", "", &skipBlock<R>},
          {"tl_end", "block", &endBlock<R>},
      });
  return keys;
}

constexpr std::string_view kIndent = "        ";
constexpr double kFirstWithFluid = 2.99;

}  // namespace

int TLBlock::read(TLTextSource& source) {
  groupNames.clear();
  faces.clear();
  entries.clear();
  heatSources.clear();
  hexaPartitions.clear();
  blockDependents.clear();
  harmonics.clear();
  if (readBlock(*this, source, table()) == 0) return 0;
  if (fluid && version < kFirstWithFluid && hexaParameters) {
    fillFluidFromHexaParameters(*fluid, *hexaParameters);
  }
  return 1;
}

void TLBlock::write(TLTextSink& sink) const {
  const auto& keys = table();
  keys.write(*this, sink, kVersion, kInitialSolutionIndex);
  if (hasHexaSections()) writeHexaSections(sink);
  writeChild(sink, throughflow, kIndent, "throughflow_parameters");
  writeRotationAndSolid(sink);
  keys.write(*this, sink, kSizesFirst, kSizesLast);
  writeChildren(sink, blockDependents, kIndent, "block_dependent");
  writeChildren(sink, faces, kIndent, "face");
}

bool TLBlock::hasHexaSections() const {
  if (projectType != TLProjectType::marine) return projectType == TLProjectType::hexa;
  return hexaParameters || fluid || hexaOutputs || !heatSources.empty() ||
         !hexaPartitions.empty() || nbCells != 0;
}

void TLBlock::writeHexaSections(TLTextSink& sink) const {
  const auto banner = [&sink](std::string_view line) { writeBanner(sink, line); };
  banner("#*******                START HEXA PARAMETERS SECTION              ***********");
  writeChild(sink, hexaParameters, kIndent, "hexa_parameters");
  banner("#*******                START FLUID SECTION                        ***********");
  writeChild(sink, fluid, kIndent, "FLUID_PARAMETERS");
  banner("#*******                START HEAT SOURCE TERMS SECTION            ***********");
  writeChildren(sink, heatSources, kIndent);
  banner("#*******                START HEXA OUTPUTS SECTION                 ***********");
  writeChild(sink, hexaOutputs, kIndent, "hexa_outputs");
  banner("#*******                START HEXA PARTITIONS SECTION              ***********");
  writeChildren(sink, hexaPartitions, kIndent, "hexa_partition");
  table().write(*this, sink, kHexaFirst, kHexaLast);
}

void TLBlock::writeRotationAndSolid(TLTextSink& sink) const {
  if (rotationSpeed) {
    sink << kIndent << "TL_BEGIN real_entry_full\n";
    rotationSpeed->writeFull(sink);
    sink << kIndent << "TL_END   real_entry\n";
  } else {
    console() << "TLBlock::write: ERROR !!! rotationSpeedPtr ZERO\n" << std::flush;
  }
  for (const auto& entry : entries) entry->write(sink);
  writeChildren(sink, harmonics, kIndent);
  if (blockType != TLBlockType::solid) return;
  for (const auto& property : kSolidProperties) {
    const auto& entry = this->*property.member;
    if (entry) {
      writeChild(sink, entry, kIndent, "physical_entry");
    } else {
      console() << property.missing << '\n' << std::flush;
    }
  }
}
