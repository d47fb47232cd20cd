#include "project/TLHexaPartition.h"

#include "textio/TLKeyTable.h"

namespace {

constexpr const char* kFailure = " wrong block header: cannot determine block version";

const TLKeyTable<TLHexaPartition>& table() {
  using R = TLHexaPartition;
  using T = TLTokenReader;
  static const TLKeyTable<R> keys(
      "hexa_partition",
      {
          {"version", "",
           [](R& record, TLKeyContext& context) {
             return nextIf(readVersion(context.line, kFailure, record.version));
           },
           1, "        VERSION\t\t",
           [](const R& record, TLTextSink& sink, std::string_view literal) {
             sink << literal << record.version << '\n';
           }},
          valueKey<&R::partitionName, &T::readStrings>("partition_name", 2,
                                                       "        PARTITION_NAME\t"),
          valueKey<&R::partitionId, &T::readInteger>("partition_id", 3, "        PARTITION_ID\t\t"),
          valueKey<&R::nbCells, &T::readInteger>("nb_cells", 4, "        NB_CELLS\t\t"),
          valueKey<&R::nbVertices, &T::readInteger>("nb_vertices", 5, "        NB_VERTICES\t\t"),
          {"tl_end", "hexa_partition", &endBlock<R>},
          {"tl_begin", "", &skipBlock<R>},
      });
  return keys;
}

}  // namespace

int TLHexaPartition::read(TLTextSource& source) {
  return readBlock(*this, source, table());
}

void TLHexaPartition::write(TLTextSink& sink) const {
  table().write(*this, sink);
}
