#pragma once

#include <cstdint>

/// Codes of the project types, as records and messages carry them.
namespace TLProjectType {
inline constexpr std::int32_t structured = 0;    ///< "STRUCTURED": multi-block meshes.
inline constexpr std::int32_t bladeToBlade = 1;  ///< "BLADE_TO_BLADE": blade sections.
inline constexpr std::int32_t hexa = 2;          ///< "HEXA": unstructured meshes.
inline constexpr std::int32_t sculpt3d = 3;      ///< "SCULPT3D": design by optimisation.
inline constexpr std::int32_t marine = 4;        ///< "MARINE": ships, unstructured too.

/// True for the projects of the unstructured solvers, whose connection patches have an own form.
inline constexpr bool isUnstructured(std::int32_t type) {
  return type == hexa || type == marine;
}
}  // namespace TLProjectType
