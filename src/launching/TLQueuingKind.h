#pragma once

#include <cstdint>
#include <string_view>

/// What tells one queuing system from another: the words of its commands and scripts, and where its
/// listings hold what.
struct TLQueuingKind {
  std::string_view word;        ///< "SGE", "PBS", "LSF"
  std::string_view extension;   ///< of its job scripts, with the point
  std::string_view submit;      ///< ends where the script's path follows
  std::string_view list;        ///< lists all jobs; ends in a blank
  std::string_view directive;   ///< first word of a script's line that is meant for it
  std::string_view nameFlag;    ///< second word of the line that names the job
  std::string_view find;        ///< asks for a job by its name; LSF's takes the name behind it
  std::string_view findStem;    ///< of the file that takes the answer to it; the name follows
  std::string_view remove;      ///< the number follows
  std::string_view removeStem;  ///< of the file that takes its answer; the number follows
};

/// The kind of a step's `queuingSystemActivated`, 1 to 3; null for any other number.
const TLQueuingKind* queuingKind(std::int32_t kind);
