#include "project/TLProject.h"

#include <algorithm>
#include <array>

#include "messaging/TLSteeringDataBase.h"
#include "parameters/TLUnitsDataBase.h"
#include "platform/TLConsole.h"
#include "platform/TLHostForm.h"
#include "project/TLChildKeys.h"
#include "project/TLProjectType.h"
#include "textio/TLKeyTable.h"
#include "textio/TLNumbers.h"
#include "textio/TLTokens.h"

namespace {

using R = TLProject;
using T = TLTokenReader;

constexpr std::string_view kHeaderWord = "TALVEN_PROJECT_FILE";
constexpr double kNewestVersion = 1210.1;
constexpr std::size_t kAxisValues = 6;

constexpr std::array<std::string_view, 5> kProjectTypes{"STRUCTURED", "BLADE_TO_BLADE", "HEXA",
                                                        "SCULPT3D", "MARINE"};
constexpr std::array<std::string_view, 3> kApplicationTypes{"GENERAL", "AUTOMOTIVE", "OPEN"};

/// Number of `word` in `words`, or -1.
template <std::size_t N>
int numberOf(const std::array<std::string_view, N>& words, std::string_view word) {
  const auto place = std::find(words.begin(), words.end(), word);
  return place == words.end() ? -1 : static_cast<int>(place - words.begin());
}

bool isSeparator(char c) {
  return c == '/' || c == '\\';
}

bool isAbsolute(std::string_view path) {
  return !path.empty() && (isSeparator(path[0]) || (path.size() > 1 && path[1] == ':'));
}

/// The directory around `directory`, which ends in a separator or is empty.
RWCString parentOf(RWCString directory) {
  const RWCString above = RWCString("..") + hostForm().separator();
  if (directory.size() == 1 && isSeparator(directory[0])) return directory;
  if (!directory.empty() && isSeparator(directory.back())) directory.pop_back();
  if (directory.empty() || directory == ".") return above;
  const auto separator = directory.find_last_of("/\\");
  if (std::string_view(directory).substr(separator + 1) == "..") {
    return directory + hostForm().separator() + above;
  }
  return directory.substr(0, separator + 1);
}

/// `name` in `directory`, which may be empty for the current one.
RWCString below(const RWCString& directory, std::string_view name) {
  return directory.empty() ? RWCString(name) : hostForm().join(directory, name);
}

bool exists(const RWCString& path) {
  return hostForm().canRead(path);
}

/// Whether a value of a relative path can name a file.
bool namesFile(const RWCString& relative) {
  return !relative.empty() && relative != "undefined";
}

bool holdsToken(std::string_view text, std::initializer_list<std::string_view> words) {
  std::string line(text.substr(0, 4096));
  TLTextSource source(std::move(line));
  TLTokenReader(source).skipComments();
  const auto first = source.readLine();
  return std::any_of(words.begin(), words.end(),
                     [first](auto word) { return T::lineHasToken(first, word); });
}

}  // namespace

/// The keys of a project: how each is read and written.
struct TLProjectFormat {
  static TLKeyResult readProjectType(R& record, TLKeyContext& context) {
    RWCString word;
    if (context.reader.readString(context.line, word) == 0) return TLKeyResult::failed;
    const int type = numberOf(kProjectTypes, word);
    if (type >= 0) record.setProjectType(type);
    return TLKeyResult::next;
  }

  static TLKeyResult readApplicationType(R& record, TLKeyContext& context) {
    RWCString word;
    if (context.reader.readString(context.line, word) == 0) return TLKeyResult::failed;
    record.setApplicationType(word);
    return TLKeyResult::next;
  }

  static TLKeyResult readAxis(R& record, TLKeyContext& context) {
    TLTokens tokens(context.line);
    tokens.next();
    record.axisLabelIndex = integerFrom(tokens.next());
    std::vector<double> values;
    for (auto word = tokens.next(); !word.empty(); word = tokens.next()) {
      values.push_back(realFrom(word));
    }
    if (values.size() == kAxisValues) record.axisValues.push_back(std::move(values));
    return TLKeyResult::next;
  }

  static void writeAxis(const R& record, TLTextSink& sink, std::string_view literal) {
    sink << literal << record.axisLabelIndex;
    for (const auto& values : record.axisValues) {
      for (const double value : values) sink << ' ' << value;
    }
    sink << '\n';
  }

