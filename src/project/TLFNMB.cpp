#include "project/TLFNMB.h"

#include "platform/TLConsole.h"
#include "textio/TLKeyTable.h"

namespace {

using R = TLFNMB;
using T = TLTokenReader;

template <auto Member>
TLKeyResult readPatch(R& record, TLKeyContext& context) {
  auto patch = makeHandle<TLFNMBPatches>(record.projectType);
  if (patch->readLine(context.line) == 0) {
    console() << "wrong TLFNMBPatches format\n" << std::flush;
    return TLKeyResult::failed;
  }
  (record.*Member).push_back(std::move(patch));
  return TLKeyResult::next;
}

TLKeyResult readOwnVersion(R& record, TLKeyContext& context) {
  return nextIf(readVersion(context.line, R::kVersionFailure, record.version));
}

void writeOwnVersion(const R& record, TLTextSink& sink, std::string_view literal) {
  sink << literal << record.version << '\n';
}

// The colon belongs to a key: a line with the word alone isn't the key's.
const TLKeyTable<R>& table() {
  static const TLKeyTable<R> keys(
      "fnmb_connection",
      {
          valueKey<&R::name, &T::readString>("name:", 2,
                                             "            NAME:                        "),
          valueKey<&R::projectionType, &T::readInteger>(
              "projection_type:", 3, "            PROJECTION_TYPE:             "),
          valueKey<&R::searchType, &T::readInteger>("search_type:", 4,
                                                    "            SEARCH_TYPE:                 "),
          valueKey<&R::side, &T::readInteger>("side:", 5,
                                              "            SIDE:                        "),
          valueKey<&R::tolerance, &T::readReal>("tolerance:", 6,
                                                "            TOLERANCE:                   "),
          valueKey<&R::maximumProjectionDistance, &T::readReal>(
              "maximum_projection_distance:", 7, "            MAXIMUM_PROJECTION_DISTANCE: "),
          valueKey<&R::minimumProjectionDistance, &T::readReal>(
              "minimum_projection_distance:", 8, "            MINIMUM_PROJECTION_DISTANCE: "),
          valueKey<&R::normalsSmoothingSteps, &T::readInteger>(
              "normals_smoothing_steps:", 9, "            NORMALS_SMOOTHING_STEPS:     "),
          valueKey<&R::triangulatedSide, &T::readInteger>(
              "triangulated_side:", 10, "            TRIANGULATED_SIDE:           "),
          valueKey<&R::rsConnection, &T::readInteger>("rs_connection:", 11,
                                                      "            RS_CONNECTION:               "),
          valueKey<&R::isPeriodic, &T::readInteger>("is_periodic:", 12,
                                                    "            IS_PERIODIC:                 "),
          {"left_patches:", "", &readPatch<&R::leftPatches>},
          {"right_patches:", "", &readPatch<&R::rightPatches>},
          {"left_face:", "", &readPatch<&R::leftPatches>},
          {"right_face:", "", &readPatch<&R::rightPatches>},
          {"version", "", &readOwnVersion, 1, "            VERSION                      ",
           &writeOwnVersion},
          {"tl_end", "fnmb_connection", &endBlock<R>},
          {"tl_begin", "", &skipBlock<R>},
      });
  return keys;
}

void writePatches(TLTextSink& sink, const std::vector<Handle<TLFNMBPatches>>& patches,
                  std::string_view literal) {
  for (const auto& patch : patches) {
    sink << literal;
    patch->write(sink);
  }
}

}  // namespace

int TLFNMB::read(TLTextSource& source) {
  leftPatches.clear();
  rightPatches.clear();
  return readBlock(*this, source, table());
}

void TLFNMB::write(TLTextSink& sink) const {
  table().write(*this, sink);
  writePatches(sink, leftPatches, "            Left_face:");
  writePatches(sink, rightPatches, "            Right_face:");
}
