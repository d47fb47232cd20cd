#include "project/TLSubProject.h"

#include "platform/TLConsole.h"
#include "project/TLBanner.h"
#include "project/TLChildKeys.h"
#include "project/TLComputationConversions.h"
#include "project/TLFluidSettings.h"
#include "project/TLProject.h"
#include "project/TLSolverDefinitions.h"
#include "textio/TLKeyTable.h"

namespace {

using R = TLSubProject;
using T = TLTokenReader;

// Places of the keys that aren't written with the plain ones.
constexpr int kPlainLast = 99;
constexpr int kAcousticConfiguration = 100;

// Values with a form of their own -------------------------------------------------------------

TLKeyResult readReferenceFile(R& record, TLKeyContext& context) {
  RWCString path;
  if (context.reader.readStrings(context.line, path) == 0) return TLKeyResult::failed;
  record.referenceRunFile = TLFile(path);
  return TLKeyResult::next;
}

void writeReferenceFile(const R& record, TLTextSink& sink, std::string_view literal) {
  sink << literal << record.referenceRunFile.path() << '\n';
}

TLKeyResult readRelativeReferenceFile(R& record, TLKeyContext& context) {
  RWCString path;
  if (context.reader.readStrings(context.line, path) == 0) return TLKeyResult::failed;
  record.referenceRunFile = TLFile(TLProject::resolvePath(
      record.projectFile(), record.referenceRunFile.path(), path, record.subProjectFlag != 0));
  return TLKeyResult::next;
}

void writeRelativeReferenceFile(const R& record, TLTextSink& sink, std::string_view literal) {
  sink << literal
       << TLProject::makeRelative(record.projectFile(), record.referenceRunFile.path(),
                                  record.subProjectFlag != 0)
       << '\n';
}

struct RunningModeWord {
  std::string_view word;
  TLRunningMode mode;
};
constexpr RunningModeWord kRunningModes[] = {{"STOPPED", TLRunningMode::stopped},
                                             {"FOREGROUND", TLRunningMode::foreground},
                                             {"BACKGROUND", TLRunningMode::background}};

TLKeyResult readRunningMode(R& record, TLKeyContext& context) {
  TLTokens tokens(context.line);
  tokens.next();
  const auto word = tokens.next();
  if (word.empty()) {
    console() << " wrong running mode : cannot determine running mode\n" << std::flush;
    return TLKeyResult::failed;
  }
  record.runningMode = TLRunningMode::stopped;
  for (const auto& row : kRunningModes) {
    if (row.word == word) record.runningMode = row.mode;
  }
  return TLKeyResult::next;
}

void writeRunningMode(const R& record, TLTextSink& sink, std::string_view literal) {
  sink << literal << kRunningModes[static_cast<int>(record.runningMode)].word << '\n';
}

TLKeyResult readUnit(R& record, TLKeyContext& context) {
  RWCString name;
  std::int32_t index = 0;
  if (context.reader.readStringInteger(context.line, name, index) == 0) {
    return TLKeyResult::failed;
  }
  record.valueUnitsNames.push_back(std::move(name));
  record.valueUnitsIndices.push_back(index);
  return TLKeyResult::next;
}

void writeUnits(const R& record, TLTextSink& sink, std::string_view literal) {
  sink << "        START_UNITS_OF_THE_COMPUTATION      \n";
  for (std::size_t i = 0; i < record.valueUnitsNames.size(); ++i) {
    sink << literal << record.valueUnitsNames[i] << ' ' << record.valueUnitsIndices[i] << '\n';
  }
  sink << "        END_UNITS_OF_THE_COMPUTATION        \n";
}

TLKeyResult readHarmonicsPerRank(R& record, TLKeyContext& context) {
  return nextIf(context.reader.readInteger(context.line, record.nbHarmonicsPerRank.emplace_back()));
}

void writeHarmonicsPerRank(const R& record, TLTextSink& sink, std::string_view literal) {
  if (record.nbHarmonicsPerRank.empty()) sink << literal << "0\n";
  for (const auto number : record.nbHarmonicsPerRank) sink << literal << number << '\n';
}

void writeFluidName(const R& record, TLTextSink& sink, std::string_view literal) {
  sink << literal << TLFluidSettings::writtenName(record) << '\n';
}

void writeFluidType(const R& record, TLTextSink& sink, std::string_view literal) {
  sink << literal << TLFluidSettings::writtenType(record) << '\n';
}

void writeCoarseFlag(const R& record, TLTextSink& sink, std::string_view literal) {
  const auto& flag = record.coarseFlag;
  sink << literal << flag[0] << ' ' << flag[1] << ' ' << flag[2] << '\n';
}

void writeGridLevels(const R& record, TLTextSink& sink, std::string_view literal) {
  sink << literal << record.numberOfGridLevel << '\n';
}

// Rows ----------------------------------------------------------------------------------------

using Write = void (*)(const R&, TLTextSink&, std::string_view);

/// The row of a value that is written in a form of its own.
constexpr TLKey<R> writtenBy(TLKey<R> row, Write write) {
  row.write = write;
  return row;
}

/// Writer of a value that only computations of an uncertainty study write.
template <auto Member>
void writeIfNonDeterministic(const R& record, TLTextSink& sink, std::string_view literal) {
  if (record.isNonDeterministic()) sink << literal << record.*Member << '\n';
}

TLKeyResult passOver(R& /*record*/, TLKeyContext& /*context*/) {
  return TLKeyResult::next;
}

/// Row of one of the three reals of a value with its spread.
template <auto Value, auto Part>
constexpr TLKey<R> spreadKey(std::string_view word, int place, std::string_view literal) {
  return {word,
          "",
          [](R& record, TLKeyContext& context) {
            return nextIf(context.reader.readReal(context.line, (record.*Value).*Part));
          },
          place,
          literal,
          [](const R& record, TLTextSink& sink, std::string_view text) {
            sink << text << (record.*Value).*Part << '\n';
          }};
}

// Blocks --------------------------------------------------------------------------------------

TLKeyResult readVirtualPartition(R& record, TLKeyContext& context) {
  return nextIf(record.virtualPartition.read(context.source));
}

TLKeyResult readInitialSolution(R& record, TLKeyContext& context) {
  auto solution = makeHandle<TLInitSol>();
  if (solution->read(context.source) == 0) return TLKeyResult::failed;
  solution->dropIndex();
  record.initialSolutions.push_back(std::move(solution));
  return TLKeyResult::next;
}

TLKeyResult readSolverParameters(R& record, TLKeyContext& context) {
  auto parameters = makeHandle<TLParameters>();
  if (parameters->read(context.source) == 0) return TLKeyResult::failed;
  record.parameters = std::move(parameters);
  return TLKeyResult::next;
}

// Studies are one level deep: a file that goes on and on would use up the stack.
constexpr int kDeepest = 32;

TLKeyResult readChildComputation(R& record, TLKeyContext& context) {
  if (record.depth() == kDeepest) {
    console() << " too many computations within one another\n" << std::flush;
    return TLKeyResult::failed;
  }
  auto child = record.makeChild();
  if (child->read(context.source) == 0) return TLKeyResult::failed;
  record.nonDeterministicChildren.push_back(std::move(child));
  return TLKeyResult::next;
}

// The keys inside a shape optimiser's module are keys of the computation.
TLKeyResult enterModule(R& record, TLKeyContext& context) {
  if (T::lineHasToken(context.line, "sculpt3d")) return TLKeyResult::next;
  return skipBlock(record, context);
}

constexpr char kVersionFailure[] =
    " wrong computation header: cannot determine computation version";

using Spread = TLSpreadValue;

const TLKeyTable<R>& table() {
  static const TLKeyTable<R> keys(
      "computation",
      {
          // clang-format off
          versionKey<&R::version, kVersionFailure>(1,                      "    VERSION                          1210"),
          {"REFERENCE_RUN_FILE", "", &readReferenceFile, 2,                "    REFERENCE_RUN_FILE               ", &writeReferenceFile},
          {"RELATIVE_REFERENCE_RUN_FILE", "", &readRelativeReferenceFile, 3, "    RELATIVE_REFERENCE_RUN_FILE      ", &writeRelativeReferenceFile},
          valueKey<&R::position, &T::readInteger>("position", 4,           "    POSITION                         "),
          valueKey<&R::active, &T::readInteger>("active", 5,               "    ACTIVE                           "),
          valueKey<&R::nonDeterministicActive, &T::readInteger>("non_deterministic_active", 6,
                                                                           "    NON_DETERMINISTIC_ACTIVE         "),
          valueKey<&R::generalisedTransitionModel, &T::readInteger>("generalisedTransitionModel", 7,
                                                                           "    generalisedTransitionModel       "),
          valueKey<&R::gridLevelI, &T::readInteger>("grid_level_i", 8,     "    GRID_LEVEL_I                     "),
          valueKey<&R::pointer, &T::readReal>("POINTER", 9,                "    POINTER                          "),
          valueKey<&R::name, &T::readString>("name", 10,                   "    NAME                             "),
          valueKey<&R::gridLevelJ, &T::readInteger>("grid_level_j", 11,    "    GRID_LEVEL_J                     "),
          valueKey<&R::gridLevelK, &T::readInteger>("grid_level_k", 12,    "    GRID_LEVEL_K                     "),
          valueKey<&R::axisymmetric, &T::readToggle>("axisymmetric", 15,   "    AXISYMMETRIC                     "),
          valueKey<&R::autoGridMesh, &T::readToggle>("auto_grid_mesh", 16, "    AUTO_GRID_MESH                   "),
          valueKey<&R::axisymmetricAxis, &readArray3>("axisymmetric_axis", 17,
                                                                           "    AXISYMMETRIC_AXIS                "),
          spreadKey<&R::efficiency, &Spread::value>("Efficiency", 18,      "    Efficiency                       "),
          spreadKey<&R::efficiency, &Spread::mean>("Efficiency_mean", 19,  "    Efficiency_mean                  "),
          spreadKey<&R::efficiency, &Spread::variance>("Efficiency_variance", 20,
                                                                           "    Efficiency_variance              "),
          spreadKey<&R::pressureRatio, &Spread::value>("PressureRatio", 21, "    PressureRatio                    "),
          spreadKey<&R::pressureRatio, &Spread::mean>("PressureRatio_mean", 22,
                                                                           "    PressureRatio_mean               "),
          spreadKey<&R::pressureRatio, &Spread::variance>("PressureRatio_variance", 23,
                                                                           "    PressureRatio_variance           "),
          spreadKey<&R::perfCurvePressure, &Spread::value>("Perf_curve_Pressure", 24,
                                                                           "    Perf_curve_Pressure              "),
          spreadKey<&R::perfCurvePressure, &Spread::mean>("Perf_curve_Pressure_mean", 25,
                                                                           "    Perf_curve_Pressure_mean         "),
          spreadKey<&R::perfCurvePressure, &Spread::variance>("Perf_curve_Pressure_variance", 26,
                                                                           "    Perf_curve_Pressure_variance     "),
          spreadKey<&R::massFlow, &Spread::value>("Mass_flow", 27,         "    Mass_flow                        "),
          spreadKey<&R::massFlow, &Spread::mean>("Mass_flow_mean", 28,     "    Mass_flow_mean                   "),
          spreadKey<&R::massFlow, &Spread::variance>("Mass_flow_variance", 29,
                                                                           "    Mass_flow_variance               "),
          writtenBy(valueKey<&R::uncertaintyWeightFactor, &T::readReal>("uncertainty_weight_factor", 30,
                                                                           "    uncertainty_weight_factor        "),
                    &writeIfNonDeterministic<&R::uncertaintyWeightFactor>),
          writtenBy(valueKey<&R::uncertaintyGridType, &T::readInteger>("uncertainty_grid_type", 31,
                                                                           "    uncertainty_grid_type            "),
                    &writeIfNonDeterministic<&R::uncertaintyGridType>),
          writtenBy(valueKey<&R::fluidName, &T::readStrings>("fluid_name", 32,
                                                                           "    FLUID_NAME                       "),
                    &writeFluidName),
          writtenBy(valueKey<&R::fluidType, &T::readStrings>("fluid_type", 33,
                                                                           "    FLUID_TYPE                       "),
                    &writeFluidType),
          valueKey<&R::subtaskStatus, &T::readStrings>("subtask_status", 34, "    SUBTASK_STATUS                   "),
          valueKey<&R::steamTablesPath, &T::readStrings>("steam_tables_path", 35,
                                                                           "    STEAM_TABLES_PATH                "),
          valueKey<&R::fluidTime, &T::readInteger>("fluid_time"),
          valueKey<&R::startFromInitialSolutionFile, &T::readToggle>("start_from_initial_solution_file", 36,
                                                                           "    START_FROM_INITIAL_SOLUTION_FILE "),
          valueKey<&R::resetConvergenceHistory, &T::readToggle>("reset_convergence_history", 37,
                                                                           "    RESET_CONVERGENCE_HISTORY        "),
          valueKey<&R::initialResidualFile, &T::readString>("initial_residual_file", 38,
                                                                           "    INITIAL_RESIDUAL_FILE            "),
          valueKey<&R::initialSolutionFile, &T::readString>("initial_solution_file", 39,
                                                                           "    INITIAL_SOLUTION_FILE            "),
          valueKey<&R::userSolverPrecision, &T::readInteger>("user_solver_precision", 40,
                                                                           "    USER_SOLVER_PRECISION            "),
          valueKey<&R::multiRankUpdate, &T::readInteger>("multi_rank_update", 41,
                                                                           "    MULTI_RANK_UPDATE                "),
          valueKey<&R::maximumRank, &T::readInteger>("maximum_rank", 42,   "    MAXIMUM_RANK                     "),
          valueKey<&R::multirkPartial, &T::readInteger>("multirk_partial", 43,
                                                                           "    MULTIRK_PARTIAL                  "),
          valueKey<&R::maximumHarmonicsNumber, &T::readInteger>("maximum_harmonics_number", 44,
                                                                           "    MAXIMUM_HARMONICS_NUMBER         "),
          valueKey<&R::allHarmonicsOn, &T::readInteger>("all_hamonics_on", 45,
                                                                           "    ALL_HARMONICS_ON                 "),
          valueKey<&R::multiRankInteraction, &T::readInteger>("multi_rank_interaction", 46,
                                                                           "    MULTI_RANK_INTERACTION           "),
          valueKey<&R::maxOrderInteraction, &T::readInteger>("max_order_interaction", 47,
                                                                           "    MAX_ORDER_INTERACTION            "),
          valueKey<&R::memoryEstimationReal, &T::readReal>("memory_estimation_real", 48,
                                                                           "    MEMORY_ESTIMATION_REAL           "),
          valueKey<&R::memoryEstimationInteger, &T::readReal>("memory_estimation_integer", 49,
                                                                           "    MEMORY_ESTIMATION_INTEGER        "),
          valueKey<&R::automaticMemoryEstimation, &T::readToggle>("automatic_memory_estimation", 50,
                                                                           "    AUTOMATIC_MEMORY_ESTIMATION      "),
          valueKey<&R::residualsPerGroup, &T::readInteger>("residuals_per_group", 51,
                                                                           "    RESIDUALS_PER_GROUP                  "),
          valueKey<&R::lastUsedFluidRecord, &T::readInteger>("last_used_fluid_record", 52,
                                                                           "    LAST_USED_FLUID_RECORD           "),
          valueKey<&R::timeStepsChoice, &T::readInteger>("time_steps_choice", 53,
                                                                           "    TIME_STEPS_CHOICE                "),
          valueKey<&R::sweepsDefinition, &T::readInteger>("sweeps_definition", 54,
                                                                           "    SWEEPS_DEFINITION                "),
          {"running_mode", "", &readRunningMode, 55,                       "    RUNNING_MODE                     ", &writeRunningMode},
          {"value_units_name", "", &readUnit, 56,                          "           VALUE_UNITS_NAME                 ", &writeUnits},
          {"nb_harmonics_per_rank", "", &readHarmonicsPerRank, 57,         "           NB_HARMONICS_PER_RANK      ", &writeHarmonicsPerRank},
          valueKey<&R::acousticConfiguration, &T::readInteger>("acoustic_configuration", kAcousticConfiguration,
                                                                           " ACOUSTIC_CONFIGURATION "),
          // clang-format on
          childKey<&R::grid>("grid_bc"),
          childKey<&R::injectionSectors>("injection_sector"),
          childKey<&R::acoustic>("acoustic_data"),
          {"tl_begin", "virtual_partition", &readVirtualPartition},
          {"tl_begin", "initial_solution", &readInitialSolution},
          childKey<&R::bcParameters>("bc_parameters"),
          {"tl_begin", "solver_parameters", &readSolverParameters},
          childKey<&R::b2b>("solver_B2B_parameters"),
          childKey<&R::chemistry>("chemistry_parameters"),
          childKey<&R::outputs>("output_parameters"),
          childKey<&R::fluids>("fluid_parameters"),
          childKey<&R::fluidProperties>("fluid_properties"),
          childKey<&R::ansys>("ansys_properties"),
          {"tl_begin", "non_deterministic_computation", &readChildComputation},
          childKey<&R::modal>("modal_properties"),
          childKey<&R::uncertaintyEntries>("UncertaintyEntry"),
          {"tl_begin", "tl_module", &enterModule},
          {"tl_begin", "", &skipBlock<R>},
          // Written and never read. A count that is written under one word and read under another
          // is lost by a save and a reload.
          {"COARSE_FLAG", "", &passOver, 13, "    COARSE_FLAG                      ",
           &writeCoarseFlag},
          {"NUMBER_OF_GRID_LEVEL", "", &passOver, 14, "    NUMBER_OF_GRID_LEVEL             ",
           &writeGridLevels},
          {"ALL_HARMONICS_ON", "", &passOver},
          // Marks for people only.
          {"START_UNITS_OF_THE_COMPUTATION", "", &passOver},
          {"END_UNITS_OF_THE_COMPUTATION", "", &passOver},
          {"tl_end", "solver_parameters", &passOver},
      },
      {"computation", "non_deterministic_computation"});
  return keys;
}

// Sections ------------------------------------------------------------------------------------

/// The lines that name a section at its start and its end.
struct Section {
  std::string_view start;
  std::string_view end;
};

// clang-format off
constexpr Section kSolver{
    "#*******                START SOLVER PARAMETERS SECTION            ***********",
    "#*******                END  SOLVER PARAMETERS SECTION             ***********"};
constexpr Section kConditions{
    "#*******   START INITIAL SOLUTION AND BOUNDARY CONDITION SECTION   ***********",
    "#*******   END INITIAL SOLUTION AND BOUNDARY CONDITION SECTION     ***********"};
constexpr Section kB2B{
    "#*******                START BLADE-TO-BLADE PARAMETERS SECTION    ***********",
    "#*******                END  BLADE-TO-BLADE PARAMETERS SECTION     ***********"};
constexpr Section kChemistry{
    "#*******                START CHEMICAL PARAMETERS SECTION          ***********",
    "#*******                END  CHEMICAL PARAMETERS SECTION           ***********"};
constexpr Section kOutput{
    "#*******                START OUTPUT PARAMETERS SECTION            ***********",
    "#*******                END  OUTPUT PARAMETERS SECTION             ***********"};
constexpr Section kModal{
    "#*******                START MODAL PARAMETERS SECTION             ***********",
    "#*******                END  MODAL PARAMETERS SECTION              ***********"};
constexpr Section kGrid{
    "#*******                START GRID PARAMETERS SECTION              ***********",
    "#*******                END  GRID PARAMETERS SECTION               ***********"};
constexpr Section kFluid{
    "#*******                START FLUID SECTION                        ***********",
    "#*******                END  FLUID SECTION                         ***********"};

constexpr Section kInitialSolutions{
    "#            *********   BEGIN INITIAL SOLUTIONS LIST    *******              \n",
    "#            *********   END   INITIAL SOLUTIONS LIST    *******              \n"};
constexpr Section kConditionList{
    "#            *********   BEGIN BOUNDARY CONDITIONS LIST  *********            \n",
    "#            *********   END   BOUNDARY CONDITIONS LIST  *********            \n"};
// clang-format on

constexpr std::string_view kIndent = "    ";

/// Writes a section of one kind of block between its banners.
template <class Children>
void writeSection(TLTextSink& sink, const Section& section, const Children& children,
                  std::string_view name) {
  writeBanner(sink, section.start);
  if constexpr (requires { children.size(); }) {
    writeChildren(sink, children, kIndent, name);
  } else {
    writeChild(sink, children, kIndent, name);
  }
  writeBanner(sink, section.end);
}

/// Writes a list whose entries begin with their running index.
template <class Child>
void writeIndexed(TLTextSink& sink, const Section& section,
                  const std::vector<Handle<Child>>& children, std::string_view name,
                  std::string_view indexLiteral) {
  sink << section.start;
  for (std::size_t i = 0; i < children.size(); ++i) {
    sink << kIndent << "TL_BEGIN " << name << '\n' << indexLiteral << i << '\n';
    children[i]->write(sink);
    sink << kIndent << "TL_END   " << name << '\n';
  }
  sink << section.end;
}

void writeConditionSection(const R& record, TLTextSink& sink) {
  writeBanner(sink, kConditions.start);
  writeIndexed(sink, kInitialSolutions, record.initialSolutions, "initial_solution",
               "    INITIAL_SOLUTION_INDEX       ");
  writeIndexed(sink, kConditionList, record.bcParameters, "bc_parameters",
               "    BC_PARAMETERS_INDEX       ");
  writeChildren(sink, record.injectionSectors, kIndent, "injection_sector");
  table().write(record, sink, kAcousticConfiguration, kAcousticConfiguration);
  writeChild(sink, record.acoustic, kIndent, "acoustic_data");
  writeChildren(sink, record.uncertaintyEntries, kIndent, "UncertaintyEntry");
  writeChild(sink, record.virtualPartition, kIndent, "virtual_partition");
  writeBanner(sink, kConditions.end);
}

}  // namespace