  /// A file that is told absolutely: taken, and looked for when it isn't where it was.
  template <TLFile R::*File>
  static TLKeyResult readFile(R& record, TLKeyContext& context) {
    RWCString path;
    if (context.reader.readStrings(context.line, path) == 0) return TLKeyResult::failed;
    record.*File = TLFile(R::findMoved(record.projectFile, path));
    return TLKeyResult::next;
  }

  /// The same file, told relative to the project.
  template <TLFile R::*File>
  static TLKeyResult readRelativeFile(R& record, TLKeyContext& context) {
    RWCString path;
    if (context.reader.readStrings(context.line, path) == 0) return TLKeyResult::failed;
    record.*File =
        TLFile(R::resolvePath(record.projectFile, (record.*File).path(), path, record.climbs()));
    return TLKeyResult::next;
  }

  template <TLFile R::*File>
  static void writeFile(const R& record, TLTextSink& sink, std::string_view literal) {
    sink << literal << (record.*File).path() << '\n';
  }

  template <TLFile R::*File>
  static void writeRelativeFile(const R& record, TLTextSink& sink, std::string_view literal) {
    sink << literal << R::makeRelative(record.projectFile, (record.*File).path(), record.climbs())
         << '\n';
  }

  static void writeProjectType(const R& record, TLTextSink& sink, std::string_view literal) {
    sink << literal << R::projectTypeWord(record.projectType()) << '\n';
  }

  static void writeComputationName(const R& record, TLTextSink& sink, std::string_view literal) {
    // A line without a name couldn't be read back.
    sink << literal << (record.currentComputation ? record.currentComputation->name : "unknown")
         << '\n';
  }

  static TLKeyResult readManager(R& record, TLKeyContext& context) {
    auto manager = makeHandle<TLNonDeterministicComputationManager>();
    if (manager->read(context.source) == 0) return TLKeyResult::failed;
    record.nonDeterministicManagers.push_back(std::move(manager));
    record.managerPlaces_.push_back(record.computations.size());
    return TLKeyResult::next;
  }

  static TLKeyResult readComputation(R& record, TLKeyContext& context) {
    return nextIf(record.readComputation(context.source));
  }

  // clang-format off
  static const TLKeyTable<R>& table() {
    static const TLKeyTable<R> keys("project", {
      {"PROJECT_TYPE", "", &readProjectType, 1,                                  "PROJECT_TYPE  ", &writeProjectType},
      {"APPLICATION_TYPE", "", &readApplicationType},
      valueKey<&R::subProjectName, &T::readString>("SUB_PROJECT_NAME"),
      valueKey<&R::subProjectFlag, &T::readInteger>("SUB_PROJECT_FLAG", 3,       "SUB_PROJECT_FLAG "),
      {"COMPUTATION_NAME", "", &readMember<&R::computationName_, &T::readString, R>, 2,
                                                                                 "COMPUTATION_NAME ", &writeComputationName},
      {"PERFORMANCE_CURVE_AXIS", "", &readAxis, 11,                              "PERFORMANCE_CURVE_AXIS         ", &writeAxis},
      {"GRID_FILE", "", &readMember<&R::gridPath_, &T::readStrings, R>, 4,       "GRID_FILE          ", &writeFile<&R::gridFile>},
      {"RELATIVE_GRID_FILE", "", &readMember<&R::relativeGridPath_, &T::readStrings, R>, 5,
                                                                                 "RELATIVE_GRID_FILE ", &writeRelativeFile<&R::gridFile>},
      {"TRB_FILE", "", &readFile<&R::trbFile>, 6,                                "TRB_FILE          ", &writeFile<&R::trbFile>},
      {"RELATIVE_TRB_FILE", "", &readRelativeFile<&R::trbFile>, 7,               "RELATIVE_TRB_FILE ", &writeRelativeFile<&R::trbFile>},
      {"GEOMETRY_FILE", "", &readFile<&R::geometryFile>, 8,                      "GEOMETRY_FILE ", &writeFile<&R::geometryFile>},
      {"RELATIVE_GEOMETRY_FILE", "", &readRelativeFile<&R::geometryFile>, 9,     "RELATIVE_GEOMETRY_FILE ", &writeRelativeFile<&R::geometryFile>},
      valueKey<&R::lastUsedComputationIndex, &T::readInteger>("LAST_USED_COMPUTATION_INDEX", 12,
                                                                                 "LAST_USED_COMPUTATION_INDEX    "),
      valueKey<&R::solverPrecision, &T::readString>("SOLVER_PRECISION", 10,      "SOLVER_PRECISION "),
      childKey<&R::performanceCurves>("performance_curve"),
      {"tl_begin", "TLNonDeterministicComputationManager", &readManager},
      {"tl_begin", "computation", &readComputation},
      {"tl_begin", "", &skipBlock<R>},
    });
    return keys;
  }
  // clang-format on
};

