#include "project/TLGrid.h"

#include <utility>

#include "project/TLChildKeys.h"
#include "textio/TLKeyTable.h"

namespace {

using R = TLGrid;
using T = TLTokenReader;

template <auto Member>
TLKeyResult readPatch(R& grid, TLKeyContext& context) {
  auto patch = makeHandle<TLMeridionnalPatch>();
  if (patch->readLine(context.line) == 0) return TLKeyResult::failed;
  (grid.*Member).push_back(std::move(patch));
  return TLKeyResult::next;
}

const TLKeyTable<R>& table() {
  static const TLKeyTable<R> keys(
      "grid_bc", {
                     versionKey<&R::version, R::kVersionFailure>(
                         1, "      VERSION                        1.0"),
                     valueKey<&R::gridUnit, &T::readReal>("gridunit", 2,
                                                          "      GRIDUNIT                       "),
                     valueKey<&R::gridLevelI, &T::readInteger>(
                         "number_of_grid_level_i", 3, "      NUMBER_OF_GRID_LEVEL_I         "),
                     valueKey<&R::gridLevelJ, &T::readInteger>(
                         "number_of_grid_level_j", 4, "      NUMBER_OF_GRID_LEVEL_J         "),
                     valueKey<&R::gridLevelK, &T::readInteger>(
                         "number_of_grid_level_k", 5, "      NUMBER_OF_GRID_LEVEL_K         "),
                     valueKey<&R::gridToolVersion, &T::readInteger>(
                         "zyvgridversion", 6, "      ZYVGRIDVERSION                 "),
                     valueKey<&R::showKM5message, &T::readInteger>(
                         "showkm5message", 7, "      SHOWKM5MESSAGE                 "),
                     {"meridionnal_patch", "", &readPatch<&R::meridionalPatches>},
                     {"meridionnal_patchps", "", &readPatch<&R::meridionalPatchesPS>},
                     {"meridionnal_patchss", "", &readPatch<&R::meridionalPatchesSS>},
                     childKey<&R::blocks>("block"),
                     childKey<&R::initialSolutionTurbos>("initial_solution_turbo"),
                     childKey<&R::connections>("fnmb_connection"),
                     childKey<&R::controlSurfaces>("control_surface"),
                     childKey<&R::blades>("blade_definition"),
                     {"tl_begin", "", &skipBlock<R>},
                     {"tl_end", "grid_bc", &endBlock<R>},
                 });
  return keys;
}

constexpr std::string_view kIndent = "      ";

// Element `number`, counted from 1, or null.
template <class Record>
Record* element(const std::vector<Handle<Record>>& list, std::int32_t number) {
  const auto position = static_cast<std::size_t>(number) - 1;
  return number >= 1 && position < list.size() ? list[position].get() : nullptr;
}

}  // namespace

int TLGrid::read(TLTextSource& source) {
  blocks.clear();
  initialSolutionTurbos.clear();
  connections.clear();
  controlSurfaces.clear();
  blades.clear();
  meridionalPatches.clear();
  meridionalPatchesPS.clear();
  meridionalPatchesSS.clear();
  return readBlock(*this, source, table());
}

// The patches of all three lists go under one key, as the suite's tools expect them: read again,
// all stand in the first list.
void TLGrid::write(TLTextSink& sink) const {
  table().write(*this, sink);
  writeChildren(sink, blocks, kIndent, "block");
  writeChildren(sink, initialSolutionTurbos, kIndent, "initial_solution_turbo");
  writeChildren(sink, controlSurfaces, kIndent, "control_surface");
  writeChildren(sink, connections, kIndent, "fnmb_connection");
  writeChildren(sink, blades, kIndent, "blade_definition");
  for (const auto* list : {&meridionalPatches, &meridionalPatchesPS, &meridionalPatchesSS}) {
    for (const auto& patch : *list) patch->write(sink);
  }
}

TLBlock* TLGrid::block(std::int32_t number) const {
  return element(blocks, number);
}

TLFace* TLGrid::face(std::int32_t blockNumber, std::int32_t face) const {
  const TLBlock* owner = block(blockNumber);
  return owner == nullptr ? nullptr : element(owner->faces, face);
}

TLBC* TLGrid::patch(std::int32_t blockNumber, std::int32_t faceNumber, std::int32_t patch) const {
  const TLFace* owner = face(blockNumber, faceNumber);
  return owner == nullptr ? nullptr : element(owner->conditions, patch);
}

void TLGrid::moveParametersTo(std::vector<Handle<TLBCParameters>>& list) {
  forEachCondition([&list](TLBC& condition) {
    if (!condition.parameters) return;
    condition.bcParametersIndex = static_cast<std::int32_t>(list.size());
    list.push_back(std::move(condition.parameters));
  });
}

void TLGrid::linkParameters(const std::vector<Handle<TLBCParameters>>& list) {
  forEachCondition([&list](TLBC& condition) {
    const auto index = static_cast<std::size_t>(condition.bcParametersIndex);
    if (condition.bcParametersIndex >= 0 && index < list.size()) {
      condition.parameters = list[index];
    }
    condition.settleControlSurfaceNames();
  });
}
