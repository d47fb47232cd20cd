#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "messaging/TLSteeringParameters.h"
#include "parameters/TLFile.h"
#include "project/TLNonDeterministicComputationManager.h"
#include "project/TLPerformanceCurve.h"
#include "project/TLSubProject.h"
#include "textio/Handle.h"
#include "textio/RWCString.h"
#include "textio/RefCounted.h"
#include "textio/TLTextSink.h"
#include "textio/TLTextSource.h"

/// A project file, or a run file, which is a project file with one computation in it: the names of
/// the grid and geometry files of a study, and its computations. Made empty, read once, then used,
/// changed and written.
class TLProject : public RefCounted {
 public:
  /// The file of this name becomes `projectFile`: paths in the project are told relative to it.
  void setFile(const RWCString& path);
  /// Opens and reads the file of this name, which becomes `projectFile`. As read(source); 0 also
  /// when the file can't be opened.
  int read(const RWCString& path);
  /// Reads a project; `projectFile` must have been set for its relative paths to be found. 1 on
  /// success; 0 when the header or something in the file has a fault, with the reason on the
  /// console; -1, in silence, when the first line is not that of a project.
  int read(TLTextSource& source);

  /// Puts the project in the place of the file `fileName`, at once or not at all; `projectFile`
  /// stays. 0, with a line on the console and the old file untouched, when it can't be written.
  int write(const RWCString& fileName) const;
  /// The text of the project.
  void write(TLTextSink& sink) const;

  /// True when the first data line of a text is that of a project file ("TALVEN_PROJECT_FILE").
  static bool isProjectText(std::string_view text);
  /// True when it is that of a mesh file ("ZYV").
  static bool isMeshText(std::string_view text);

  /// @name Relative paths
  /// A path in the project is told twice, absolutely and relative to the base directory of the
  /// project file, so that a project directory can be moved.
  /// @{

  /// The directory to which paths are relative, with its separator: for a run file (suffix "run"),
  /// which lies in the directory of its computation, the directory around that one, with `climb`
  /// the one around that again; for other files their own directory.
  static RWCString baseDirectory(const TLFile& file, bool climb = false);
  /// The absolute path when it exists; else the relative one below the base directory (with `climb`
  /// also below the one around it) when that exists; else the absolute path, with a line on the
  /// console unless it stands for no file.
  static RWCString resolvePath(const TLFile& projectFile, const RWCString& absolute,
                               const RWCString& relative, bool climb = false);
  /// The part of `path` below the base directory of `projectFile`, with `climb` else below the one
  /// around it, or "undefined".
  static RWCString makeRelative(const TLFile& projectFile, const RWCString& path,
                                bool climb = false);
  /// `path`, or where a file of this name is found when it doesn't exist: in the project's
  /// directory under "_mesh", in that directory, in the one around it under "_mesh".
  static RWCString findMoved(const TLFile& projectFile, const RWCString& path);
  /// @}

  /// Sets the type and, when `usesDefinitions`, loads the units and the steering definitions for
  /// it.
  void setProjectType(std::int32_t type);
  /// A TLProjectType; 0 until told.
  std::int32_t projectType() const { return projectType_; }
  /// "STRUCTURED", "BLADE_TO_BLADE", "HEXA", "SCULPT3D", "MARINE".
  static std::string_view projectTypeWord(std::int32_t type);

  /// Stores "GENERAL", "AUTOMOTIVE" or "OPEN"; other words are ignored.
  void setApplicationType(std::string_view word);
  /// One of the three words, or empty.
  const RWCString& applicationType() const { return applicationType_; }

  /// Whether reading loads and uses the definitions of the solvers in VELSTRA_DIR. A process whose
  /// definitions are missing ends; a tool that only looks at files can do without.
  bool usesDefinitions = true;
  /// Whether it loads those of the steering parameters, which the project itself has no use for.
  bool usesSteering = true;

  /// The first computation; null for a project without one.
  Handle<TLSubProject> currentComputation;

  TLFile projectFile;                              ///< Where the project was read from.
  TLFile gridFile;                                 ///< The mesh; unknown: none.
  TLFile trbFile;                                  ///< Blade definitions; unknown: none.
  TLFile geometryFile;                             ///< The CAD geometry; unknown: none.
  std::int32_t axisLabelIndex = 0;                 ///< Of the performance curve's axis. Carried.
  std::vector<std::vector<double>> axisValues;     ///< each of six values
  std::int32_t isRead = 0;                         ///< 1 once a read has finished
  double version = 1210.0;                         ///< of the file that was read
  std::vector<Handle<TLSubProject>> computations;  ///< In the order of the file.
  std::vector<Handle<TLPerformanceCurve>> performanceCurves;  ///< Carried.
  /// One per uncertainty study. Carried.
  std::vector<Handle<TLNonDeterministicComputationManager>> nonDeterministicManagers;
  std::int32_t lastUsedComputationIndex = 0;        ///< From 0; always within `computations`, or 0.
  std::int32_t hasNonDeterministicComputation = 0;  ///< 1: at least one is non-deterministic.
  RWCString solverPrecision = "single";             ///< "single", "double" or "hybrid"
  RWCString subProjectName;                         ///< Read, never written.
  Handle<TLSteeringParameters> steering;  ///< of the step that runs this project; null for none
  std::int32_t subProjectFlag = 0;        ///< not 0: the computations lie a level deeper

 private:
  friend struct TLProjectFormat;
  int readHeader(TLTextSource& source);
  int readComputation(TLTextSource& source);
  int solverMode() const;
  void settleGridFile();
  void finishRead();
  void writeComputation(TLTextSink& sink, std::size_t index) const;
  std::size_t computationOfManager(std::size_t manager) const;
  static RWCString belowBase(const TLFile& projectFile, const RWCString& relative, bool climb);
  bool climbs() const { return subProjectFlag != 0; }

  std::int32_t projectType_ = 0;
  RWCString applicationType_;
  RWCString computationName_;
  RWCString gridPath_;
  RWCString relativeGridPath_;
  /// For each manager the number of computations that stood ahead of it in the file.
  std::vector<std::size_t> managerPlaces_;
};