// Reading -------------------------------------------------------------------------------------

void TLProject::setFile(const RWCString& path) {
  projectFile =
      TLFile(isAbsolute(path) ? path : hostForm().join(hostForm().currentDirectory(), path));
}

int TLProject::read(const RWCString& path) {
  auto text = hostForm().readFile(path);
  if (!text) return 0;
  setFile(path);
  TLTextSource source(std::move(*text));
  return read(source);
}

int TLProject::read(TLTextSource& source) {
  computations.clear();
  performanceCurves.clear();
  nonDeterministicManagers.clear();
  managerPlaces_.clear();
  axisValues.clear();
  gridPath_.clear();
  relativeGridPath_.clear();
  currentComputation.reset();
  const int header = readHeader(source);
  if (header != 1) return header;
  if (readBlock(*this, source, TLProjectFormat::table()) == 0) return 0;
  finishRead();
  return 1;
}

int TLProject::readHeader(TLTextSource& source) {
  const auto line = source.readLine();
  if (!T::lineHasToken(line, kHeaderWord)) return -1;
  TLTokens tokens(line);
  tokens.next();
  tokens.next();
  const auto number = tokens.next();
  if (number.empty()) {
    console() << "*** ERROR! *** wrong project header cannot determine file version\n"
              << std::flush;
    return 0;
  }
  version = realFrom(number);
  if (version > kNewestVersion) {
    console() << "*** ERROR! *** wrong project file version \n" << std::flush;
    return 0;
  }
  return 1;
}

int TLProject::readComputation(TLTextSource& source) {
  auto computation = makeHandle<TLSubProject>(projectType_);
  computation->setProjectFile(projectFile);
  computation->subProjectFlag = subProjectFlag;
  computation->solverMode = solverMode();
  computation->usesDefinitions = usesDefinitions;
  if (computation->read(source) == 0) return 0;
  if (computation->isNonDeterministic()) hasNonDeterministicComputation = 1;
  computations.push_back(std::move(computation));
  currentComputation = computations.front();
  return 1;
}

void TLProject::settleGridFile() {
  const RWCString here = belowBase(projectFile, relativeGridPath_, climbs());
  if (!here.empty()) {
    gridFile = TLFile(here);
    return;
  }
  if (!gridPath_.empty()) gridFile = TLFile(findMoved(projectFile, gridPath_));
}

void TLProject::finishRead() {
  settleGridFile();
  if (lastUsedComputationIndex < 0 ||
      static_cast<std::size_t>(lastUsedComputationIndex) >= computations.size()) {
    lastUsedComputationIndex = 0;
  }
  isRead = 1;
  if (version > 4.9 && version < 6.0) {
    for (const auto& computation : computations) computation->takeFluidOfFirstBlock();
  }
  if (version <= 5.001) solverPrecision = "double";
  if (projectType_ == TLProjectType::hexa && solverPrecision == "single") {
    solverPrecision = "hybrid";
  }
  if (version <= 8.9001 && !computations.empty()) {
    computations[static_cast<std::size_t>(lastUsedComputationIndex)]->lastUsed = 1;
  }
}

bool TLProject::isProjectText(std::string_view text) {
  return holdsToken(text, {kHeaderWord});
}

bool TLProject::isMeshText(std::string_view text) {
  return holdsToken(text, {"ZYV"});
}

// Writing -------------------------------------------------------------------------------------

int TLProject::write(const RWCString& fileName) const {
  int error = 0;
  if (!hostForm().canRead(fileName) || hostForm().canWrite(fileName, error)) {
    TLTextSink sink;
    write(sink);
    if (hostForm().replaceFile(fileName, sink.text()) == 0) return 1;
  }
  console() << "File " << fileName << " is not writable.\n" << std::flush;
  return 0;
}

