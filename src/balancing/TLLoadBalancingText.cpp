// The text form of the record: the block "load_balancing" of the task file.
#include <string_view>

#include "balancing/TLLoadBalancing.h"
#include "textio/TLKeyTable.h"

namespace {

using Reader = TLTokenReader;
using Generations = TLLoadBalancing::Generations;

// What the record's read works on: the record, and the queue settings of older files, which are
// looked at when the block has ended.
struct Reading {
  struct OldQueue {
    std::int32_t processors = 0;
    std::int32_t activated = 0;
    RWCString queue;
  };

  TLLoadBalancing& record;
  OldQueue sge;
  OldQueue pbs;
};

TLKeyResult refused(TLKeyContext& context, std::string_view expected) {
  if (auto* observer = context.source.observer(); observer != nullptr) {
    observer->badLine(context.source, context.line, expected);
  }
  return TLKeyResult::failed;
}

void store(RWCString& item, std::string_view word) {
  item = word;
}
void store(std::int32_t& item, std::string_view word) {
  item = integerFrom(word);
}

// Appends a count's worth of `tokens` to `list`, the count being the first of them. False when
// there are fewer. Memory grows with what the line holds, not with its count.
template <class T>
bool readItems(TLTokens& tokens, std::vector<T>& list) {
  const auto countWord = tokens.next();
  if (countWord.empty()) return false;
  for (std::int32_t left = integerFrom(countWord); left > 0; --left) {
    const auto word = tokens.next();
    if (word.empty()) return false;
    store(list.emplace_back(), word);
  }
  return true;
}

template <auto Member>
TLKeyResult readList(Reading& reading, TLKeyContext& context) {
  TLTokens tokens(context.line);
  tokens.next();
  if (readItems(tokens, reading.record.*Member)) return TLKeyResult::next;
  return refused(context, " <count> and as many items ");
}

// A count, then on a line of its own the processes of each generation.
template <auto Member>
TLKeyResult readGenerations(Reading& reading, TLKeyContext& context) {
  std::int32_t left = 0;
  if (context.reader.readInteger(context.line, left) == 0) return TLKeyResult::failed;
  for (; left > 0; --left) {
    context.reader.skipComments();
    context.line = context.source.readLine();
    TLTokens tokens(context.line);
    if (!readItems(tokens, (reading.record.*Member).emplace_back())) {
      return refused(context, " <count> and as many process names ");
    }
  }
  return TLKeyResult::next;
}

template <auto Member, auto Operation>
TLKeyResult read(Reading& reading, TLKeyContext& context) {
  return nextIf((context.reader.*Operation)(context.line, reading.record.*Member));
}

template <auto Queue, auto Member, auto Operation>
TLKeyResult readOld(Reading& reading, TLKeyContext& context) {
  return nextIf((context.reader.*Operation)(context.line, reading.*Queue.*Member));
}

TLKeyResult skipLine(Reading& /*reading*/, TLKeyContext& /*context*/) {
  return TLKeyResult::next;
}

const TLKeyTable<Reading>& keys() {
  using L = TLLoadBalancing;
  using Old = Reading::OldQueue;
  constexpr auto kInt = &Reader::readInteger;
  constexpr auto kText = &Reader::readStrings;
  static const TLKeyTable<Reading> table(
      "load_balancing",
      {
          {"parallel", "", &read<&L::parallel, kInt>},
          {"mpi_type", "", &read<&L::mpiType, kInt>},
          {"process_name", "", &readList<&L::processNames>},
          {"queuing_system_activated", "", &read<&L::queuingSystemActivated, kInt>},
          {"nb_queuing_system_processor", "", &read<&L::nbQueuingSystemProcessor, kInt>},
          {"queuing_system_queue", "", &read<&L::queuingSystemQueue, kText>},
          {"queuing_template", "", &read<&L::queuingTemplate, kText>},
          {"compiler_choice", "", &read<&L::compilerChoice, kInt>},
          {"automatic_load_balancing_activated", "", &read<&L::automaticLoadBalancing, kInt>},
          {"fluid_type", "", &read<&L::fluidType, kText>},
          {"steam_tables_path", "", &read<&L::steamTablesPath, kText>},
          {"user_solver_precision", "", &read<&L::userSolverPrecision, kInt>},
          {"maximum_harmonics_number", "", &skipLine},
          {"block_id", "", &readList<&L::blockProcess>},
          {"mpisgi664", "", &read<&L::mpiSgi664, kInt>},
          {"design_generation", "", &readList<&L::designGenerations>},
          {"geom_generation", "", &readGenerations<&L::geomGeneration>},
          {"mesh_generation", "", &readGenerations<&L::meshGeneration>},
          {"flow_solver_generation", "", &readGenerations<&L::flowSolverGeneration>},
          {"post_treatment_generation", "", &readGenerations<&L::postTreatmentGeneration>},
          {"fea_mesh_generation", "", &readGenerations<&L::feaMeshGeneration>},
          {"fea_solver_generation", "", &readGenerations<&L::feaSolverGeneration>},
          {"fea_post_treatment_generation", "", &readGenerations<&L::feaPostTreatmentGeneration>},
          // Written by older versions only.
          {"nb_sge_processor", "", &readOld<&Reading::sge, &Old::processors, kInt>},
          {"sge_activated", "", &readOld<&Reading::sge, &Old::activated, kInt>},
          {"nb_pbs_processor", "", &readOld<&Reading::pbs, &Old::processors, kInt>},
          {"pbs_activated", "", &readOld<&Reading::pbs, &Old::activated, kInt>},
          {"sge_pe", "", &readOld<&Reading::sge, &Old::queue, &Reader::readString>},
          {"pbs_pe", "", &readOld<&Reading::pbs, &Old::queue, &Reader::readString>},
          {"tl_end", "load_balancing", &endBlock<Reading>},
      });
  return table;
}

void clearLists(TLLoadBalancing& record) {
  record.processNames.clear();
  record.blockProcess.clear();
  record.designGenerations.clear();
  for (auto* list : {&record.geomGeneration, &record.meshGeneration, &record.flowSolverGeneration,
                     &record.postTreatmentGeneration, &record.feaMeshGeneration,
                     &record.feaSolverGeneration, &record.feaPostTreatmentGeneration}) {
    list->clear();
  }
}

void takeOver(const Reading::OldQueue& old, std::int32_t system, TLLoadBalancing& record) {
  if (old.activated != 1) return;
  record.nbQueuingSystemProcessor = old.processors;
  record.queuingSystemActivated = system;
  record.queuingSystemQueue = old.queue;
}

template <class T>
void writeItems(TLTextSink& stream, const std::vector<T>& list) {
  stream << list.size();
  for (const auto& item : list) stream << "  " << item;
  stream << '\n';
}

// One line per design generation, also where the list has fewer.
void writeGenerations(TLTextSink& stream, std::string_view key, const Generations& list,
                      std::size_t count) {
  static const std::vector<RWCString> none;
  stream << "         " << key << "           " << count << '\n';
  for (std::size_t i = 0; i < count; ++i) writeItems(stream, i < list.size() ? list[i] : none);
}

void writeDesign(TLTextSink& stream, const TLLoadBalancing& record) {
  stream << "         DESIGN_GENERATION           ";
  writeItems(stream, record.designGenerations);
  const std::pair<const char*, const Generations*> groups[] = {
      {"GEOM_GENERATION", &record.geomGeneration},
      {"MESH_GENERATION", &record.meshGeneration},
      {"FLOW_SOLVER_GENERATION", &record.flowSolverGeneration},
      {"POST_TREATMENT_GENERATION", &record.postTreatmentGeneration},
      {"FEA_MESH_GENERATION", &record.feaMeshGeneration},
      {"FEA_SOLVER_GENERATION", &record.feaSolverGeneration},
      {"FEA_POST_TREATMENT_GENERATION", &record.feaPostTreatmentGeneration},
  };
  for (const auto& [key, list] : groups) {
    writeGenerations(stream, key, *list, record.designGenerations.size());
  }
}

}  // namespace

