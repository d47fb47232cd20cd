#include <iterator>

#include "project/TLAcoustic.h"
#include "project/TLAnsys.h"
#include "project/TLB2BParameters.h"
#include "project/TLBlockDependent.h"
#include "project/TLChemistryParameters.h"
#include "project/TLHarmonicData.h"
#include "project/TLInitSol.h"
#include "project/TLInitSolTurbo.h"
#include "project/TLInjectionSector.h"
#include "project/TLModal.h"
#include "project/TLMultiSpecies.h"
#include "project/TLNonDeterministicComputationManager.h"
#include "project/TLNonDeterministicData.h"
#include "project/TLOutputs.h"
#include "project/TLPerformanceCurve.h"
#include "project/TLProfile.h"
#include "project/TLThroughflowBlock.h"
#include "project/TLUncertaintyEntry.h"
#include "project/TLVolumicHeatSource.h"
#include "textio/TLNumbers.h"

// The forms of the kept blocks: names, failure text, version written, body of a new record.

namespace {

using Name = std::string_view;

constexpr std::string_view kAnyHeader = " wrong header: cannot determine version.";

constexpr Name kPerformanceCurveNames[] = {"performance_curve"};
constexpr TLKeptForm kPerformanceCurve{kPerformanceCurveNames,
                                       " wrong performance header: cannot determine block version",
                                       "1.0", "    VERSION                          1.0\n"};

constexpr Name kManagerNames[] = {"TLNonDeterministicComputationManager"};
constexpr Name kManagerComputation[] = {"computation_name"};
constexpr TLKeptField kManagerFields[] = {
    {kManagerComputation, TLKeptValue::text, "    COMPUTATION_NAME                 "}};
constexpr TLKeptForm kManager{kManagerNames,
                              " wrong TLNonDeterministicComputationManager header: cannot "
                              "determine TLNonDeterministicComputationManager version",
                              "1.0", "    VERSION                          1.0\n", kManagerFields};

constexpr Name kChemistryNames[] = {"chemistry_parameters"};
constexpr TLKeptForm kChemistry{
    kChemistryNames,
    " wrong ChemistryParameters header: cannot determine TLChemistryParameters version", "1.0",
    "      VERSION                        1.0\n"};

constexpr Name kMultiSpeciesNames[] = {"multispecies_properties"};
constexpr TLKeptForm kMultiSpecies{kMultiSpeciesNames, kAnyHeader, "",
                                   "      VERSION                        1.0\n"};

constexpr Name kAnsysNames[] = {"ansys_properties"};
constexpr TLKeptForm kAnsys{kAnsysNames, " wrong ANSYS header: cannot determine version", "1.0",
                            "      VERSION                        1.0\n"};

constexpr Name kAcousticNames[] = {"acoustic_data"};
constexpr TLKeptForm kAcoustic{kAcousticNames,
                               " wrong TLAcoustic header: cannot determine TLAcoustic version",
                               "5.0", "      VERSION                        5.0\n"};

constexpr Name kModalNames[] = {"modal_properties"};
constexpr TLKeptForm kModal{kModalNames, " wrong Modal header: cannot determine version", "",
                            "      VERSION                        1.0\n"};

constexpr Name kHarmonicNames[] = {"harmonic_data", "harmonic_disturber",
                                   "harmonic_inner_perturbation"};
constexpr TLKeptForm kHarmonic{kHarmonicNames, kAnyHeader, "", ""};

constexpr Name kHeatSourceNames[] = {"spherical_heat_source", "cylindrical_heat_source",
                                     "brick_heat_source", "domain_heat_source"};
constexpr Name kHeatSourceValue[] = {"heat_source_term"};
constexpr Name kHeatSourceCenter[] = {"center"};
constexpr Name kHeatSourceRadius[] = {"radius"};
enum HeatSourceField : std::size_t { kHeat, kCenter, kRadius };
constexpr TLKeptField kHeatSourceFields[] = {
    {kHeatSourceValue, TLKeptValue::text, "          HEAT_SOURCE_TERM           "},
    {kHeatSourceCenter, TLKeptValue::text, "          CENTER                     "},
    {kHeatSourceRadius, TLKeptValue::text, "          RADIUS                     "}};
constexpr TLKeptForm kHeatSource{kHeatSourceNames, kAnyHeader, "",
                                 "          VERSION                    1.0\n", kHeatSourceFields};

constexpr Name kThroughflowNames[] = {"throughflow_parameters"};
constexpr TLKeptForm kThroughflow{
    kThroughflowNames, " wrong physical entry header: cannot determine throughflow entry version",
    "", "          VERSION                    1.0\n"};

constexpr Name kB2BNames[] = {"solver_B2B_parameters"};
constexpr TLKeptForm kB2B{kB2BNames, kAnyHeader, "", "      VERSION                        1.0\n"};

constexpr Name kOutputsNames[] = {"output_parameters", "hexa_outputs"};
constexpr TLKeptForm kOutputs{kOutputsNames,
                              " wrong TLOutputs header: cannot determine TLOutputs version", "1.0",
                              "      VERSION                        1.0\n"};

constexpr Name kBlockDependentNames[] = {"block_dependent"};
constexpr TLKeptForm kBlockDependent{
    kBlockDependentNames,
    " wrong block dependent parameters header: cannot determine block dependent version", "1.0",
    "          VERSION                    1.0\n"};

constexpr Name kInitSolTurboNames[] = {"initial_solution_turbo"};
constexpr TLKeptForm kInitSolTurbo{
    kInitSolTurboNames,
    " wrong TLInitSolTurbo entry header: cannot determine TLInitSolTurbo entry version", "1.0",
    "        VERSION                      1.0\n"};

constexpr Name kUncertaintyNames[] = {"UncertaintyEntry"};
constexpr TLKeptForm kUncertainty{
    kUncertaintyNames, " wrong physical entry header: cannot determine physical entry version", "",
    "      VERSION                        1.0\n"};

constexpr Name kNonDeterministicDataNames[] = {"NonDeterministicData"};
constexpr TLKeptForm kNonDeterministicData{
    kNonDeterministicDataNames,
    " wrong TLNonDeterministicData header: cannot determine TLNonDeterministicData version", "",
    "                  VERSION               1.0\n"};

constexpr Name kProfileNames[] = {"time_profile_entry", "space_profile_entry",
                                  "frequency_profile_entry"};
constexpr TLKeptForm kProfile{kProfileNames,
                              " wrong profile entry header: cannot determine profile entry version",
                              "", "                  VERSION               1.0\n"};

constexpr Name kInjectionNames[] = {"injection_sector"};
constexpr Name kInjectionKind[] = {"kind", "type"};
constexpr TLKeptField kInjectionFields[] = {
    {kInjectionKind, TLKeptValue::integer, "      KIND                           "}};
constexpr TLKeptForm kInjection{
    kInjectionNames, " wrong TLInjectionSector header: cannot determine TLInjectionSector version",
    "5.0", "      VERSION                        5.0\n", kInjectionFields};

constexpr Name kInitSolNames[] = {"initial_solution"};
constexpr Name kInitSolKind[] = {"kind", "type"};
constexpr Name kInitSolPath[] = {"file", "path", "file_name"};
constexpr Name kInitSolGroup[] = {"group_name"};
constexpr Name kInitSolIndex[] = {"initial_solution_index"};
enum InitSolField : std::size_t { kKind, kPath, kGroup, kIndex };
constexpr TLKeptField kInitSolFields[] = {
    {kInitSolKind, TLKeptValue::word, "      KIND                           "},
    {kInitSolPath, TLKeptValue::text, "      FILE                           "},
    {kInitSolGroup, TLKeptValue::text, "      GROUP_NAME                     "},
    {kInitSolIndex, TLKeptValue::integer, "    INITIAL_SOLUTION_INDEX       "}};
constexpr TLKeptForm kInitSol{
    kInitSolNames, " wrong TLInitSol entry header: cannot determine TLInitSol entry version.", "",
    "      VERSION                        1.0\n", kInitSolFields};

RWCString orUnknown(RWCString text) {
  return text.empty() ? RWCString("unknown") : text;
}

RWCString asText(double value) {
  TLTextSink sink;
  sink << value;
  return sink.take();
}

}  // namespace