void TLProject::write(TLTextSink& sink) const {
  sink << "TALVEN_PROJECT_FILE   VERSION 1210\n";
  TLProjectFormat::table().write(*this, sink);
  writeChildren(sink, performanceCurves, "  ", "performance_curve");
  for (std::size_t i = 0; i < computations.size(); ++i) writeComputation(sink, i);
  if (computations.empty()) {
    writeChildren(sink, nonDeterministicManagers, "  ", "TLNonDeterministicComputationManager");
  }
}

void TLProject::writeComputation(TLTextSink& sink, std::size_t index) const {
  for (std::size_t i = 0; i < nonDeterministicManagers.size(); ++i) {
    if (computationOfManager(i) == index) {
      writeChild(sink, nonDeterministicManagers[i], "  ", "TLNonDeterministicComputationManager");
    }
  }
  const RWCString stars(78, '*');
  sink << stars << "\n******* START COMPUTATION " << index + 1 << " SECTION  **************\n"
       << stars << '\n';
  writeChild(sink, computations[index], "  ", "computation");
}

std::size_t TLProject::computationOfManager(std::size_t manager) const {
  const RWCString name = nonDeterministicManagers[manager]->computationName();
  for (std::size_t i = 0; i < computations.size(); ++i) {
    if (!name.empty() && computations[i]->name == name) return i;
  }
  const std::size_t behind = manager < managerPlaces_.size() ? managerPlaces_[manager] : 0;
  return std::min(behind, computations.size() - 1);
}

// Relative paths ------------------------------------------------------------------------------

RWCString TLProject::baseDirectory(const TLFile& file, bool climb) {
  if (file.suffix() != "run") return file.directory();
  const RWCString around = parentOf(file.directory());
  return climb ? parentOf(around) : around;
}

RWCString TLProject::belowBase(const TLFile& projectFile, const RWCString& relative, bool climb) {
  if (!namesFile(relative)) return {};
  for (const bool higher : {false, true}) {
    if (higher && !climb) break;
    RWCString here = below(baseDirectory(projectFile, higher), relative);
    if (exists(here)) return here;
  }
  return {};
}

RWCString TLProject::resolvePath(const TLFile& projectFile, const RWCString& absolute,
                                 const RWCString& relative, bool climb) {
  if (exists(absolute)) return absolute;
  RWCString here = belowBase(projectFile, relative, climb);
  if (!here.empty()) return here;
  const auto isAway = [&absolute](const char* word) {
    return absolute.find(word, 1) != RWCString::npos;
  };
  if (!isAway("unknown") && !isAway("undefined")) {
    console() << "Info:\tcould not find the file '" << absolute << "'\n" << std::flush;
  }
  return absolute;
}

RWCString TLProject::makeRelative(const TLFile& projectFile, const RWCString& path, bool climb) {
  for (const bool higher : {false, true}) {
    if (higher && !climb) break;
    const RWCString base = baseDirectory(projectFile, higher);
    const bool isBelow = !base.empty() && path.size() > base.size() && path.starts_with(base);
    if (isBelow) return path.substr(base.size());
  }
  return "undefined";
}

RWCString TLProject::findMoved(const TLFile& projectFile, const RWCString& path) {
  const TLFile file(path);
  if (file.isUnknown() || exists(path)) return path;
  const RWCString name(file.name());
  const RWCString& here = projectFile.directory();
  const RWCString above = parentOf(here);
  const auto inMesh = [&name](const RWCString& directory) {
    return below(below(directory, "_mesh"), name);
  };
  for (const auto& candidate : {inMesh(here), below(here, name), inMesh(above)}) {
    if (exists(candidate)) return candidate;
  }
  return path;
}

// Types ---------------------------------------------------------------------------------------

void TLProject::setProjectType(std::int32_t type) {
  projectType_ = type;
  if (usesDefinitions) TLUnitsDataBase::instance().start();
  if (usesDefinitions && usesSteering) TLSteeringDataBase::instance().load(type, solverMode());
}

int TLProject::solverMode() const {
  return std::max(0, numberOf(kApplicationTypes, applicationType_));
}

std::string_view TLProject::projectTypeWord(std::int32_t type) {
  const bool known = type >= 0 && static_cast<std::size_t>(type) < kProjectTypes.size();
  return kProjectTypes[known ? static_cast<std::size_t>(type) : 0];
}

void TLProject::setApplicationType(std::string_view word) {
  if (numberOf(kApplicationTypes, word) >= 0) applicationType_ = word;
}