TLSubProject::TLSubProject(std::int32_t type) : projectType(type), grid(makeHandle<TLGrid>(type)) {}

int TLSubProject::read(TLTextSource& source) {
  for (auto* list : {&valueUnitsIndices, &nbHarmonicsPerRank}) list->clear();
  valueUnitsNames.clear();
  injectionSectors.clear();
  initialSolutions.clear();
  bcParameters.clear();
  fluids.clear();
  nonDeterministicChildren.clear();
  uncertaintyEntries.clear();
  if (readBlock(*this, source, table()) == 0) return 0;
  finishRead();
  return 1;
}

void TLSubProject::write(TLTextSink& sink) const {
  TLFluidSettings::applyInjection(*this);
  table().write(*this, sink, 1, kPlainLast);
  TLFluidSettings::apply(*this);
  writeSection(sink, kSolver, parameters, "solver_parameters");
  writeConditionSection(*this, sink);
  writeSection(sink, kB2B, b2b, "solver_B2B_parameters");
  writeSection(sink, kChemistry, chemistry, "chemistry_parameters");
  writeSection(sink, kOutput, outputs, "output_parameters");
  writeSection(sink, kModal, modal, "MODAL_PROPERTIES");
  writeSection(sink, kGrid, grid, "grid_bc");
  writeBanner(sink, kFluid.start);
  writeChildren(sink, fluids, kIndent, "FLUID_PARAMETERS");
  writeChild(sink, fluidProperties, kIndent, "FLUID_PROPERTIES");
  writeBanner(sink, kFluid.end);
  writeChild(sink, ansys, kIndent, "ansys_properties");
  for (const auto& child : nonDeterministicChildren) {
    sink << "    TL_BEGIN non_deterministic_computation\n";
    child->write(sink);
    sink << "    TL_END non_deterministic_computation\n";
  }
}

