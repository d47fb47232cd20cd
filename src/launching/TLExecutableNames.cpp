#include "launching/TLExecutableNames.h"

#include <array>
#include <string_view>

#include "launching/TLProgramNames.h"
#include "textio/TLNumbers.h"

namespace {

// ---- tables of names ---------------------------------------------------------------------------

enum Host { kUnix, kWindows };
enum Mark { kAny, kYes, kNo };
constexpr int kAnyPrecision = -1;

/// One row of the names of the structured solver. The first row that fits counts; without one the
/// given name stays.
struct StructuredRow {
  Host host;
  Mark parallel;
  Mark queued;
  Mark sgi;
  int precision;
  Mark use64;
  Mark mpich2;
  std::string_view name;
};

// clang-format off
constexpr auto kStructured = std::to_array<StructuredRow>({
    // host    parallel queued sgi   precision      use64 mpich2 becomes
    {kUnix,    kYes,    kNo,   kNo,  0,             kAny, kAny,  "velstraTurbo_parallel"},
    {kUnix,    kYes,    kNo,   kNo,  1,             kAny, kAny,  "velstraTurbodp_parallel"},
    {kUnix,    kYes,    kNo,   kYes, kAnyPrecision, kAny, kAny,  "velstraTurbo_parallel_MPISGI664"},
    {kUnix,    kNo,     kAny,  kAny, 0,             kAny, kAny,  "velstraTurbo"},
    {kUnix,    kNo,     kAny,  kAny, 1,             kAny, kAny,  "velstraTurbodp"},
    {kWindows, kYes,    kAny,  kAny, kAnyPrecision, kYes, kAny,  "mpiexec.exe"},
    {kWindows, kYes,    kAny,  kAny, kAnyPrecision, kNo,  kAny,  "mpirun.exe"},
    {kWindows, kNo,     kAny,  kAny, 0,             kYes, kYes,  "velstra_mpich2x86_64.exe"},
    {kWindows, kNo,     kAny,  kAny, 0,             kYes, kNo,   "velstrax86_64.exe"},
    {kWindows, kNo,     kAny,  kAny, 1,             kYes, kYes,  "velstradp_mpich2x86_64.exe"},
    {kWindows, kNo,     kAny,  kAny, 1,             kYes, kNo,   "velstradpx86_64.exe"},
    {kWindows, kNo,     kAny,  kAny, 0,             kNo,  kAny,  "velstra.exe"},
    {kWindows, kNo,     kAny,  kAny, 1,             kNo,  kAny,  "velstradp.exe"},
});

/// One row of the names of the unstructured solver: `#` stands for "sp", "hp" or "dp". An unknown
/// precision word takes `otherwise`, and leaves the name when that is empty.
struct UnstructuredRow {
  Host host;
  Mark parallel;
  Mark queued;
  Mark sgi;
  Mark use64;
  std::string_view name;
  std::string_view otherwise;
};

constexpr auto kUnstructured = std::to_array<UnstructuredRow>({
    // host    parallel queued sgi   use64 becomes                        with an unknown word
    {kUnix,    kYes,    kNo,   kYes, kAny, "lumbrake_parallel_MPISGI664", ""},
    {kUnix,    kYes,    kNo,   kNo,  kAny, "lumbrake#_parallel",          ""},
    {kUnix,    kNo,     kAny,  kAny, kAny, "lumbrake#",                   "lumbrakesp"},
    {kUnix,    kYes,    kYes,  kAny, kAny, "lumbrake#",                   "lumbrakesp"},
    {kWindows, kYes,    kAny,  kAny, kYes, "mpiexec.exe",                 ""},
    {kWindows, kYes,    kAny,  kAny, kNo,  "mpirun.exe",                  ""},
    {kWindows, kNo,     kAny,  kAny, kYes, "lumbrake#x86_64.exe",         ""},
    {kWindows, kNo,     kAny,  kAny, kNo,  "lumbrake#.exe",               ""},
});

/// One row of the names of the shape optimiser; `several`: two generations or more.
struct SculptRow {
  Mark several;
  Host host;
  Mark use64;
  std::string_view name;
};

constexpr auto kSculpt = std::to_array<SculptRow>({
    {kNo,  kUnix,    kAny, "sculpt3d"},
    {kNo,  kWindows, kYes, "sculpt3dx86_64.exe"},
    {kNo,  kWindows, kNo,  "sculpt3d.exe"},
    {kYes, kUnix,    kAny, "sculpt3d_parallel"},
    {kYes, kWindows, kYes, "mpiexec.exe"},
    {kYes, kWindows, kNo,  "mpirun.exe"},
});

/// The other programs on a Windows host, and where the 64-bit build of one shows that there is one.
struct ToolRow {
  bool (*test)(const RWCString&);
  std::string_view name64;
  std::string_view name;
};

constexpr auto kTools = std::to_array<ToolRow>({
    {&isMesher,        "zyvx86_64.exe",     "zyv.exe"},
    {&isHybridMesher,  "bramoshhybrid.exe", "bramoshhybrid.exe"},
    {&isOofelie,       "oofelie.exe",       "oofelie.exe"},
    {&isPostProcessor, "sorvitx86_64.exe",  "sorvit.exe"},
    {&isFwh,           "fwhx86_64.exe",     "fwh.exe"},
});

/// Files under "bin64" of which one must be readable for the 64-bit programs to count as there.
struct Bin64Row {
  bool (*test)(const RWCString&);
  int precision;
  Mark mpich2;
  std::string_view file;
  std::string_view orFile;
};

constexpr auto kBin64 = std::to_array<Bin64Row>({
    {&isMesher,        kAnyPrecision, kAny, "zyvx86_64.exe",              ""},
    {&isPostProcessor, kAnyPrecision, kAny, "sorvitx86_64.exe",           ""},
    {&isFwh,           kAnyPrecision, kAny, "fwhx86_64.exe",              ""},
    {&isSculpt,        kAnyPrecision, kAny, "sculpt3dx86_64.exe",         ""},
    {&isSolver,        0,             kYes, "velstra_mpich2x86_64.exe",   "lumbrakedpx86_64.exe"},
    {&isSolver,        0,             kNo,  "velstrax86_64.exe",          "lumbrakedpx86_64.exe"},
    {&isSolver,        1,             kYes, "velstradp_mpich2x86_64.exe", "lumbrakedpx86_64.exe"},
    {&isSolver,        1,             kNo,  "velstradpx86_64.exe",        "lumbrakedpx86_64.exe"},
    {&isSolver,        kAnyPrecision, kAny, "",                           "lumbrakedpx86_64.exe"},
});

struct PrecisionWord {
  std::string_view word;
  std::string_view letters;
};

constexpr auto kPrecisionWords = std::to_array<PrecisionWord>({
    {"single", "sp"},
    {"hybrid", "hp"},
    {"double", "dp"},
});
// clang-format on

// ---- search
// --------------------------------------------------------------------------------------

bool fits(Mark mark, bool value) {
  return mark == kAny || (mark == kYes) == value;
}
bool fits(Host host, bool win32) {
  return (host == kWindows) == win32;
}
bool fitsPrecision(int wanted, std::int32_t value) {
  return wanted == kAnyPrecision || wanted == value;
}

/// Empty for an unknown word.
std::string_view letters(const RWCString& word) {
  for (const auto& row : kPrecisionWords) {
    if (row.word == word) return row.letters;
  }
  return {};
}

RWCString structuredProgram(const TLProgramChoice& c) {
  for (const auto& row : kStructured) {
    if (fits(row.host, c.win32) && fits(row.parallel, c.parallel) && fits(row.queued, c.queued) &&
        fits(row.sgi, c.mpiSgi664 != 0) && fitsPrecision(row.precision, c.precision) &&
        fits(row.use64, c.use64) && fits(row.mpich2, c.compilerChoice == 2)) {
      return RWCString(row.name);
    }
  }
  return c.executable;
}

/// `former` is what the rules for every project made of the name.
RWCString unstructuredProgram(const TLProgramChoice& c, const RWCString& former) {
  for (const auto& row : kUnstructured) {
    if (!fits(row.host, c.win32) || !fits(row.parallel, c.parallel) ||
        !fits(row.queued, c.queued) || !fits(row.sgi, c.mpiSgi664 != 0) ||
        !fits(row.use64, c.use64)) {
      continue;
    }
    RWCString name(row.name);
    const auto place = name.find('#');
    if (place == RWCString::npos) return name;
    const auto pair = letters(c.precisionWord);
    if (pair.empty()) return row.otherwise.empty() ? former : RWCString(row.otherwise);
    return name.replace(place, 1, pair);
  }
  return former;
}

RWCString sculptProgram(const TLProgramChoice& c) {
  for (const auto& row : kSculpt) {
    if (fits(row.several, c.generations >= 2) && fits(row.host, c.win32) &&
        fits(row.use64, c.use64)) {
      return RWCString(row.name);
    }
  }
  return c.executable;
}

RWCString bin64(const RWCString& binDirectory, char separator, std::string_view file) {
  return binDirectory + "64" + separator + RWCString(file);
}

}  // namespace