int TLLoadBalancing::read(TLTextSource& source) {
  clearLists(*this);
  Reading reading{*this, {}, {}};
  if (readBlock(reading, source, keys()) == 0) return 0;
  takeOver(reading.sge, 1, *this);
  takeOver(reading.pbs, 2, *this);
  return 1;
}

void TLLoadBalancing::write(TLTextSink& stream) const {
  stream << "         PARALLEL           " << parallel << '\n';
  stream << "         MPI_TYPE           " << mpiType << '\n';
  stream << "         PROCESS_NAME       ";
  writeItems(stream, processNames);
  stream << "         QUEUING_SYSTEM_ACTIVATED      " << queuingSystemActivated << '\n';
  stream << "         NB_QUEUING_SYSTEM_PROCESSOR   " << nbQueuingSystemProcessor << '\n';
  stream << "         QUEUING_SYSTEM_QUEUE          " << queuingSystemQueue << '\n';
  stream << "         QUEUING_TEMPLATE              " << queuingTemplate << '\n';
  stream << "         COMPILER_CHOICE               " << compilerChoice << '\n';
  stream << "         AUTOMATIC_LOAD_BALANCING_ACTIVATED   " << automaticLoadBalancing << '\n';
  stream << "         FLUID_TYPE                           " << fluidType << '\n';
  stream << "         STEAM_TABLES_PATH                    " << steamTablesPath << '\n';
  stream << "         USER_SOLVER_PRECISION               " << userSolverPrecision << '\n';
  stream << "         MAXIMUM_HARMONICS_NUMBER             " << maximumHarmonicsNumber << '\n';
  stream << "         BLOCK_ID                             ";
  writeItems(stream, blockProcess);
  if (mpiSgi664 != 0) {
    stream << "         MPISGI664                            " << mpiSgi664 << '\n';
  }
  if (!designGenerations.empty()) writeDesign(stream, *this);
}
