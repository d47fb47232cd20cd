#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "parameters/TLFluidProperties.h"
#include "project/TLMultiSpecies.h"
#include "textio/Handle.h"
#include "textio/RWCString.h"
#include "textio/RefCounted.h"
#include "textio/TLTextSink.h"
#include "textio/TLTextSource.h"

/// What a thermodynamic table is for; its file's suffix tells.
enum class TLTableKind { ber, bhp, ker, mer };

/// One table file of a condensable fluid.
struct TLThermodynamicTable {
  RWCString fileName;  ///< without its directory
  TLTableKind kind;    ///< From the suffix of the file, in any case.
};

/// A fluid of a computation, or of a block of the unstructured solver ("FLUID_PARAMETERS"): its
/// names and the choice of its laws. The values are in its properties.
class TLFluid : public RefCounted {
 public:
  TLFluid() : properties(makeHandle<TLFluidProperties>()) {}

  /// Reads the block's lines behind its opening line. 0 with a complaint on the console on failure.
  int read(TLTextSource& source);
  /// The lines of the block, without its opening and closing one.
  void write(TLTextSink& sink) const;

  /// True for the types whose properties come from table files.
  bool isCondensable() const;
  /// The table files in the directory of the tables, by name. Empty for fluids that aren't
  /// condensable and when the directory can't be read.
  std::vector<TLThermodynamicTable> thermodynamicTables() const;

  /// Printed when the fluid's version line holds no number.
  static constexpr char kVersionFailure[] =
      " wrong TLFluid parameters header: cannot determine fluid parameters version";
  /// The path of the tables when there are none.
  static constexpr const char* kNoTables = "__undefined__";

  double version = 4.0;                       ///< As read; 4.0 is what is written.
  RWCString fluidName = "AIR (perfect gas)";  ///< Name in the list of fluids.
  RWCString fluidType = "Perfect Gas";        ///< "Perfect Gas", "Real Gas", "Incompressible", ...
  RWCString fluidOwner = "UNDEFINED";         ///< Who defined it. Carried.
  std::int32_t viscLawChoice = 0;  ///< Law of the viscosity, a code of the solvers; 1: constant.
  std::int32_t heatCondLawChoice = 0;  ///< Law of the heat conductivity; likewise.
  std::int32_t cpLawChoice = 0;        ///< Law of the heat capacity; a code of the solvers.
  std::int32_t baroLawChoice = 0;      ///< Law of the density by pressure; likewise.
  RWCString thermodynamicTablesPath = kNoTables;  ///< Directory of the table files.
  Handle<TLFluidProperties> properties;           ///< never null
  Handle<TLMultiSpecies> multiSpecies;            ///< null for none

 private:
  friend struct TLFluidFormat;
  void settleOldTablesPath();

  bool hasOldTablesKey_ = false;
};