TLPerformanceCurve::TLPerformanceCurve() : TLKeptBlock(kPerformanceCurve) {}
TLChemistryParameters::TLChemistryParameters() : TLKeptBlock(kChemistry) {}
TLMultiSpecies::TLMultiSpecies() : TLKeptBlock(kMultiSpecies) {}
TLAnsys::TLAnsys() : TLKeptBlock(kAnsys) {}
TLAcoustic::TLAcoustic() : TLKeptBlock(kAcoustic) {}
TLModal::TLModal() : TLKeptBlock(kModal) {}
TLB2BParameters::TLB2BParameters() : TLKeptBlock(kB2B) {}
TLThroughflowBlock::TLThroughflowBlock() : TLKeptBlock(kThroughflow) {}
TLBlockDependent::TLBlockDependent() : TLKeptBlock(kBlockDependent) {}
TLInitSolTurbo::TLInitSolTurbo() : TLKeptBlock(kInitSolTurbo) {}
TLUncertaintyEntry::TLUncertaintyEntry() : TLKeptBlock(kUncertainty) {}
TLNonDeterministicData::TLNonDeterministicData() : TLKeptBlock(kNonDeterministicData) {}
TLHarmonicData::TLHarmonicData() : TLKeptBlock(kHarmonic) {}
TLProfile::TLProfile() : TLKeptBlock(kProfile) {}

