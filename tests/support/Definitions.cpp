#include "support/Definitions.h"

namespace {

constexpr const char* kParameters =
    "Definition of the parameters of a solver.\n"
    "START_READING_OPERATION\n"
    "* choice of the fluid's viscosity\n"
    "IVIMOD,I,1,1,0\n2\n"
    "IHCMOD,I,1,1,0\n2\n"
    "VICOEF,R,1,9,0\n1 2 3 4 5 6 7 8 9\n"
    "HCCOEF,R,1,9,0\n11 12 13 14 15 16 17 18 19\n"
    "TINF,R,1,1,0\n288\n"
    "TSUTHE,R,1,1,0\n110\n"
    "RSHAME,I,1,1,0\n2\n"
    "CPUBOO,I,1,1,0\n0\n"
    "IMPCCI,I,1,1,0\n0\n"
    "XCOSC,R,1,1,0\n2000\n"
    "CFL,R,1,1,0\n3\n"
    "ICOMP,I,1,1,0\n0\n"
    "IACOUS,I,1,1,0\n7\n";

constexpr const char* kUnits =
    "  VERSION 1.0\n"
    "  DEFAULT_SYSTEM SI\n"
    "  TL_BEGIN units_record\n"
    "    NUMBER_OF_SYSTEMS 4\n"
    "    VALUE_UNITS_NAME length\n"
    "    UNITS_NAME 0 m\n    UNITS_NAME 1 cm\n    UNITS_NAME 2 inch\n    UNITS_NAME 3 mm\n"
    "    CONV_FACTOR 0 3 1000\n    CONV_FACTOR 3 0 0.001\n"
    "    CONV_FACTOR 0 1 100\n    CONV_FACTOR 1 0 0.01\n"
    "  TL_END units_record\n"
    "TL_END units_database\n";

constexpr const char* kConditions =
    "TL_BEGIN bc_parameters\n"
    "  VERSION 3.0\n  TYPE INLET\n  TYPE_ID 28\n  TYPE_OPSEL 1\n"
    "  TL_BEGIN physical_entry\n    NAME Static Temperature\n    TYPE constant\n    VALUE 293\n"
    "  TL_END physical_entry\n"
    "TL_END bc_parameters\n"
    "TL_BEGIN bc_parameters\n"
    "  VERSION 3.0\n  TYPE SOLID\n  TYPE_ID 10\n  TYPE_OPSEL 1\n"
    "  TL_BEGIN real_entry_def\n    NAME Equivalent Roughness Height\n    VALUE 0\n"
    "  TL_END real_entry\n"
    "TL_END bc_parameters\n"
    "TL_BEGIN bc_parameters\n"
    "  VERSION 3.0\n  TYPE OUTLET\n  TYPE_ID 27\n  TYPE_OPSEL 1\n"
    "  TL_BEGIN physical_entry\n    NAME Static Pressure\n    TYPE constant\n    VALUE 101300\n"
    "  TL_END physical_entry\n"
    "TL_END bc_parameters\n";

constexpr const char* kSteering = "# no steering\n";

}  // namespace

Definitions::Definitions() : variable_("VELSTRA_DIR", files_.path()) {
  write("velstra.def", kParameters);
  write("velstra.uni", kUnits);
  for (const char* name : {"velstra_bc.def", "lumbrake_bc.def", "lumbrake_bc_auto.def"}) {
    write(name, kConditions);
  }
  for (const char* name : {"velstra_steering.def", "lumbrake_steering.def",
                           "lumbrake_steering_auto.def", "quorel_steering.def"}) {
    write(name, kSteering);
  }
}
