#include "tool/TLFileKind.h"

#include "project/TLProject.h"
#include "textio/TLNumbers.h"
#include "textio/TLTokens.h"

namespace {

struct BlockRow {
  std::string_view block;
  TLFileKind kind;
};
// The first of these blocks in a file tells its kind.
constexpr BlockRow kBlocks[] = {
    {"task", TLFileKind::task},
    {"subtask", TLFileKind::task},
    {"process_arguments", TLFileKind::task},
    {"units_database", TLFileKind::units},
    {"units_record", TLFileKind::units},
    {"TL_steering_parameter_interface", TLFileKind::steeringDefinitions},
    {"TL_steering_parameter", TLFileKind::steering},
    {"bc_parameters", TLFileKind::conditions},
    {"hexa_parameters", TLFileKind::unstructuredParameters},
    {"tlparameter", TLFileKind::unstructuredParameters},
};

TLFileKind kindOfBlock(std::string_view name) {
  for (const auto& row : kBlocks) {
    if (equalIgnoringCase(row.block, name)) return row.kind;
  }
  return TLFileKind::unknown;
}

// A steering definition file has both kinds of steering blocks.
TLFileKind steeringKind(std::string_view text) {
  return text.find("TL_steering_parameter_interface") == std::string_view::npos
             ? TLFileKind::steering
             : TLFileKind::steeringDefinitions;
}

}  // namespace

TLFileKind kindOfText(std::string_view text) {
  if (TLProject::isProjectText(text)) return TLFileKind::project;
  if (TLProject::isMeshText(text)) return TLFileKind::mesh;
  if (text.find("START_READING_OPERATION") != std::string_view::npos) {
    return TLFileKind::structuredParameters;
  }
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t end = std::min(text.find('\n', at), text.size());
    TLTokens tokens(text.substr(at, end - at));
    at = end + 1;
    if (!equalIgnoringCase(tokens.next(), "tl_begin")) continue;
    const TLFileKind kind = kindOfBlock(tokens.next());
    if (kind == TLFileKind::steering) return steeringKind(text);
    if (kind != TLFileKind::unknown) return kind;
  }
  return TLFileKind::unknown;
}

std::string_view nameOfKind(TLFileKind kind) {
  switch (kind) {
    case TLFileKind::task:
      return "task file";
    case TLFileKind::project:
      return "project file";
    case TLFileKind::mesh:
      return "mesh file";
    case TLFileKind::steering:
      return "steering file";
    case TLFileKind::units:
      return "units file";
    case TLFileKind::conditions:
      return "definition file of boundary conditions";
    case TLFileKind::structuredParameters:
      return "definition file of the structured solver";
    case TLFileKind::unstructuredParameters:
      return "definition file of the unstructured solver";
    case TLFileKind::steeringDefinitions:
      return "definition file of steering parameters";
    case TLFileKind::unknown:
      break;
  }
  return "file of an unknown kind";
}