std::int32_t TLSubProject::unitIndex(const RWCString& quantity) const {
  for (std::size_t i = 0; i < valueUnitsNames.size(); ++i) {
    if (T::sameTokens(valueUnitsNames[i], quantity)) return valueUnitsIndices[i];
  }
  return 0;
}

void TLSubProject::takeFluidOfFirstBlock() {
  if (grid->blocks.empty() || !grid->blocks.front()->fluid) return;
  fluidName = grid->blocks.front()->fluid->fluidName;
  fluidType = grid->blocks.front()->fluid->fluidType;
}

Handle<TLSubProject> TLSubProject::makeChild() const {
  auto child = makeHandle<TLSubProject>(projectType);
  child->setProjectFile(projectFile_);
  child->subProjectFlag = subProjectFlag;
  child->solverMode = solverMode;
  child->usesDefinitions = usesDefinitions;
  child->depth_ = depth_ + 1;
  return child;
}

void TLSubProject::finishRead() {
  if (!parameters) {
    parameters = makeHandle<TLParameters>();
    parameters->init();
  }
  parameters->virtualPartitionActivated = virtualPartition.isActivated() ? 1 : 0;
  grid->moveParametersTo(bcParameters);
  if (usesDefinitions) bringConditionsInLine();
  grid->linkParameters(bcParameters);
  convertComputation(*this);
}

void TLSubProject::bringConditionsInLine() {
  if (bcParameters.empty()) return;
  TLBCDataBase& base = TLSolverDefinitions::conditions(projectType, solverMode);
  for (auto& record : bcParameters) record = base.inLine(record);
}