TLVolumicHeatSource::TLVolumicHeatSource() : TLKeptBlock(kHeatSource) {}

void TLVolumicHeatSource::setSphere(double heat, const double (&center)[3], double radius) {
  setText(kHeat, asText(heat));
  setText(kCenter, asText(center[0]) + ' ' + asText(center[1]) + ' ' + asText(center[2]));
  setText(kRadius, asText(radius));
}

TLOutputs::TLOutputs() : TLKeptBlock(kOutputs) {}

std::vector<RWCString> TLOutputs::quantityNames() const {
  return innerValues("tlquantity", "name");
}

TLNonDeterministicComputationManager::TLNonDeterministicComputationManager()
    : TLKeptBlock(kManager) {}

RWCString TLNonDeterministicComputationManager::computationName() const {
  return text(0);
}

TLInjectionSector::TLInjectionSector() : TLKeptBlock(kInjection) {}

std::int32_t TLInjectionSector::kind() const {
  return integer(0, 0);
}

void TLInjectionSector::setKind(std::int32_t kind) {
  setText(0, std::to_string(kind));
}

TLInitSol::TLInitSol() : TLKeptBlock(kInitSol) {}

RWCString TLInitSol::kind() const {
  return orUnknown(text(kKind));
}
void TLInitSol::setKind(std::string_view kind) {
  setText(kKind, kind);
}
bool TLInitSol::isFile() const {
  return equalIgnoringCase(kind(), "file");
}
RWCString TLInitSol::path() const {
  return orUnknown(text(kPath));
}
void TLInitSol::setPath(std::string_view path) {
  setText(kPath, path);
}
RWCString TLInitSol::groupName() const {
  return orUnknown(text(kGroup));
}
void TLInitSol::setGroupName(std::string_view name) {
  setText(kGroup, name);
}
void TLInitSol::dropIndex() {
  dropField(kIndex);
}

void TLInitSol::addLine(std::string_view key, std::string_view value) {
  constexpr std::size_t kColumn = 37;
  std::string line = "      " + std::string(key);
  line.append(line.size() < kColumn ? kColumn - line.size() : 1, ' ').append(value) += '\n';
  appendLine(line);
}
