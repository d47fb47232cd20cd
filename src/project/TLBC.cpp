#include "project/TLBC.h"

#include <utility>

#include "project/TLChildKeys.h"
#include "project/TLIntegerLine.h"
#include "textio/TLKeyTable.h"

/// Keys of a condition, and in what order they are written: all of places kHead, those of
/// kConnection for connections, all of kCoupling, those of kSolid for solid walls.
struct TLBCFormat {
  using R = TLBC;
  using T = TLTokenReader;

  enum Place {
    version = 1,
    name,
    parametersIndex,
    type,
    indices,
    bcIndices,
    connection,
    lagrangian,
    couplingName,
    couplingType,
    deformation,
    modal
  };

  static TLKeyResult readIndices(R& record, TLKeyContext& context) {
    if (readIntegers(context.line, record.indices,
                     " wrong bc indices: cannot determine bc indices") == 0) {
      return TLKeyResult::failed;
    }
    record.patchCount_ = 1;
    return TLKeyResult::next;
  }
  static TLKeyResult readBcIndices(R& record, TLKeyContext& context) {
    return nextIf(readIntegers(context.line, record.bcIndices,
                               " wrong bc patch indices: cannot determine bc indices"));
  }
  static TLKeyResult readConnection(R& record, TLKeyContext& context) {
    return nextIf(readIntegers(context.line, record.connectionInfo,
                               " wrong bc connection: cannot determine bc connection"));
  }
  template <auto Member>
  static void writeIndices(const R& record, TLTextSink& sink, std::string_view literal) {
    writeIntegers(sink, literal, record.*Member);
  }

  // Without a word the line could not be read again.
  static void writeType(const R& record, TLTextSink& sink, std::string_view literal) {
    if (!record.type.empty()) sink << literal << record.type << '\n';
  }

  static TLKeyResult readControlSurface(R& record, TLKeyContext& context) {
    std::int32_t surface = 0;
    if (context.reader.readInteger(context.line, surface) == 0) return TLKeyResult::failed;
    record.controlSurfaces.push_back(surface);
    return TLKeyResult::next;
  }
  static TLKeyResult readControlSurfaceName(R& record, TLKeyContext& context) {
    RWCString text;
    if (context.reader.readStrings(context.line, text) == 0) return TLKeyResult::failed;
    record.controlSurfaceNames.push_back(std::move(text));
    return TLKeyResult::next;
  }
  static const TLKeyTable<R>& table() {
    static const TLKeyTable<R> keys(
        "boundary_condition",
        {
            versionKey<&R::version, R::kVersionFailure>(
                version, "            VERSION                   4.0"),
            valueKey<&R::condition, &T::readStrings>("condition"),
            valueKey<&R::bcParametersIndex, &T::readInteger>(
                "bc_parameters_index", parametersIndex, "            BC_PARAMETERS_INDEX        "),
            {"indices", "", &readIndices, indices, "            INDICES                   ",
             &writeIndices<&R::indices>},
            {"bc_indices", "", &readBcIndices, bcIndices, "            BC_INDICES                ",
             &writeIndices<&R::bcIndices>},
            {"connection_info", "", &readConnection, connection,
             "            CONNECTION_INFO           ", &writeIndices<&R::connectionInfo>},
            valueKey<&R::name, &T::readStrings>("name", name,
                                                "            NAME                      "),
            {"type", "", &readMember<&R::type, &T::readString>, type,
             "            TYPE                      ", &writeType},
            {"control_surface", "", &readControlSurface},
            {"control_surface_name", "", &readControlSurfaceName},
            valueKey<&R::lagrangianGroupName, &T::readStrings>(
                "lagrangian_group_name", lagrangian, "            LAGRANGIAN_GROUP_NAME   "),
            valueKey<&R::couplingName, &T::readStrings>("coupling_name", couplingName,
                                                        "            COUPLING_NAME           "),
            valueKey<&R::couplingType, &T::readInteger>("coupling_type", couplingType,
                                                        "            COUPLING_TYPE           "),
            valueKey<&R::deformationType, &T::readInteger>("deformation_type", deformation,
                                                           "            DEFORMATION_TYPE        "),
            valueKey<&R::modalStructureIndex, &T::readInteger>(
                "modal_structure_index", modal, "            MODAL_STRUCTURE_INDEX   "),
            childKey<&R::parameters>("bc_parameters"),
            childKey<&R::initialSolutionTurbo>("initial_solution_turbo"),
            childKey<&R::injectionSector>("injection_sector"),
            {"tl_begin", "", &skipBlock<R>},
            {"tl_end", "boundary_condition", &endBlock<R>},
        });
    return keys;
  }
};

namespace {

constexpr std::string_view kNoControlSurface = "No_Force_and_Torque";
constexpr std::int32_t kInletWithControlSurface = 28;
constexpr std::int32_t kOutletWithControlSurface = 27;

}  // namespace

int TLBC::read(TLTextSource& source) {
  controlSurfaces.clear();
  controlSurfaceNames.clear();
  if (readBlock(*this, source, TLBCFormat::table()) == 0) return 0;
  settleControlSurfaceNames();
  return 1;
}

void TLBC::write(TLTextSink& sink) const {
  using F = TLBCFormat;
  const auto& table = F::table();
  table.write(*this, sink, F::version, F::bcIndices);
  if (isConnection()) table.write(*this, sink, F::connection, F::connection);
  table.write(*this, sink, F::lagrangian, F::deformation);
  if (type == "SOL") table.write(*this, sink, F::modal, F::modal);
  if ((type == "SOL" || type == "ROT") && hasSolidParameters()) writeControlSurfaces(sink);
  if (type == "INL" || type == "ROT") {
    writeChild(sink, initialSolutionTurbo, "            ", "initial_solution_turbo");
  }
  writeChild(sink, injectionSector, "            ", "injection_sector");
}

void TLBC::writeControlSurfaces(TLTextSink& sink) const {
  for (const auto& surface : controlSurfaceNames) {
    if (surface == kNoControlSurface) continue;
    sink << "              CONTROL_SURFACE_NAME              " << surface << '\n';
  }
}

bool TLBC::hasSolidParameters() const {
  return parameters && parameters->type == "SOLID";
}

bool TLBC::isConnection() const {
  return type == "CON" || type == "NMB" || type == "PER" || type == "PERNM";
}

void TLBC::setIndices(const std::array<std::int32_t, 4>& extent) {
  indices = extent;
  patchCount_ = 1;
}

const RWCString& TLBC::controlSurfaceName(std::size_t index) {
  while (controlSurfaceNames.size() <= index) {
    controlSurfaceNames.emplace_back(controlSurfaceNames.empty() ? kNoControlSurface : "UNDEFINED");
  }
  return controlSurfaceNames[index];
}

void TLBC::setControlSurfaceName(std::size_t index, RWCString surface) {
  controlSurfaceName(index);
  controlSurfaceNames[index] = std::move(surface);
}

void TLBC::settleControlSurfaceNames() {
  if (!controlSurfaceNames.empty() || controlSurfaces.empty() || controlSurfaces[0] == 0) return;
  const std::string before = std::to_string(std::int64_t{controlSurfaces[0]} - 1);
  if (type == "SOL") {
    setControlSurfaceName(1, "Force_and_Torque");
  } else if (type == "INL" && parameters && parameters->typeId == kInletWithControlSurface) {
    setControlSurfaceName(0, "inlet_" + before);
  } else if (type == "OUT" && parameters && parameters->typeId == kOutletWithControlSurface) {
    setControlSurfaceName(0, "outlet_" + before);
  }
}
