#include "balancing/VPartParameters.h"

#include <limits>

#include "textio/TLKeyTable.h"

namespace {

using Reader = TLTokenReader;

// The whole number at the start of `word` with all its 64 bits. It sticks at their limit; a word
// that is no number, or a negative one, gives 0.
std::uint64_t unsignedFrom(std::string_view word) {
  constexpr std::uint64_t kLimit = std::numeric_limits<std::uint64_t>::max();
  if (!word.empty() && word.front() == '+') word.remove_prefix(1);
  std::uint64_t value = 0;
  for (const char c : word) {
    if (c < '0' || c > '9') break;
    const auto digit = static_cast<std::uint64_t>(c - '0');
    value = value > (kLimit - digit) / 10 ? kLimit : value * 10 + digit;
  }
  return value;
}

template <std::uint64_t VPartParameters::*Member>
TLKeyResult readSize(VPartParameters& record, TLKeyContext& context) {
  RWCString word;
  if (context.reader.readString(context.line, word) == 0) return TLKeyResult::failed;
  record.*Member = unsignedFrom(word);
  return TLKeyResult::next;
}

TLKeyResult readPenalties(VPartParameters& record, TLKeyContext& context) {
  auto& p = record.penalties;
  return nextIf(context.reader.readFloats4(context.line, p[0], p[1], p[2], p[3]));
}

template <auto Member, auto Operation>
constexpr auto kRead = &readMember<Member, Operation, VPartParameters>;

const TLKeyTable<VPartParameters>& keys() {
  using V = VPartParameters;
  static const TLKeyTable<V> table(
      "virtual_partition",
      {
          {"ntask", "", kRead<&V::nbTasks_, &Reader::readInteger>},
          {"number_of_blocks_per_process", "", kRead<&V::nbBlocksPerProcess, &Reader::readInteger>},
          {"balancing", "", kRead<&V::balancing, &Reader::readFloat>},
          {"penalties", "", &readPenalties},
          {"red_black_tree", "", kRead<&V::redBlackTree, &Reader::readFlag>},
          {"work_on_coarse_grid", "", kRead<&V::workOnCoarseGrid, &Reader::readFlag>},
          {"number_of_constant_iteration", "",
           kRead<&V::nbConstantIteration, &Reader::readInteger>},
          {"tolerance_of_constant_iteration", "",
           kRead<&V::toleranceOfConstantIteration, &Reader::readReal>},
          {"run_computation", "", kRead<&V::runComputation, &Reader::readInteger>},
          {"automaticmemoryestimation", "",
           kRead<&V::automaticMemoryEstimation, &Reader::readInteger>},
          {"integer_relaxation", "", kRead<&V::integerRelaxation, &Reader::readReal>},
          {"real_relaxation", "", kRead<&V::realRelaxation, &Reader::readReal>},
          {"sizei", "", &readSize<&V::sizeI>},
          {"sized", "", &readSize<&V::sizeD>},
          {"activated", "", kRead<&V::activated, &Reader::readInteger>},
          {"partitioned_runfile", "", kRead<&V::partitionedRunfile, &Reader::readFlag>},
          {"write_solution_on_partiton", "",
           kRead<&V::writeSolutionOnPartition, &Reader::readFlag>},
          {"partition_nmb", "", kRead<&V::partitionNmb, &Reader::readFlag>},
          {"project_buffer_size", "", kRead<&V::projectBufferSize, &Reader::readReal>},
          {"merge_virtual_topology", "", kRead<&V::mergeVirtualTopology, &Reader::readInteger>},
          {"tl_end", "virtual_partition", &endBlock<V>},
      });
  return table;
}

}  // namespace

int VPartParameters::read(TLTextSource& source) {
  assign(VPartParameters());
  return readBlock(*this, source, keys());
}

void VPartParameters::write(TLTextSink& stream) const {
  const auto line = [&stream](const char* key, const auto& value) {
    stream << "              " << key << value << '\n';
  };
  line("NTASK \t\t\t\t\t", nbTasks_);
  line("NUMBER_OF_BLOCKS_PER_PROCESS \t\t", nbBlocksPerProcess);
  line("BALANCING \t\t\t\t", balancing);
  stream << "              PENALTIES \t\t\t\t" << penalties[0] << ' ' << penalties[1] << ' '
         << penalties[2] << ' ' << penalties[3] << '\n';
  line("RED_BLACK_TREE \t\t\t", redBlackTree);
  line("WORK_ON_COARSE_GRID \t\t\t", workOnCoarseGrid);
  line("NUMBER_OF_CONSTANT_ITERATION \t", nbConstantIteration);
  line("TOLERANCE_OF_CONSTANT_ITERATION \t", toleranceOfConstantIteration);
  line("RUN_COMPUTATION \t\t\t", runComputation);
  line("automaticMemoryEstimation \t\t", automaticMemoryEstimation);
  line("INTEGER_RELAXATION \t\t\t", integerRelaxation);
  line("REAL_RELAXATION \t\t\t", realRelaxation);
  line("sizeI \t\t\t\t\t", sizeI);
  line("sizeD \t\t\t\t\t", sizeD);
  line("activated \t\t\t\t", activated);
  line("PARTITIONED_RUNFILE \t\t\t", partitionedRunfile);
  line("WRITE_SOLUTION_ON_PARTITON \t\t", writeSolutionOnPartition);
  line("PARTITION_NMB \t\t\t", partitionNmb);
  line("PROJECT_BUFFER_SIZE \t\t\t", projectBufferSize);
  line("MERGE_VIRTUAL_TOPOLOGY \t\t", mergeVirtualTopology);
}
