#include "project/TLTopologicalBlade.h"

#include "project/TLChildKeys.h"
#include "project/TLIntegerLine.h"
#include "textio/TLKeyTable.h"
#include "textio/TLNumbers.h"
#include "textio/TLTokens.h"

namespace {

using T = TLTokenReader;

TLKeyResult readIndexList(TLTopologicalPlace& place, TLKeyContext& context) {
  place.indices.clear();
  TLTokens tokens(context.line);
  tokens.next();
  for (auto token = tokens.next(); !token.empty(); token = tokens.next()) {
    place.indices.push_back(integerFrom(token));
  }
  return TLKeyResult::next;
}

void writeIndexList(const TLTopologicalPlace& place, TLTextSink& sink, std::string_view literal) {
  writeIntegers(sink, literal, place.indices);
}

TLKey<TLTopologicalPlace> placeVersion() {
  using R = TLTopologicalPlace;
  return versionKey<&R::version, R::kVersionFailure>(1, "            VERSION                  1.0");
}
TLKey<TLTopologicalPlace> placeBlock() {
  return valueKey<&TLTopologicalPlace::blockName, &T::readStrings>(
      "block_name", 2, "            BLOCK_NAME               ");
}
TLKey<TLTopologicalPlace> placeIndices() {
  return {"indices",      "", &readIndexList, 3, "            INDICES                  ",
          &writeIndexList};
}

const TLKeyTable<TLTopologicalPlace>& edgeTable() {
  using R = TLTopologicalPlace;
  static const TLKeyTable<R> keys("topological_edge", {placeVersion(),
                                                       placeBlock(),
                                                       placeIndices(),
                                                       {"tl_end", "leading_edge", &endBlock<R>},
                                                       {"tl_end", "trailing_edge", &endBlock<R>},
                                                       {"tl_end", "topological_edge", &endBlock<R>},
                                                       {"tl_begin", "", &skipBlock<R>}});
  return keys;
}

const TLKeyTable<TLTopologicalPlace>& patchTable() {
  using R = TLTopologicalPlace;
  static const TLKeyTable<R> keys("topological_patch",
                                  {placeVersion(),
                                   placeBlock(),
                                   placeIndices(),
                                   {"tl_end", "topological_patch", &endBlock<R>},
                                   {"tl_begin", "", &skipBlock<R>}});
  return keys;
}

constexpr std::string_view kTransition = "BladeTransitionParameters";
constexpr std::string_view kTransitionNames[] = {kTransition};
constexpr TLKeptForm kTransitionForm{kTransitionNames, TLTopologicalPlace::kVersionFailure, "", ""};

const TLKeyTable<TLTopologicalBlade>& bladeTable() {
  using R = TLTopologicalBlade;
  static const TLKeyTable<R> keys(
      "blade_definition",
      {
          versionKey<&R::version, R::kVersionFailure>(1,
                                                      "        VERSION                      1.0"),
          valueKey<&R::name, &T::readStrings>("name", 2, "        NAME                         "),
          valueKey<&R::groupName, &T::readStrings>("group_name", 3,
                                                   "        GROUP_NAME                   "),
          childKey<&R::leadingEdges>("leading_edge"),
          childKey<&R::trailingEdges>("trailing_edge"),
          childKey<&R::transitionParameters>(kTransition),
          childKey<&R::patches>("topological_patch"),
          {"tl_begin", "", &skipBlock<R>},
          {"tl_end", "blade_definition", &endBlock<R>},
      });
  return keys;
}

constexpr std::string_view kIndent = "          ";

}  // namespace

TLBladeTransitionParameters::TLBladeTransitionParameters() : TLKeptBlock(kTransitionForm) {}

void TLTopologicalPlace::write(TLTextSink& sink) const {
  edgeTable().write(*this, sink);
}

int TLTopologicalEdge::read(TLTextSource& source) {
  return readBlock<TLTopologicalPlace>(*this, source, edgeTable());
}

int TLTopologicalPatch::read(TLTextSource& source) {
  return readBlock<TLTopologicalPlace>(*this, source, patchTable());
}

int TLTopologicalBlade::read(TLTextSource& source) {
  leadingEdges.clear();
  trailingEdges.clear();
  patches.clear();
  return readBlock(*this, source, bladeTable());
}

void TLTopologicalBlade::write(TLTextSink& sink) const {
  bladeTable().write(*this, sink);
  writeChildren(sink, leadingEdges, kIndent, "leading_edge");
  writeChildren(sink, trailingEdges, kIndent, "trailing_edge");
  writeChild(sink, transitionParameters, kIndent, kTransition);
  writeChildren(sink, patches, kIndent, "topological_patch");
}
