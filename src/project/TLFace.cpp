#include "project/TLFace.h"

#include "project/TLChildKeys.h"
#include "textio/TLKeyTable.h"
#include "textio/TLVocabulary.h"

namespace {

constexpr TLVocabulary<std::int32_t, 6> kSides{" wrong Type: cannot determine Face Type",
                                               {{{"imax", "IMAX", TLFaceSide::imax},
                                                 {"jmax", "JMAX", TLFaceSide::jmax},
                                                 {"kmax", "KMAX", TLFaceSide::kmax},
                                                 {"imin", "IMIN", TLFaceSide::imin},
                                                 {"jmin", "JMIN", TLFaceSide::jmin},
                                                 {"kmin", "KMIN", TLFaceSide::kmin}}}};

const TLKeyTable<TLFace>& table() {
  using R = TLFace;
  static const TLKeyTable<R> keys(
      "face", {
                  versionKey<&R::version, R::kVersionFailure>(
                      1, "          VERSION                     1.0"),
                  wordKey<&R::type, kSides>("type", 2, "          TYPE                        "),
                  valueKey<&R::index, &TLTokenReader::readInteger>(
                      "index", 3, "          INDEX                       "),
                  childKey<&R::conditions>("boundary_condition"),
                  {"tl_begin", "", &skipBlock<R>},
                  {"tl_end", "face", &endBlock<R>},
              });
  return keys;
}

}  // namespace

int TLFace::read(TLTextSource& source) {
  conditions.clear();
  return readBlock(*this, source, table());
}

void TLFace::write(TLTextSink& sink) const {
  table().write(*this, sink);
  for (const auto& condition : conditions) {
    if (condition->patchCount() == 0) continue;
    writeChild(sink, condition, "          ", "boundary_condition");
  }
}
