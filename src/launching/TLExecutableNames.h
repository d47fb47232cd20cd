#pragma once

#include <cstdint>
#include <functional>

#include "textio/RWCString.h"

/// @file
/// Which program file a step starts. A sub-task names its program by a plain word; these rules turn
/// the word into the name of a real file, from the kind of the host, the precision, the MPI family
/// and the parallel mark. All comparisons are exact. Nothing here looks at the file system but
/// findBin64, through the test that the caller hands in.

/// What the choice of a program depends on.
struct TLProgramChoice {
  RWCString executable;   ///< as the task file gives it
  bool win32 = false;     ///< kind of the host that the step runs on
  bool use64 = true;      ///< the 64-bit programs are installed (a Windows host), see findBin64
  bool parallel = false;  ///< A parallel run is wanted.
  bool queued = false;    ///< started by a queuing system
  std::int32_t mpiSgi664 = 0;          ///< Not 0: the builds for the MPI of SGI.
  std::int32_t mpiType = 2;            ///< 1 Intel MPI, else the default family
  std::int32_t compilerChoice = 0;     ///< 2: the "_mpich2" builds
  std::int32_t precision = 0;          ///< 0 single, 1 double, else the name stays
  bool unstructured = false;           ///< the project is of the unstructured kind
  RWCString precisionWord = "single";  ///< "single", "hybrid", "double" of an unstructured run
  std::int32_t generations = 0;        ///< design generations of a shape optimisation
};

/// The name under which a flow solver or the shape optimiser is started; any other program's as it
/// stands.
RWCString startedProgram(const TLProgramChoice& choice);

/// The name of a mesher, post-processor and the like on a Windows host; any other as it stands.
RWCString win32ToolProgram(const RWCString& executable, bool use64);

/// The program of a marine step: `parallelRun` for a parallel one that no queuing system starts.
RWCString marineProgram(const RWCString& executable, bool win32, bool parallelRun);

/// True when the 64-bit build of `choice.executable` is installed on a Windows host. `binDirectory`
/// is the suite's "bin" without a separator at its end; the 64-bit programs lie beside it.
bool findBin64(const TLProgramChoice& choice, const RWCString& binDirectory, char separator,
               const std::function<bool(const RWCString&)>& canRead);

/// @name Full paths of the 64-bit programs that an MPI launcher of a Windows host is given.
/// @{

/// Of the structured solver, by the task file's precision.
RWCString structuredSolverPath(const TLProgramChoice& choice, const RWCString& binDirectory,
                               char separator);
/// The path that may be corrected once the run file is known.
RWCString defaultSolverPath(const RWCString& binDirectory, char separator);
/// The structured solver in double precision.
RWCString doubleSolverPath(const RWCString& binDirectory, char separator);
/// The unstructured solver by the run file's word for its precision.
RWCString unstructuredSolverPath(const TLProgramChoice& choice, const RWCString& binDirectory,
                                 char separator);
/// The shape optimiser.
RWCString sculptPath(const RWCString& binDirectory, char separator);
/// @}
