#include "launching/TLQueuingKind.h"

#include <array>

namespace {

constexpr auto kKinds = std::to_array<TLQueuingKind>({
    {"SGE", ".sge", "qsub ", "qstat -g d ", "#$", "-N", "qstat -g d ", "tmpout_SGE_qstat_", "qdel ",
     "tmpout_sge_qdel_"},
    {"PBS", ".pbs", "qsub -C \\#PBS  ", "qstat ", "#PBS", "-N", "qstat ", "tmpout_PBS_qstat_",
     "qdel ", "tmpout_pbs_qdel_"},
    {"LSF", ".lsf", "bsub < ", "bjobs ", "#BSUB", "-J", "bjobs -J ", "tmpout_LSF_bjobs_", "bkill ",
     "tmpout_lsf_bkill_"},
});

}  // namespace

const TLQueuingKind* queuingKind(std::int32_t kind) {
  if (kind < 1 || kind > static_cast<std::int32_t>(kKinds.size())) return nullptr;
  return &kKinds[static_cast<std::size_t>(kind - 1)];
}
