#include "tool/TLBalanceCommand.h"

#include <fmt/format.h>
#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <cstdio>
#include <iostream>
#include <memory>
#include <sstream>

#include "balancing/TLGridMesh.h"
#include "balancing/TLLoadBalancing.h"
#include "balancing/TLMetisPartition.h"
#include "balancing/TLPartition.h"
#include "balancing/TLPartitionVerifier.h"
#include "parameters/TLParameters.h"
#include "parameters/TLParametersDataBase.h"
#include "platform/TLConsole.h"
#include "project/TLGrid.h"
#include "project/TLProject.h"
#include "tool/TLAnswer.h"
#include "tool/TLDistributionView.h"
#include "tool/TLExitCode.h"

namespace {

void complain(const std::string& text) {
  ::complain("balance", text);
}

// One run of the command: the project, the record that a launch would hold, the partition.
class Balance {
 public:
  explicit Balance(const TLBalanceOptions& options) : options_(options) {}

  int run() {
    if (!read()) return TLExitCode::kStepFailed;
    std::ostringstream held;
    std::ostream& out = showsTrace() ? std::cout : held;
    if (!distribute(out)) return TLExitCode::kStepFailed;
    show();
    std::cout << std::flush;
    const bool good = !options_.verify || verify();
    if (options_.write && !(good && write())) return TLExitCode::kStepFailed;
    return good ? TLExitCode::kOk : TLExitCode::kStepFailed;
  }

 private:
  bool byMetis() const { return options_.method == "metis"; }
  bool showsTrace() const { return !options_.json && !options_.summary && !byMetis(); }

  // What reading has to say is no part of the trace.
  bool read() {
    const TLConsoleRedirect redirect(std::cerr);
    const RWCString problem = TLParametersDataBase::problem();
    if (options_.write && !problem.empty()) {
      complain("the run file can't be written: " + problem);
      return false;
    }
    TLParametersDataBase::doWithout();
    project_.usesDefinitions = false;
    if (project_.read(options_.runFile) == 1) return true;
    complain(options_.runFile + " is no run file that can be read");
    return false;
  }

  bool distribute(std::ostream& out) {
    std::ostringstream trace;
    record_.projectFile = options_.runFile;
    record_.queuingSystemActivated = 1;
    {
      const TLConsoleRedirect redirect(trace);
      if (!record_.setup(project_)) {
        complain(options_.runFile + " holds no mesh");
        return false;
      }
    }
    out << trace.str();
    record_.nbQueuingSystemProcessor = options_.processors;
    record_.adjustProcessors = options_.adjust;
    record_.setNbBlocks(static_cast<std::int32_t>(record_.mesh->blocks.size()));
    mesh_ = blockMeshOf(*record_.mesh);
    trace.str("");
    {
      const TLConsoleRedirect redirect(trace);
      partition_ = std::make_unique<TLPartition>(mesh_, record_.coarsening(), options_.processors,
                                                 record_.tolerance, options_.adjust);
      partition_->distribute();
    }
    trace_ = trace.str();
    out << trace_;
    if (!partition_->refusal().empty()) {
      complain("nothing is distributed: " + partition_->refusal());
      return false;
    }
    return view();
  }

  bool view() {
    views_.emplace_back("growth", partition_->graph(), partition_->owners(),
                        partition_->nbProcessors());
    if (byMetis()) {
      const TLMetisPartition metis(partition_->graph(), options_.processors);
      if (!metis.refusal().empty()) {
        complain("nothing is distributed: " + metis.refusal());
        return false;
      }
      views_.emplace_back("metis", partition_->graph(), metis.owners(),
                          std::min(options_.processors, partition_->nbBlocks()));
    }
    record_.takeOwners(views_.back().owners());
    return true;
  }

  void show() const {
    if (options_.json) {
      printAnswer("balance", json());
      return;
    }
    if (!showsTrace()) std::cout << distributionTable(views_);
    std::cout << views_.back().ownersLine();
  }

  nlohmann::json json() const {
    nlohmann::json result = views_.back().json();
    result["file"] = options_.runFile;
    result["processors_asked"] = options_.processors;
    result["adjusted"] = partition_->adjusted() != 0;
    result["warnings"] = partition_->warnings();
    result["passes"] = partition_->nbPasses();
    result["tolerance"] =
        partition_->passes().empty() ? 0.0F : partition_->passes().back().tolerance;
    if (byMetis()) result["beside"] = views_.front().json();
    return result;
  }

  bool verify() const {
    const TLCoarsening coarsening = record_.coarsening();
    const auto faults =
        TLPartitionVerifier(mesh_, coarsening)
            .faults(*partition_, options_.processors, record_.tolerance, options_.adjust, trace_);
    for (const auto& fault : faults) complain(fault);
    if (!faults.empty()) return false;
    fmt::print(stderr,
               "verified: every block is placed once, loads and couplings agree with the "
               "mesh, a second run gives the same bytes\n{}\n",
               TLPartitionVerifier::explanation(*partition_));
    return true;
  }

  // What a launch stores in the run file.
  bool write() {
    TLSubProject& computation = *project_.currentComputation;
    const bool several = options_.processors > 1;
    computation.parameters->setIntegers("NTASK,I,1,1,0", {options_.processors});
    computation.parameters->setIntegers("ICOMP,I,1,1,0", {several ? 2 : 0});
    if (several) {
      std::int32_t number = 0;
      for (const auto& block : computation.grid->blocks) {
        block->processId = record_.processOfBlock(number++) + 1;
      }
    }
    const TLConsoleRedirect redirect(std::cerr);
    if (project_.write(options_.runFile) != 0) return true;
    complain("cannot write " + options_.runFile);
    return false;
  }

  const TLBalanceOptions& options_;
  TLProject project_;
  TLLoadBalancing record_;
  TLBlockMesh mesh_;
  std::unique_ptr<TLPartition> partition_;
  std::string trace_;
  std::vector<TLDistributionView> views_;
};

}  // namespace

int runBalance(const TLBalanceOptions& options) {
  return Balance(options).run();
}

std::vector<TLCommand> balanceCommands() {
  return {
      {"balance",
       "Distribute the blocks of a run file over processors",
       {"tlctl balance fan.run --processors 16", "tlctl balance fan.run --processors 16 --summary",
        "tlctl balance fan.run --processors 16 --method metis --write"},
       [](CLI::App& app) -> std::function<int()> {
         auto options = std::make_shared<TLBalanceOptions>();
         app.add_option("RUNFILE", options->runFile, "run file")->required();
         app.add_option("--processors", options->processors, "number of processors")->required();
         app.add_option("--adjust", options->adjust,
                        "1: the number of processors may be lowered to what the mesh is good for")
             ->check(CLI::IsMember({0, 1}));
         declareJson(app, options->json);
         app.add_flag("--summary", options->summary, "a table of loads instead of the trace");
         app.add_flag("--write", options->write, "store the distribution in the run file");
         app.add_flag("--verify", options->verify, "check the distribution by other means");
         app.add_option("--method", options->method,
                        "growth: as launches do; metis: by METIS, shown beside the former")
             ->check(CLI::IsMember({"growth", "metis"}));
         return [options] { return runBalance(*options); };
       }},
  };
}
