#include "launching/TLProgramNames.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace {

constexpr auto kSolvers = std::to_array<std::string_view>({
    "velstraTurbo_par",
    "velstraTurbo",
    "velstraTurbodp",
    "mpirun.exe",
    "mpiexec.exe",
    "velstra_par.exe",
    "velstra_par",
    "velstra.exe",
    "velstra",
    "velstradp.exe",
    "velstradp",
    "velstrax86_64.exe",
    "velstrax86_64",
    "velstradpx86_64.exe",
    "velstradpx86_64",
    "velstraTurbo_parallel_MPISGI664",
    "dorvEX",
    "dorvex_parallel",
    "dorvex.exe",
    "lumbrakesp",
    "lumbrakesp_parallel",
    "lumbrakesp.exe",
    "lumbrakedp",
    "lumbrakedp_parallel",
    "lumbrakedp.exe",
    "lumbrakehp",
    "lumbrakehp_parallel",
    "lumbrakehp.exe",
    "lumbrakespx86_64.exe",
    "lumbrakehpx86_64.exe",
    "lumbrakedpx86_64.exe",
    "lumbrakesp_impix86_64.exe",
    "lumbrakehp_impix86_64.exe",
    "lumbrakedp_impix86_64.exe",
    "dorvex",
});
constexpr auto kFwh =
    std::to_array<std::string_view>({"fwh", "fwh.exe", "fwhx86_64", "fwhx86_64.exe"});
constexpr auto kMeshers =
    std::to_array<std::string_view>({"zyv", "zyv.exe", "zyvx86_64", "zyvx86_64.exe"});
constexpr auto kPostProcessors =
    std::to_array<std::string_view>({"sorvit", "sorvit.exe", "sorvitx86_64", "sorvitx86_64.exe"});
constexpr auto kSculpt = std::to_array<std::string_view>(
    {"sculpt3d", "sculpt3d.exe", "sculpt3dx86_64.exe", "sculpt3d_parallel"});
constexpr auto kHybridMeshers =
    std::to_array<std::string_view>({"bramoshhybrid", "bramoshhybrid.exe"});
constexpr auto kOofelie = std::to_array<std::string_view>(
    {"oofelie", "oofelie.sh", "oofeliempi.sh", "oofelie.cmd", "oofelie.exe"});
constexpr auto kTessaly = std::to_array<std::string_view>({"tessaly", "tessaly.exe"});
constexpr auto kFileConvert =
    std::to_array<std::string_view>({"bramoshfileconvert", "bramoshfileconvert.exe"});
constexpr auto kBramosh = std::to_array<std::string_view>({"bramosh", "bramosh.exe"});
constexpr auto kMire = std::to_array<std::string_view>({"mire", "mire_open.exe"});
constexpr auto kMarineSteps =
    std::to_array<std::string_view>({"QUOREL_CFD", "PREMETIS", "BRAMOSH2QUOREL", "QUOREL2SORVIT",
                                     "POSTMETIS", "3dto2d", "CHECKSTATUS"});

bool isOneOf(const auto& words, const RWCString& word) {
  return std::find(words.begin(), words.end(), word) != words.end();
}

}  // namespace

bool isSolver(const RWCString& executable) {
  return isOneOf(kSolvers, executable);
}
bool isFwh(const RWCString& executable) {
  return isOneOf(kFwh, executable);
}
bool isMesher(const RWCString& executable) {
  return isOneOf(kMeshers, executable);
}
bool isPostProcessor(const RWCString& executable) {
  return isOneOf(kPostProcessors, executable);
}
bool isSculpt(const RWCString& executable) {
  return isOneOf(kSculpt, executable);
}
bool isHybridMesher(const RWCString& executable) {
  return isOneOf(kHybridMeshers, executable);
}
bool isOofelie(const RWCString& executable) {
  return isOneOf(kOofelie, executable);
}
bool isTessaly(const RWCString& executable) {
  return isOneOf(kTessaly, executable);
}
bool isFileConvert(const RWCString& executable) {
  return isOneOf(kFileConvert, executable);
}
bool isBramosh(const RWCString& executable) {
  return isOneOf(kBramosh, executable);
}
bool isMire(const RWCString& executable) {
  return isOneOf(kMire, executable);
}
bool isMarineStep(const RWCString& name) {
  return isOneOf(kMarineSteps, name);
}