RWCString startedProgram(const TLProgramChoice& choice) {
  RWCString name = choice.executable;
  if (isSolver(choice.executable)) {
    name = structuredProgram(choice);
    if (choice.unstructured) name = unstructuredProgram(choice, name);
  }
  if (isSculpt(choice.executable)) name = sculptProgram(choice);
  return name;
}

RWCString win32ToolProgram(const RWCString& executable, bool use64) {
  for (const auto& row : kTools) {
    if (row.test(executable)) return RWCString(use64 ? row.name64 : row.name);
  }
  return executable;
}

RWCString marineProgram(const RWCString& executable, bool win32, bool parallelRun) {
  const bool solver = executable == "quorelcfd" || executable == "quorelcfd.exe";
  if (solver && parallelRun) return win32 ? "quorelcfd_parallel.exe" : "quorelcfd_parallel";
  constexpr std::string_view kSuffix = ".exe";
  if (win32 || executable.size() < kSuffix.size()) return executable;
  const auto stem = executable.size() - kSuffix.size();
  return equalIgnoringCase(std::string_view(executable).substr(stem), kSuffix)
             ? executable.substr(0, stem)
             : executable;
}

bool findBin64(const TLProgramChoice& choice, const RWCString& binDirectory, char separator,
               const std::function<bool(const RWCString&)>& canRead) {
  if (!choice.win32) return true;
  const auto readable = [&](std::string_view file) {
    return !file.empty() && canRead(bin64(binDirectory, separator, file));
  };
  for (const auto& row : kBin64) {
    if (row.test(choice.executable) && fitsPrecision(row.precision, choice.precision) &&
        fits(row.mpich2, choice.compilerChoice == 2)) {
      return readable(row.file) || readable(row.orFile);
    }
  }
  return true;
}

RWCString defaultSolverPath(const RWCString& binDirectory, char separator) {
  return bin64(binDirectory, separator, "velstrax86_64.exe");
}

RWCString doubleSolverPath(const RWCString& binDirectory, char separator) {
  return bin64(binDirectory, separator, "velstradpx86_64.exe");
}

RWCString structuredSolverPath(const TLProgramChoice& choice, const RWCString& binDirectory,
                               char separator) {
  const RWCString name = choice.precision == 1 ? "velstradp" : "velstra";
  const RWCString family = choice.compilerChoice == 2 ? "_mpich2" : "";
  return bin64(binDirectory, separator, name + family + "x86_64.exe");
}

RWCString unstructuredSolverPath(const TLProgramChoice& choice, const RWCString& binDirectory,
                                 char separator) {
  const auto pair = letters(choice.precisionWord);
  const RWCString name = "lumbrake" + RWCString(pair.empty() ? "sp" : pair);
  return bin64(binDirectory, separator,
               name + (choice.mpiType == 1 ? "_impix86_64.exe" : "x86_64.exe"));
}

RWCString sculptPath(const RWCString& binDirectory, char separator) {
  return bin64(binDirectory, separator, "sculpt3dx86_64.exe");
}
