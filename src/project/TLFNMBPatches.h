#pragma once

#include <array>
#include <cstdint>
#include <string_view>

#include "textio/RWCString.h"
#include "textio/RefCounted.h"
#include "textio/TLTextSink.h"

/// One patch of a full non-matching connection: a line of a "fnmb_connection" with a name and
/// three integers.
///
/// In the projects of the unstructured solvers (HEXA, MARINE) the file counts block and patch one
/// lower than the records do, and has no face: here both are one higher, the face is 1, and the
/// name is that of the whole side and not of a patch. They are written as they were read, but for
/// the face.
class TLFNMBPatches : public RefCounted {
 public:
  /// A patch at 0 0 0, for a project of this type (a TLProjectType).
  explicit TLFNMBPatches(std::int32_t projectType) : projectType(projectType) {}

  /// Takes the line of one patch. 0 when a token is missing; nothing is printed.
  int readLine(std::string_view line);
  /// What follows the key, up to and with the new line.
  void write(TLTextSink& sink) const;

  std::int32_t block() const { return indices[0]; }  ///< all counted from 1
  /// Always 1 in HEXA and MARINE projects.
  std::int32_t face() const { return indices[1]; }
  /// Place among the face's conditions.
  std::int32_t patch() const { return indices[2]; }

  std::int32_t projectType;               ///< A TLProjectType: decides the form of the line.
  RWCString name;                         ///< of the patch; empty in HEXA and MARINE projects
  RWCString groupName;                    ///< HEXA and MARINE projects: the name in the file
  std::array<std::int32_t, 3> indices{};  ///< block, face, patch
};
